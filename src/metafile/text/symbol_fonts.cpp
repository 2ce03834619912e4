#include "metafile/text/symbol_fonts.h"

#include "base/windows_1252.h"
#include "metafile/text/symbol_tables.h"

#include <QString>

#include <algorithm>
#include <array>

namespace metafile {

namespace {

constexpr char32_t kFirstCode = 0x20;
constexpr char32_t kLastCode = 0xFF;
constexpr char32_t kPrivateRange = 0xF000;
constexpr char32_t kNone = 0xFFFD;

// MT Extra has a few mathematical signs only.
constexpr CodeTable kMtExtraCodes = U"BCIKLMNOQU`abchlmorstvw#$%&{}pf<>():;=?@APRSVWXYZ[]^de";
constexpr CodeTable kMtExtraCharacters = U"≬∐⋂…⋯⋮⋰⋱∵⋃‵↦↕⇕ℏℓ∓∘→←↔⇀↼ˋˆ˜˙⏟⏞≺≻⊲⊳⌣⌢∼≃≪≫≜≙∥∡∢△□▭▱↗↙↘↖○⊙";
static_assert(kMtExtraCodes.size() == kMtExtraCharacters.size());

enum class SymbolFont {
    None,
    Symbol,
    Wingdings,
    Wingdings2,
    Wingdings3,
    Webdings,
    ZapfDingbats,
    MtExtra,
};

struct KnownName {
    QLatin1StringView name; // without blanks and hyphens
    SymbolFont font;
};

constexpr std::array kKnownNames{
    KnownName{QLatin1StringView("symbol"), SymbolFont::Symbol},
    KnownName{QLatin1StringView("symbolmt"), SymbolFont::Symbol},
    KnownName{QLatin1StringView("euclidsymbol"), SymbolFont::Symbol},
    KnownName{QLatin1StringView("wingdings"), SymbolFont::Wingdings},
    KnownName{QLatin1StringView("wingdings2"), SymbolFont::Wingdings2},
    KnownName{QLatin1StringView("wingdings3"), SymbolFont::Wingdings3},
    KnownName{QLatin1StringView("webdings"), SymbolFont::Webdings},
    KnownName{QLatin1StringView("zapfdingbats"), SymbolFont::ZapfDingbats},
    KnownName{QLatin1StringView("itczapfdingbats"), SymbolFont::ZapfDingbats},
    KnownName{QLatin1StringView("monotypesorts"), SymbolFont::ZapfDingbats},
    KnownName{QLatin1StringView("mtextra"), SymbolFont::MtExtra},
};

SymbolFont fontOf(QStringView family) {
    QString name;
    for (const QChar c : family) {
        if (!c.isSpace() && c != u'-') {
            name += c.toLower();
        }
    }
    const auto* found = std::ranges::find(kKnownNames, name, &KnownName::name);
    return found == kKnownNames.end() ? SymbolFont::None : found->font;
}

CodeTable tableOf(SymbolFont font) {
    switch (font) {
    case SymbolFont::Symbol:
        return kSymbol;
    case SymbolFont::Wingdings:
        return kWingdings;
    case SymbolFont::Wingdings2:
        return kWingdings2;
    case SymbolFont::Wingdings3:
        return kWingdings3;
    case SymbolFont::Webdings:
        return kWebdings;
    case SymbolFont::ZapfDingbats:
        return kZapfDingbats;
    case SymbolFont::None:
    case SymbolFont::MtExtra:
        break;
    }
    return {};
}

// The byte that a code in one of its three forms means; 0 when it means none.
char32_t byteOf(char32_t code) {
    if (code >= kPrivateRange + kFirstCode && code <= kPrivateRange + kLastCode) {
        return code - kPrivateRange;
    }
    if (code >= kFirstCode && code <= kLastCode) {
        return code;
    }
    const bool isUnit = code >= 0x80 && code <= 0xFFFF;
    return isUnit ? base::toWindows1252(char16_t(code)).value_or(std::uint8_t(0)) : 0;
}

char32_t mtExtra(char32_t byte) {
    if (byte == U' ') {
        return byte;
    }
    const std::size_t at = kMtExtraCodes.find(byte);
    return at == CodeTable::npos ? 0 : kMtExtraCharacters[at];
}

} // namespace

bool isSymbolFont(QStringView family) {
    return fontOf(family) != SymbolFont::None;
}

char32_t unicodeOf(QStringView family, char32_t code) {
    const SymbolFont font = fontOf(family);
    const char32_t byte = byteOf(code);
    if (font == SymbolFont::None || byte == 0) {
        return 0;
    }
    if (font == SymbolFont::MtExtra) {
        return mtExtra(byte);
    }
    const CodeTable table = tableOf(font);
    const char32_t character = table[byte - kFirstCode];
    return character == kNone ? 0 : character;
}

} // namespace metafile
