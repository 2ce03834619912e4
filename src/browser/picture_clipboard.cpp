#include "browser/picture_clipboard.h"

#include "imaging/picture.h"
#include "platform/paths.h"
#include "store/picture_operations.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

#include <memory>
#include <system_error>

namespace browser {
namespace {

QImage imageOf(const store::StoredPicture& picture) {
    try {
        const imaging::Picture decoded = imaging::decode(picture.bytes);
        return decoded.scaledTo(decoded.facts().pixels);
    } catch (const imaging::DecodeError&) {
        return {};
    }
}

} // namespace

void copyToClipboard(const store::Library& library, const store::GroupAddress& group,
                     const store::PictureName& name, const std::filesystem::path& folder) {
    const store::StoredPicture picture = store::readPicture(library, group, name);
    // Cleaners of temporary files take empty folders, too; what goes wrong here, the next call
    // tells.
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::filesystem::path file =
        store::exportPicture(library, group, name, folder, store::toUtf8(name.text));
    auto data = std::make_unique<QMimeData>();
    const QImage image = imageOf(picture);
    if (!image.isNull()) {
        data->setImageData(image);
    }
    data->setUrls({QUrl::fromLocalFile(QString::fromStdU16String(file.u16string()))});
    QGuiApplication::clipboard()->setMimeData(data.release());
}

} // namespace browser
