// Outlines and measures of characters, free of screens, hinting and sizes.
// Source of the measures: ISO/IEC 14496-22 (OpenType), tables OS/2, post and hhea.
#pragma once

#include <QCache>
#include <QFont>
#include <QPainterPath>
#include <QString>

#include <cstdint>
#include <memory>

namespace metafile {

// The size in which everything here is given: 1000 units are an em. y grows downwards; the origin
// is the left end of the base line.
inline constexpr double kUnitsPerEm = 1000;

// Points of a text's outline, behind which letters are left out: tens of megabytes, and more
// letters than any sheet can show.
inline constexpr int kMostTextElements = 400'000;

struct Glyph {
    QPainterPath outline; // to be filled with the winding rule, which is set in it
    double advance = 0;
    // False: no installed font has the character, and the outline is the font's empty box.
    bool isPresent = true;
};

struct FontMetrics {
    // The cell of a Windows font: ascent + descent is what a positive height of a font record
    // means, an em what a negative one means.
    double ascent = 0;
    double descent = 0;         // positive below the base line
    double averageWidth = 0;    // what the width of a font record means
    double underlineCentre = 0; // below the base line
    double underlineThickness = 0;
    double strikeOutCentre = 0; // above the base line
    double strikeOutThickness = 0;
};

// Size, underline and strike-out of the fonts asked for do not matter; family, weight, slant and
// stretch do. What the installed font lacks of boldness and slant is made from its outlines, as GDI
// does. Characters that it lacks come from the font that Qt falls back to.
//
// Keeps the 4096 glyphs and 64 fonts that were used last. Belongs to the thread that made it, as
// the fonts in it do; needs a QGuiApplication and must be gone before that is.
class GlyphSource {
  public:
    GlyphSource();
    ~GlyphSource();
    GlyphSource(const GlyphSource&) = delete;
    GlyphSource& operator=(const GlyphSource&) = delete;

    // Control characters have neither outline nor advance. Code points beyond Unicode and
    // surrogates are drawn as U+FFFD.
    Glyph glyph(const QFont& font, char32_t character);

    FontMetrics metrics(const QFont& font);

    // The one that all players of this thread share; gone when the thread or the application ends.
    // Threads that draw must end before the application does.
    static GlyphSource& ofThisThread();

  private:
    struct Face;

    std::shared_ptr<const Face> faceOf(const QFont& font);
    static Glyph loadGlyph(const Face& face, char32_t character);

    QCache<QString, std::shared_ptr<const Face>> faces_;
    QCache<std::uint64_t, Glyph> glyphs_; // by face number and character
    std::uint32_t nextFace_ = 0;
    QFont latestFont_;
    std::shared_ptr<const Face> latestFace_; // of latestFont_, found without a search
};

} // namespace metafile
