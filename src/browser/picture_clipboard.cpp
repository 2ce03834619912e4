#include "browser/picture_clipboard.h"

#include "app/long_operation.h"
#include "app/texts.h"
#include "base/utf8.h"
#include "picture/picture.h"
#include "platform/paths.h"
#include "store/picture_operations.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <memory>
#include <system_error>

namespace browser {
namespace {

// Apart from the files that windows hand to each other: a picture may be named like one of them.
constexpr const char* kFolder = "Clipboard";
constexpr app::TextPair kCopying{u"Das Bild wird kopiert", u"The picture is being copied"};

QImage imageOf(const store::StoredPicture& picture) {
    try {
        const picture::Picture decoded = picture::decode(picture.bytes);
        return decoded.scaledTo(decoded.facts().pixels);
    } catch (const picture::DecodeError&) {
        return {};
    }
}

// Names in a group file that another program has written may be paths, or hold what no file
// system takes.
std::string fileNameFor(std::u16string name) {
    const auto isUnfit = [](char16_t unit) {
        return unit < u' ' ||
               std::u16string_view(u"/\\:*?\"<>|\x7F").find(unit) != std::u16string_view::npos;
    };
    std::replace_if(name.begin(), name.end(), isUnfit, u'_');
    if (name.empty() || name.front() == u'.') {
        name.insert(name.begin(), u'_');
    }
    return base::toUtf8(name);
}

} // namespace

void copyToClipboard(const store::Library& library, const store::GroupAddress& group,
                     const store::PictureName& name, const std::filesystem::path& temporaryFolder,
                     QWidget* owner) {
    struct Copy {
        std::filesystem::path file;
        QImage image;
    };
    const Copy copy = app::resultOfLong<Copy>({app::text(kCopying)}, owner, [&](store::Progress&) {
        const store::StoredPicture picture = store::readPicture(library, group, name);
        const std::filesystem::path folder = temporaryFolder / kFolder;
        std::error_code ignored; // what goes wrong here, the next call tells
        std::filesystem::create_directory(folder, ignored);
        return Copy{store::exportPicture(library, picture, folder, fileNameFor(name.text)),
                    imageOf(picture)};
    });
    auto data = std::make_unique<QMimeData>();
    if (!copy.image.isNull()) {
        data->setImageData(copy.image);
    }
    data->setUrls({QUrl::fromLocalFile(QString::fromStdU16String(copy.file.u16string()))});
    QGuiApplication::clipboard()->setMimeData(data.release());
}

} // namespace browser
