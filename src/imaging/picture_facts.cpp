#include "imaging/picture_facts.h"

#include "base/picture_units.h"

namespace imaging {

QString typeCodeOf(PictureKind kind) {
    const std::string_view code = base::kTypeCodes.at(static_cast<std::size_t>(kind));
    return QString::fromLatin1(code.data(), static_cast<qsizetype>(code.size()));
}

} // namespace imaging
