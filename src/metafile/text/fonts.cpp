#include "metafile/text/fonts.h"

#include "metafile/text/symbol_fonts.h"

#include <QFontDatabase>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>
#include <string_view>

namespace metafile {

namespace {

// The kinds of letters among which substitutes are chosen.
enum class Look {
    Sans,
    Serif,
    Mono,
    NarrowSans,
    WideSans,
    Calibri,
    Cambria,
    Georgia,
    WideMono,
    Palatino,
    Schoolbook,
    Bookman,
    Geometric,
    Chancery,
    Pictures,
};

// Best first; the first of equal letter widths, where there are such.
QStringList candidatesFor(Look look) {
    static const QStringList sans{"Liberation Sans", "Arimo", "Nimbus Sans", "FreeSans",
                                  "DejaVu Sans"};
    static const QStringList serif{"Liberation Serif", "Tinos", "Nimbus Roman", "FreeSerif",
                                   "DejaVu Serif"};
    static const QStringList mono{"Liberation Mono", "Cousine", "Nimbus Mono PS", "FreeMono",
                                  "DejaVu Sans Mono"};
    switch (look) {
    case Look::Sans:
        return sans;
    case Look::Serif:
        return serif;
    case Look::Mono:
        return mono;
    case Look::NarrowSans:
        return QStringList{"Liberation Sans Narrow", "Nimbus Sans Narrow",
                           "DejaVu Sans Condensed"} +
               sans;
    case Look::WideSans:
        return QStringList{"DejaVu Sans", "Bitstream Vera Sans"} + sans;
    case Look::Calibri:
        return QStringList{"Carlito"} + sans;
    case Look::Cambria:
        return QStringList{"Caladea"} + serif;
    case Look::Georgia:
        return QStringList{"Gelasio", "DejaVu Serif"} + serif;
    case Look::WideMono:
        return QStringList{"DejaVu Sans Mono", "Noto Sans Mono"} + mono;
    case Look::Palatino:
        return QStringList{"P052", "TeX Gyre Pagella"} + serif;
    case Look::Schoolbook:
        return QStringList{"C059", "TeX Gyre Schola"} + serif;
    case Look::Bookman:
        return QStringList{"URW Bookman", "TeX Gyre Bonum"} + serif;
    case Look::Geometric:
        return QStringList{"URW Gothic", "TeX Gyre Adventor"} + sans;
    case Look::Chancery:
        return QStringList{"Z003", "TeX Gyre Chorus"} + serif;
    case Look::Pictures:
        return QStringList{"DejaVu Sans", "OpenSymbol"} + sans;
    }
    return sans;
}

struct KnownFamily {
    std::u16string_view name; // compact, see below
    Look look;
};

// A family is also known by names that only go on after one of these: "ArialMT", "Helvetica-Bold",
// "Times New Roman PSMT"; the longest counts.
constexpr std::array kKnownFamilies{
    KnownFamily{u"arial", Look::Sans},
    KnownFamily{u"arialnarrow", Look::NarrowSans},
    KnownFamily{u"avantgarde", Look::Geometric},
    KnownFamily{u"baskerville", Look::Serif},
    KnownFamily{u"bookantiqua", Look::Palatino},
    KnownFamily{u"bookman", Look::Bookman},
    KnownFamily{u"calibri", Look::Calibri},
    KnownFamily{u"cambria", Look::Cambria},
    KnownFamily{u"century", Look::Schoolbook},
    KnownFamily{u"centurygothic", Look::Geometric},
    KnownFamily{u"consolas", Look::WideMono},
    KnownFamily{u"constantia", Look::Georgia},
    KnownFamily{u"courier", Look::Mono},
    KnownFamily{u"fixedsys", Look::Mono},
    KnownFamily{u"garamond", Look::Serif},
    KnownFamily{u"georgia", Look::Georgia},
    KnownFamily{u"helv", Look::Sans},
    KnownFamily{u"helveticanarrow", Look::NarrowSans},
    KnownFamily{u"lettergothic", Look::Mono},
    KnownFamily{u"lucidaconsole", Look::WideMono},
    KnownFamily{u"lucidasans", Look::WideSans},
    KnownFamily{u"lucidasanstypewriter", Look::WideMono},
    KnownFamily{u"menlo", Look::WideMono},
    KnownFamily{u"minion", Look::Serif},
    KnownFamily{u"monaco", Look::WideMono},
    KnownFamily{u"monotypecorsiva", Look::Chancery},
    KnownFamily{u"msgothic", Look::Mono},
    KnownFamily{u"msmincho", Look::Mono},
    KnownFamily{u"msserif", Look::Serif},
    KnownFamily{u"newcenturyschlbk", Look::Schoolbook},
    KnownFamily{u"newcenturyschoolbook", Look::Schoolbook},
    KnownFamily{u"palatino", Look::Palatino},
    KnownFamily{u"roman", Look::Serif},
    KnownFamily{u"swiss", Look::Sans},
    KnownFamily{u"terminal", Look::Mono},
    KnownFamily{u"times", Look::Serif},
    KnownFamily{u"timesnewroman", Look::Serif},
    KnownFamily{u"tmsrmn", Look::Serif},
    KnownFamily{u"univers", Look::Sans},
    KnownFamily{u"universcondensed", Look::NarrowSans},
    KnownFamily{u"verdana", Look::WideSans},
    KnownFamily{u"zapfchancery", Look::Chancery},
};

// Letters and digits only, in lower case: "Times New Roman" and "TimesNewRoman" are one.
QString compact(QStringView name) {
    QString result;
    for (const QChar c : name) {
        if (c.isLetterOrNumber()) {
            result += c.toLower();
        }
    }
    return result;
}

// The families by their name in lower case. Qt adds a foundry in brackets where two have the name.
const QHash<QString, QString>& installedFamilies() {
    static const QHash<QString, QString> families = [] {
        QHash<QString, QString> result;
        const QStringList names = QFontDatabase::families();
        for (const QString& name : names) {
            const QString family = name.section(QLatin1String(" ["), 0, 0);
            result.insert(family.toLower(), family);
        }
        return result;
    }();
    return families;
}

// The family as it is installed, empty when it is not. Bitmap fonts do not count.
QString findInstalled(QStringView family) {
    const QString found = installedFamilies().value(family.toString().toLower());
    return !found.isEmpty() && QFontDatabase::isSmoothlyScalable(found) ? found : QString();
}

// Without the mark of vertical writing and the character sets that old programs add to the name.
QString plainFamily(const QString& family) {
    static const QStringList kSuffixes{
        " ce",          " cyr",      " greek",  " tur",     " baltic",
        " (arabic)",    " (hebrew)", " (thai)", " western", " central europe",
        " (vietnamese)"};
    QString plain = family.trimmed();
    while (plain.startsWith(u'@')) {
        plain.remove(0, 1);
    }
    if (!findInstalled(plain).isEmpty()) {
        return plain;
    }
    for (const QString& suffix : kSuffixes) {
        if (plain.endsWith(suffix, Qt::CaseInsensitive)) {
            plain.chop(suffix.size());
            break;
        }
    }
    return plain;
}

const KnownFamily* knownFamily(const QString& compactName) {
    const KnownFamily* best = nullptr;
    for (const KnownFamily& known : kKnownFamilies) {
        const QStringView name(known.name);
        if (compactName.startsWith(name) && (!best || known.name.size() > best->name.size())) {
            best = &known;
        }
    }
    return best;
}

Look lookOfClass(std::uint8_t pitchAndFamily) {
    constexpr unsigned kFixedPitch = 1;
    constexpr unsigned kVariablePitch = 2;
    constexpr unsigned kRoman = 1;
    constexpr unsigned kModern = 3;
    const unsigned pitch = pitchAndFamily & 3U;
    const unsigned family = pitchAndFamily >> 4U;
    if (pitch == kFixedPitch || (family == kModern && pitch != kVariablePitch)) {
        return Look::Mono;
    }
    return family == kRoman ? Look::Serif : Look::Sans;
}

// The Greek letters of Symbol have serifs.
Look lookOfSymbols(const QString& compactName) {
    return compactName.contains(u"symbol") ? Look::Serif : Look::Pictures;
}

QFont withLook(const QString& family, int weight, Slant slant) {
    QFont font(family);
    weight = weight <= 0 ? int(QFont::Normal) : (std::clamp(weight, 100, 900) + 50) / 100 * 100;
    font.setWeight(QFont::Weight(weight));
    font.setItalic(slant == Slant::Italic);
    return font;
}

QFont firstInstalled(const QStringList& candidates, int weight, Slant slant) {
    for (const QString& candidate : candidates) {
        const QString family = findInstalled(candidate);
        if (!family.isEmpty()) {
            return withLook(family, weight, slant);
        }
    }
    return withLook(QFont().defaultFamily(), weight, slant);
}

// A name that only adds the style, such as "Helvetica-BoldOblique", means that style.
QFont substituteFor(const KnownFamily& known, const QString& compactName,
                    const FontRequest& request) {
    const QStringView rest = QStringView(compactName).sliced(qsizetype(known.name.size()));
    int weight = request.weight;
    if (rest.contains(u"bold") || rest.contains(u"black") || rest.contains(u"heavy")) {
        weight = std::max(weight, int(QFont::Bold));
    }
    const bool isSlanted = rest.contains(u"italic") || rest.contains(u"oblique");
    return firstInstalled(candidatesFor(known.look), weight,
                          isSlanted ? Slant::Italic : request.slant);
}

} // namespace

bool isInstalled(QStringView family) {
    return !findInstalled(family.trimmed()).isEmpty();
}

QFont installedFont(const FontRequest& request) {
    const QString family = plainFamily(request.family);
    const QString installed = findInstalled(family);
    if (!installed.isEmpty()) {
        return withLook(installed, request.weight, request.slant);
    }
    const QString name = compact(family);
    if (isSymbolFont(family)) {
        return firstInstalled(candidatesFor(lookOfSymbols(name)), request.weight, request.slant);
    }
    if (const KnownFamily* known = knownFamily(name)) {
        return substituteFor(*known, name, request);
    }
    return firstInstalled(candidatesFor(lookOfClass(request.pitchAndFamily)), request.weight,
                          request.slant);
}

} // namespace metafile
