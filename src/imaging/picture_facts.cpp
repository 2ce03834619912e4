#include "imaging/picture_facts.h"

namespace imaging {

QString typeCodeOf(PictureKind kind) {
    switch (kind) {
    case PictureKind::Wmf:
        return QStringLiteral("WMF");
    case PictureKind::Emf:
        return QStringLiteral("EMF");
    case PictureKind::Ico:
        return QStringLiteral("ICO");
    case PictureKind::Cur:
        return QStringLiteral("CUR");
    case PictureKind::Bmp:
        return QStringLiteral("BMP");
    case PictureKind::Gif:
        return QStringLiteral("GIF");
    case PictureKind::Jpg:
        break;
    }
    return QStringLiteral("JPG");
}

} // namespace imaging
