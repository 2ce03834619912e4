#include "browser/temporary_pictures.h"

#include "base/utf8.h"
#include "store/names.h"

#include <array>
#include <string_view>
#include <system_error>
#include <vector>

namespace browser {
namespace {

constexpr std::array<std::u16string_view, 7> kExtensions{u"wmf", u"emf", u"bmp", u"gif",
                                                         u"jpg", u"ico", u"cur"};
constexpr std::array<std::u16string_view, 3> kBaseNames{u"Picture", u"EditPicture", u"UndoPicture"};

bool isTemporaryPicture(std::u16string_view fileName) {
    for (const std::u16string_view extension : kExtensions) {
        for (const std::u16string_view base : kBaseNames) {
            if (store::sameName(fileName,
                                std::u16string(base) + u'.' + std::u16string(extension))) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

void removeTemporaryPictures(const std::filesystem::path& folder) {
    std::error_code error;
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (isTemporaryPicture(base::fromPath(entry.path().filename()))) {
            found.push_back(entry.path());
        }
    }
    for (const std::filesystem::path& path : found) {
        std::filesystem::remove(path, error); // the whole folder goes with the process anyway
    }
}

} // namespace browser
