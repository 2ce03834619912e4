#include "imaging/metafile/symbol_fonts.h"
namespace imaging::metafile {
bool isSymbolFont(QStringView) {
    return false;
}
char32_t unicodeOf(QStringView, char32_t) {
    return 0;
}
} // namespace imaging::metafile
