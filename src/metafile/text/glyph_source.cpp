#include "metafile/text/glyph_source.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QGlyphRun>
#include <QRawFont>
#include <QTextLayout>
#include <QThread>
#include <QThreadStorage>

#include <array>

namespace metafile {

namespace {

constexpr int kMostFaces = 64;
constexpr int kMostGlyphs = 4096;

constexpr int kBoldFrom = 600; // the weight from which a font counts as bold
// How far GDI smears an outline to make it bold, as part of an em.
constexpr double kSmear = kUnitsPerEm / 24;

constexpr char32_t kSoftHyphen = 0xAD;
constexpr char32_t kReplacement = 0xFFFD;

// A table of an OpenType file, big-endian; what lies beyond its end is 0.
class FontTable {
  public:
    FontTable(const QRawFont& font, const char* name)
        : bytes_(font.fontTable(name)),
          scale_(font.unitsPerEm() > 0 ? kUnitsPerEm / font.unitsPerEm() : 1) {}

    bool has(qsizetype size) const { return bytes_.size() >= size; }
    int u16(qsizetype at) const {
        if (!has(at + 2)) {
            return 0;
        }
        return int(std::uint8_t(bytes_[at])) << 8 | int(std::uint8_t(bytes_[at + 1]));
    }
    // Design units as thousandths of an em.
    double length(qsizetype at) const { return u16(at) * scale_; }
    double signedLength(qsizetype at) const { return std::int16_t(u16(at)) * scale_; }

