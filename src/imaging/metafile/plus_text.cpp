#include "imaging/metafile/plus_text.h"

#include "imaging/metafile/fonts.h"
#include "imaging/metafile/glyph_source.h"
#include "imaging/metafile/symbol_fonts.h"

#include <algorithm>

namespace imaging::metafile {

namespace {

constexpr std::size_t kPointsPerLetter = 20;

// A font at a size, ready to measure and to draw with.
class Face {
  public:
    Face(const PlusFont& font, double em)
        : font_(font), perUnit_(em / kUnitsPerEm), painterFont_(installedFont(requestOf(font))) {
        metrics_ = GlyphSource::shared().metrics(painterFont_);
        translates_ = isSymbolFont(font.family) && !isInstalled(font.family);
    }

    double ascent() const { return metrics_.ascent * perUnit_; }
    double lineHeight() const { return (metrics_.ascent + metrics_.descent) * perUnit_; }

    double widthOf(QStringView text) const {
        double width = 0;
        for (const char32_t letter : text.toUcs4())
            width += glyph(letter).advance * perUnit_;
        return width;
    }

    double add(QPainterPath& path, char32_t letter, QPointF place) const {
        const Glyph drawn = glyph(letter);
        if (!drawn.outline.isEmpty())
            path.addPath((QTransform::fromScale(perUnit_, perUnit_) *
                          QTransform::fromTranslate(place.x(), place.y()))
                             .map(drawn.outline));
        return drawn.advance * perUnit_;
    }

    void addLine(QPainterPath& path, QStringView text, QPointF place) const {
        const QPointF begin = place;
        for (const char32_t letter : text.toUcs4())
            place.rx() += add(path, letter, place);
        const double length = place.x() - begin.x();
        if (font_.underline)
            addBar(path, begin, length, metrics_.underlineCentre, metrics_.underlineThickness);
        if (font_.strikeOut)
            addBar(path, begin, length, -metrics_.strikeOutCentre, metrics_.strikeOutThickness);
    }

  private:
    static FontRequest requestOf(const PlusFont& font) {
        constexpr int kNormal = 400;
        constexpr int kBold = 700;
        return {font.family, 0, 1, font.bold ? kBold : kNormal,
                font.italic ? Slant::Italic : Slant::Upright};
    }

    Glyph glyph(char32_t letter) const {
        const char32_t same = translates_ ? unicodeOf(font_.family, letter) : 0;
        return GlyphSource::shared().glyph(painterFont_, same != 0 ? same : letter);
    }

    void addBar(QPainterPath& path, QPointF begin, double length, double centre,
                double thickness) const {
        path.addRect(begin.x(), begin.y() + (centre - thickness / 2) * perUnit_, length,
                     thickness * perUnit_);
    }

    const PlusFont& font_;
    double perUnit_;
    QFont painterFont_;
    FontMetrics metrics_;
    bool translates_ = false;
};

// Breaks a paragraph at spaces so that no line is wider than `most`; single words may be.
void addBroken(QStringList& lines, const QString& paragraph, const Face& face, double most) {
    QString line;
    for (const QString& word : paragraph.split(u' ')) {
        const QString longer = line.isEmpty() ? word : line + u' ' + word;
        if (!line.isEmpty() && face.widthOf(longer) > most) {
            lines.append(line);
            line = word;
        } else {
            line = longer;
        }
    }
    lines.append(line);
}

QStringList linesOf(const QString& text, const PlusStringFormat& format, const Face& face,
                    double most) {
    QString normal = text;
    normal.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QStringList lines;
    for (const QString& paragraph : normal.split(u'\n')) {
        if (format.wraps && most > 0)
            addBroken(lines, paragraph, face, most);
        else
            lines.append(paragraph);
    }
    return lines;
}

double startOf(PlusAlignment alignment, double begin, double room, double length) {
    switch (alignment) {
    case PlusAlignment::Centre:
        return begin + (room - length) / 2;
    case PlusAlignment::Far:
        return begin + room - length;
    case PlusAlignment::Near:
        break;
    }
    return begin;
}

} // namespace

QPainterPath plusTextOutline(const PlusDrawString& string, const PlusFont& font,
                             const PlusStringFormat& format, double em, WorkBudget& budget) {
    budget.spendPoints(kPointsPerLetter * (static_cast<std::size_t>(string.text.size()) + 1));
    const Face face(font, em);
    const double margin = format.leadingMargin * em;
    const double room = std::max(0.0, string.layout.width() - 2 * margin);
    const QStringList lines = linesOf(string.text, format, face, room);
    const double height = face.lineHeight() * static_cast<double>(lines.size());
    const double left =
        string.layout.left() + (room > 0 || format.across == PlusAlignment::Near ? margin : 0);
    double top = startOf(format.down, string.layout.top(), string.layout.height(), height);
    PlusAlignment across = format.across;
    if (format.rightToLeft && across != PlusAlignment::Centre)
        across = across == PlusAlignment::Near ? PlusAlignment::Far : PlusAlignment::Near;
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const QString& line : lines) {
        const double begin = startOf(across, left, room, face.widthOf(line));
        face.addLine(path, line, {begin, top + face.ascent()});
        top += face.lineHeight();
    }
    return path;
}

QPainterPath plusLettersOutline(const PlusDrawLetters& letters, const PlusFont& font, double em,
                                WorkBudget& budget) {
    budget.spendPoints(kPointsPerLetter * (letters.letters.size() + 1));
    const Face face(font, em);
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    QPointF place;
    for (std::size_t i = 0; i < letters.letters.size(); ++i) {
        if (i < letters.places.size())
            place = letters.places[i];
        place.rx() += face.add(path, letters.letters[i], place);
    }
    return letters.transform.map(path);
}

} // namespace imaging::metafile
