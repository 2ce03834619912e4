#include "browser/carried_pictures.h"

#include "app/long_operation.h"
#include "app/texts.h"
#include "base/utf8.h"
#include "compound/error.h"
#include "picture/picture.h"
#include "platform/paths.h"
#include "store/fitting_names.h"
#include "store/names.h"

#include <QDataStream>
#include <QDir>
#include <QUrl>

#include <set>
#include <system_error>
#include <utility>

namespace browser {
namespace {

using commands::IncomingPictures;
using commands::PicturesOfGroup;

const QString kOurs = QStringLiteral("application/x-txsgraphicslib-pictures");
constexpr app::TextPair kCopying{u"Das Bild wird kopiert", u"The picture is being copied"};
constexpr app::TextPair kCopyingMany{u"Die Bilder werden kopiert",
                                     u"The pictures are being copied"};
constexpr app::TextPair kNoFile{u"%1\nDas ist keine Datei dieses Rechners.",
                                u"%1\nThis is no file of this computer."};
constexpr app::TextPair kNothing{u"Das andere Programm hat keine Bilder herausgegeben.",
                                 u"The other program has not handed out any pictures."};

struct Copies {
    QList<QUrl> files;
    QImage image;
};

QImage imageOf(const store::StoredPicture& picture) {
    try {
        const picture::Picture decoded = picture::decode(picture.bytes);
        return decoded.scaledTo(decoded.facts().pixels);
    } catch (const picture::DecodeError&) {
        return {};
    }
}

// A folder that nothing was handed out from yet: whoever took earlier files may still read them.
std::filesystem::path freshFolder(const std::filesystem::path& temporaryFolder) {
    static int number = 0; // of the window's thread
    std::filesystem::path folder = temporaryFolder / "Clipboard" / std::to_string(++number);
    std::error_code ignored; // what goes wrong here, the next call tells
    std::filesystem::create_directories(folder, ignored);
    return folder;
}

Copies copyTo(const std::filesystem::path& folder, const store::Library& library,
              const PicturesOfGroup& pictures, store::Progress& progress) {
    Copies copies;
    std::set<std::u16string, store::ByName> taken;
    for (std::size_t i = 0; i < pictures.names.size(); ++i) {
        progress.report(i, pictures.names.size());
        if (progress.isStopWanted()) {
            throw compound::Error(compound::ErrorCode::Cancelled, folder, "stopped");
        }
        const auto picture = store::readPicture(library, pictures.group, pictures.names[i]);
        std::string name = store::fileBaseNameFor(picture.name);
        for (int number = 2; !taken.insert(base::fromUtf8(name)).second; ++number) {
            name = store::fileBaseNameFor(picture.name) + " (" + std::to_string(number) + ")";
        }
        const auto file = store::exportPicture(library, picture, folder, name);
        copies.files.append(QUrl::fromLocalFile(platform::fromFilePath(file)));
        if (pictures.names.size() == 1) {
            copies.image = imageOf(picture);
        }
    }
    return copies;
}

QString folderText(const store::Library& library) {
    return QDir(platform::fromFilePath(library.folder)).canonicalPath();
}

QByteArray written(const store::Library& library, const PicturesOfGroup& pictures,
                   Carrying carrying) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    QStringList names;
    for (const store::PictureName& name : pictures.names) {
        names.append(QString::fromStdU16String(name.text));
    }
    stream << folderText(library) << QString::fromStdU16String(store::keyOf(pictures.group))
           << names << (carrying == Carrying::ToMove);
    return bytes;
}

// Nothing when they are another library's.
std::optional<PicturesOfGroup> readOurs(const QByteArray& bytes, const store::Library& library,
                                        Carrying& carrying) {
    QDataStream stream(bytes);
    QString folder;
    QString key;
    QStringList names;
    bool isMoved = false;
    stream >> folder >> key >> names >> isMoved;
    if (stream.status() != QDataStream::Ok || folder != folderText(library) || names.isEmpty()) {
        return std::nullopt;
    }
    carrying = isMoved ? Carrying::ToMove : Carrying::ToCopy;
    PicturesOfGroup pictures{store::addressOf(key.toStdU16String()), {}};
    for (const QString& name : names) {
        pictures.names.push_back({name.toStdU16String()});
    }
    return pictures;
}

IncomingPictures readFiles(const QMimeData& data) {
    IncomingPictures incoming;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            incoming.files.push_back(platform::toFilePath(url.toLocalFile()));
        } else {
            incoming.refused.append(app::text(kNoFile).arg(url.toDisplayString()));
        }
    }
    if (incoming.files.empty() && data.hasImage()) {
        incoming.image = data.imageData().value<QImage>();
        incoming.refused.clear(); // a browser offers the address beside the image
    }
    if (incoming.files.empty() && incoming.image.isNull() && incoming.refused.isEmpty()) {
        incoming.refused.append(app::text(kNothing));
    }
    return incoming;
}

} // namespace

std::unique_ptr<QMimeData> carry(const store::Library& library, const PicturesOfGroup& pictures,
                                 Carrying carrying, const std::filesystem::path& temporaryFolder,
                                 QWidget* owner) {
    const std::filesystem::path folder = freshFolder(temporaryFolder);
    const bool isOne = pictures.names.size() == 1;
    const auto copies = app::resultOfLong<Copies>(
        {app::text(isOne ? kCopying : kCopyingMany),
         isOne ? app::LongOperation::Stopping::NotOffered : app::LongOperation::Stopping::Offered,
         app::LongOperation::Counting::Pieces},
        owner,
        [&](store::Progress& progress) { return copyTo(folder, library, pictures, progress); });
    auto data = std::make_unique<QMimeData>();
    if (!copies.image.isNull()) {
        data->setImageData(copies.image);
    }
    data->setUrls(copies.files);
    data->setData(kOurs, written(library, pictures, carrying));
    return data;
}

bool isFromLibrary(const QMimeData& data) {
    return data.hasFormat(kOurs);
}

bool mayHoldPictures(const QMimeData& data) {
    return data.hasFormat(kOurs) || data.hasUrls() || data.hasImage();
}

OfferedPictures picturesIn(const QMimeData& data, const store::Library& library) {
    OfferedPictures offered;
    if (data.hasFormat(kOurs)) {
        offered.ours = readOurs(data.data(kOurs), library, offered.carrying);
    }
    if (!offered.ours) {
        offered.incoming = readFiles(data);
    }
    return offered;
}

} // namespace browser