  private:
    QByteArray bytes_;
    double scale_;
};

// The width of a lower-case text in English: what version 0 to 2 of the OS/2 table calls the
// average width. Later versions average over all glyphs of the font, which differs widely between
// fonts whose letters are equally wide; files ask for widths of the earlier kind.
double averageLetterWidth(const QRawFont& font) {
    struct Letter {
        char16_t letter;
        int perMille;
    };
    constexpr std::array kLetters{
        Letter{u'a', 64}, Letter{u'b', 14}, Letter{u'c', 27}, Letter{u'd', 35}, Letter{u'e', 100},
        Letter{u'f', 20}, Letter{u'g', 14}, Letter{u'h', 42}, Letter{u'i', 63}, Letter{u'j', 3},
        Letter{u'k', 6},  Letter{u'l', 35}, Letter{u'm', 20}, Letter{u'n', 56}, Letter{u'o', 56},
        Letter{u'p', 17}, Letter{u'q', 4},  Letter{u'r', 49}, Letter{u's', 56}, Letter{u't', 71},
        Letter{u'u', 31}, Letter{u'v', 10}, Letter{u'w', 18}, Letter{u'x', 3},  Letter{u'y', 18},
        Letter{u'z', 2},  Letter{u' ', 166}};
    QString text;
    for (const Letter& letter : kLetters) {
        text += QChar(letter.letter);
    }
    const QList<quint32> indexes = font.glyphIndexesForString(text);
    if (indexes.size() != text.size() || indexes.contains(0)) {
        return 0;
    }
    const QList<QPointF> advances =
        font.advancesForGlyphIndexes(indexes, QRawFont::UseDesignMetrics);
    double sum = 0;
    for (std::size_t i = 0; i < kLetters.size() && qsizetype(i) < advances.size(); ++i) {
        sum += advances[qsizetype(i)].x() * kLetters.at(i).perMille;
    }
    return sum / 1000;
}

FontMetrics readMetrics(const QRawFont& font) {
    const FontTable os2(font, "OS/2");
    const FontTable post(font, "post");
    FontMetrics metrics;
    metrics.ascent = os2.length(74);
    metrics.descent = os2.length(76);
    if (metrics.ascent + metrics.descent <= 0) {
        metrics.ascent = font.ascent();
        metrics.descent = font.descent();
    }
    metrics.averageWidth = averageLetterWidth(font);
    if (metrics.averageWidth <= 0) {
        metrics.averageWidth = os2.signedLength(2);
    }
    if (metrics.averageWidth <= 0) {
        metrics.averageWidth = font.averageCharWidth();
    }

    metrics.underlineThickness = post.signedLength(10);
    if (metrics.underlineThickness <= 0) {
        metrics.underlineThickness = kUnitsPerEm / 20;
    }
    metrics.underlineCentre =
        post.has(12) ? metrics.underlineThickness / 2 - post.signedLength(8) : kUnitsPerEm / 8;
    metrics.strikeOutThickness = os2.signedLength(26);
    if (metrics.strikeOutThickness <= 0) {
        metrics.strikeOutThickness = metrics.underlineThickness;
    }
    metrics.strikeOutCentre = os2.signedLength(28) - metrics.strikeOutThickness / 2;
    if (metrics.strikeOutCentre <= 0) {
        metrics.strikeOutCentre = metrics.ascent * 0.3;
    }
    return metrics;
}

// Whether the font file itself is bold. Type 1 files have no table that tells.
bool isBoldItself(const QRawFont& font) {
    const int weight = FontTable(font, "OS/2").u16(4);
    if (weight > 0) {
        return weight >= kBoldFrom;
    }
    const QString style = font.styleName();
    return style.contains(u"bold", Qt::CaseInsensitive) ||
           style.contains(u"demi", Qt::CaseInsensitive) ||
           style.contains(u"black", Qt::CaseInsensitive);
}

// Two copies side by side, closer than any stem is wide: their union under the winding rule.
QPainterPath smeared(const QPainterPath& outline) {
    QPainterPath path = outline;
    path.setFillRule(Qt::WindingFill);
    path.addPath(outline.translated(kSmear, 0));
    return path;
}

// A glyph of a font, which may be another one than the one asked for.
struct Found {
    QRawFont font;
    quint32 index = 0;
};

// The writing system of a script that cannot be drawn right without its OpenType features; Any for
// all others. In both of Qt's lists these stand in the same order.
QFontDatabase::WritingSystem complexWritingSystem(char32_t character) {
    const QChar::Script script = QChar::script(character);
    if (script >= QChar::Script_Syriac && script <= QChar::Script_Sinhala) {
        return QFontDatabase::WritingSystem(QFontDatabase::Syriac +
                                            (script - QChar::Script_Syriac));
    }
    if (script == QChar::Script_Khmer) {
        return QFontDatabase::Khmer;
    }
    return script == QChar::Script_Nko ? QFontDatabase::Nko : QFontDatabase::Any;
}

Found findIn(const QRawFont& font, const QString& character) {
    const QList<quint32> indexes = font.glyphIndexesForString(character);
    return {font, indexes.isEmpty() ? 0 : indexes.front()};
}

Found findInWritingSystem(QFont font, QFontDatabase::WritingSystem system,
                          const QString& character) {
    constexpr qsizetype kMostTried = 4; // loading a font takes about a millisecond
    const QStringList families = QFontDatabase::families(system).mid(0, kMostTried);
    for (const QString& family : families) {
        font.setFamily(family);
        Found found = findIn(QRawFont::fromFont(font), character);
        if (found.index != 0) {
            return found;
        }
    }
    return {};
}

// The glyph that Qt's own text drawing would take.
Found findByLayout(const QFont& font, const QString& character) {
    QTextLayout layout(character, font);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    const QList<QGlyphRun> runs = layout.glyphRuns();
    for (const QGlyphRun& run : runs) {
        const QList<quint32> indexes = run.glyphIndexes();
        if (!indexes.isEmpty() && indexes.front() != 0) {
            return {run.rawFont(), indexes.front()};
        }
    }
    return {};
}

// A glyph of another font; index 0 when no font has it. For the complex scripts Qt would load every
// installed font, each with a warning, before it gives up.
Found findElsewhere(const QFont& font, char32_t character, const QString& text) {
    const QFontDatabase::WritingSystem system = complexWritingSystem(character);
    return system == QFontDatabase::Any ? findByLayout(font, text)
                                        : findInWritingSystem(font, system, text);
}

bool isInvisible(char32_t character) {
    const QChar::Category category = QChar::category(character);
    return category == QChar::Other_Control ||
           (category == QChar::Other_Format && character != kSoftHyphen);
}

QString keyOf(const QFont& font) {
    return QStringLiteral("%1/%2/%3/%4")
        .arg(font.families().join(u','))
        .arg(font.weight())
        .arg(int(font.style()))
        .arg(font.stretch());
}

} // namespace

struct GlyphSource::Face {
    QFont font; // of 1000 pixels
    QRawFont raw;
    FontMetrics metrics;
    std::uint32_t number = 0;
};

GlyphSource::GlyphSource() : faces_(kMostFaces), glyphs_(kMostGlyphs) {}

GlyphSource::~GlyphSource() = default;

std::shared_ptr<const GlyphSource::Face> GlyphSource::faceOf(const QFont& font) {
    if (latestFace_ && font == latestFont_) {
        return latestFace_;
    }
    const QString key = keyOf(font);
    if (const auto* known = faces_.object(key)) {
        latestFace_ = *known;
    } else {
        auto face = std::make_shared<Face>();
        face->font = font;
        face->font.setPixelSize(int(kUnitsPerEm));
        face->font.setHintingPreference(QFont::PreferNoHinting);
        face->font.setUnderline(false);
        face->font.setStrikeOut(false);
        face->raw = QRawFont::fromFont(face->font);
        face->metrics = readMetrics(face->raw);
        face->number = nextFace_++;
        latestFace_ = std::move(face);
        faces_.insert(key, new std::shared_ptr<const Face>(latestFace_)); // the cache owns it
    }
    latestFont_ = font;
    return latestFace_;
}

Glyph GlyphSource::glyph(const QFont& font, char32_t character) {
    if (character > QChar::LastValidCodePoint || QChar::isSurrogate(character)) {
        character = kReplacement;
    }
    const std::shared_ptr<const Face> face = faceOf(font);
    const std::uint64_t key = std::uint64_t(face->number) << 32U | character;
    if (const Glyph* known = glyphs_.object(key)) {
        return *known;
    }
    Glyph glyph = loadGlyph(*face, character);
    glyphs_.insert(key, new Glyph(glyph)); // the cache owns it
    return glyph;
}

Glyph GlyphSource::loadGlyph(const Face& face, char32_t character) {
    if (isInvisible(character)) {
        return {};
    }
    const QString text = QString::fromUcs4(&character, 1);
    Found found = findIn(face.raw, text);
    Glyph glyph;
    if (found.index == 0) {
        const Found other = findElsewhere(face.font, character, text);
        if (other.index != 0) {
            found = other;
        } else {
            glyph.isPresent = false;
        }
    }
    glyph.outline = found.font.pathForGlyph(found.index);
    glyph.outline.setFillRule(Qt::WindingFill);
    const QList<QPointF> advances =
        found.font.advancesForGlyphIndexes({found.index}, QRawFont::UseDesignMetrics);
    glyph.advance = advances.isEmpty() ? 0 : advances.front().x();
    if (face.font.weight() >= kBoldFrom && !isBoldItself(found.font)) {
        glyph.outline = smeared(glyph.outline);
    }
    return glyph;
}

FontMetrics GlyphSource::metrics(const QFont& font) {
    return faceOf(font)->metrics;
}

// When a thread ends, what it stores goes in the opposite order of the stores' making: this one is
// made once Qt's own stores of fonts are, so that its fonts go while their engines are there.
GlyphSource& GlyphSource::ofThisThread() {
    static const bool areQtsMade = QRawFont::fromFont(QFont()).isValid();
    (void)areQtsMade;
    static QThreadStorage<std::shared_ptr<GlyphSource>> sources;
    std::shared_ptr<GlyphSource>& own = sources.localData();
    if (!own) {
        own = std::make_shared<GlyphSource>();
        // What the main thread keeps would go only after the fonts' engines.
        if (QThread::currentThread() == QCoreApplication::instance()->thread()) {
            qAddPostRoutine([] { sources.localData().reset(); });
        }
    }
    return *own;
}

} // namespace metafile
