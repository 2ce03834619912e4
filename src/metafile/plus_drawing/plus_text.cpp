#include "metafile/plus_drawing/plus_text.h"

#include "metafile/text/fonts.h"
#include "metafile/text/glyph_source.h"
#include "metafile/text/symbol_fonts.h"

#include <algorithm>

namespace metafile {

namespace {

constexpr double kFar = 1e9; // world units
constexpr std::size_t kPointsOfLine = 20;

// A font at a size, ready to measure and to draw with.
class Face {
  public:
    Face(const PlusFont& font, double em, WorkBudget& budget)
        : font_(font),
          budget_(budget),
          perUnit_(em / kUnitsPerEm),
          painterFont_(installedFont(requestOf(font))) {
        metrics_ = GlyphSource::ofThisThread().metrics(painterFont_);
        translates_ = isSymbolFont(font.family) && !isInstalled(font.family);
        budget_.lookAtClock();
    }

    double ascent() const { return metrics_.ascent * perUnit_; }
    double lineHeight() const { return (metrics_.ascent + metrics_.descent) * perUnit_; }

    double widthOf(QStringView text) const {
        double width = 0;
        for (const char32_t letter : text.toUcs4()) {
            width += glyph(letter).advance * perUnit_;
        }
        return width;
    }

    double add(QPainterPath& path, char32_t letter, QPointF place) const {
        const Glyph drawn = glyph(letter);
        if (!drawn.outline.isEmpty() && path.elementCount() < kMostTextElements) {
            path.addPath((QTransform::fromScale(perUnit_, perUnit_) *
                          QTransform::fromTranslate(place.x(), place.y()))
                             .map(drawn.outline));
        }
        return drawn.advance * perUnit_;
    }

    // Letters that begin outside of `from` to `to` are left out.
    void addLine(QPainterPath& path, QStringView text, QPointF place, double from,
                 double to) const {
        const QPointF begin = place;
        for (const char32_t letter : text.toUcs4()) {
            const bool isSeen = place.x() >= from && place.x() <= to;
            place.rx() += isSeen ? add(path, letter, place) : glyph(letter).advance * perUnit_;
        }
        const double left = std::max(begin.x(), from);
        const double length = std::min(place.x(), to) - left;
        if (font_.underline) {
            addBar(path, {left, begin.y()}, length, metrics_.underlineCentre,
                   metrics_.underlineThickness);
        }
        if (font_.strikeOut) {
            addBar(path, {left, begin.y()}, length, -metrics_.strikeOutCentre,
                   metrics_.strikeOutThickness);
        }
    }

  private:
    static FontRequest requestOf(const PlusFont& font) {
        constexpr int kNormal = 400;
        constexpr int kBold = 700;
        return {font.family, 0, 1, font.bold ? kBold : kNormal,
                font.italic ? Slant::Italic : Slant::Upright};
    }

    Glyph glyph(char32_t letter) const {
        constexpr std::size_t kPoints = 10;
        budget_.spendPoints(kPoints);
        const char32_t same = translates_ ? unicodeOf(font_.family, letter) : 0;
        return GlyphSource::ofThisThread().glyph(painterFont_, same != 0 ? same : letter);
    }

    void addBar(QPainterPath& path, QPointF begin, double length, double centre,
                double thickness) const {
        path.addRect(begin.x(), begin.y() + (centre - thickness / 2) * perUnit_, length,
                     thickness * perUnit_);
    }

    const PlusFont& font_;
    WorkBudget& budget_;
    double perUnit_;
    QFont painterFont_;
    FontMetrics metrics_;
    bool translates_ = false;
};

// Breaks a paragraph at spaces so that no line is wider than `most`; single words may be.
void addBroken(QStringList& lines, const QString& paragraph, const Face& face, double most) {
    // Fonts that stand in for missing ones are a little wider at times, and must not break lines
    // that the right one would not.
    constexpr double kTolerance = 1.04;
    const double space = face.widthOf(u" ");
    QString line;
    double width = 0;
    bool isFirst = true;
    for (const QString& word : paragraph.split(u' ')) {
        const double wordWidth = face.widthOf(word);
        const bool fits = width + space + wordWidth <= most * kTolerance;
        if (!isFirst && !fits) {
            lines.append(line);
            line = word;
            width = wordWidth;
        } else {
            line += isFirst ? word : u' ' + word;
            width += (isFirst ? 0 : space) + wordWidth;
        }
        isFirst = false;
    }
    lines.append(line);
}

// Without the marks of keys: a single "&" stands before one, two of them are one to be shown.
QString withoutMarks(const QString& text) {
    QString result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && i + 1 < text.size()) {
            ++i;
        }
        result.append(text[i]);
    }
    return result;
}

QStringList linesOf(const QString& text, const PlusStringFormat& format, const Face& face,
                    double most) {
    QString normal = format.marksKeys ? withoutMarks(text) : text;
    normal.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QStringList lines;
    for (const QString& paragraph : normal.split(u'\n')) {
        if (format.wraps && most > 0) {
            addBroken(lines, paragraph, face, most);
        } else {
            lines.append(paragraph);
        }
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
    const Face face(font, em, budget);
    // Lines are laid out from left to right in a box of their own first.
    const QSizeF side = format.vertical ? string.layout.size().transposed() : string.layout.size();
    const double margin = format.leadingMargin * em;
    const double room = std::max(0.0, side.width() - 2 * margin);
    const QStringList lines = linesOf(string.text, format, face, room);
    const double lineHeight = face.lineHeight();
    const double height = lineHeight * static_cast<double>(lines.size());
    const double left = room > 0 || format.across == PlusAlignment::Near ? margin : 0;
    PlusAlignment across = format.across;
    if (format.rightToLeft && across != PlusAlignment::Centre) {
        across = across == PlusAlignment::Near ? PlusAlignment::Far : PlusAlignment::Near;
    }

    const bool clips = format.clips && side.width() > 0;
    const double from = clips ? -0.5 * em : -kFar;
    const double to = clips ? side.width() : kFar;
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    double top = startOf(format.down, 0, side.height(), height);
    for (qsizetype i = 0; i < lines.size() && path.elementCount() < kMostTextElements;
         ++i, top += lineHeight) {
        budget.spendPoints(kPointsOfLine);
        const bool isBelow = side.height() > 0 && top >= side.height();
        if (i > 0 && isBelow && format.clips) {
            break;
        }
        const double begin = startOf(across, left, room, face.widthOf(lines[i]));
        QPainterPath line;
        face.addLine(line, lines[i], {begin, face.ascent()}, from, to);
        // Vertical lines are turned with the clock, the first one to the left of the others.
        const QTransform place =
            format.vertical
                ? QTransform(0, 1, -1, 0, string.layout.x() + top + lineHeight, string.layout.y())
                : QTransform::fromTranslate(string.layout.x(), string.layout.y() + top);
        path.addPath(place.map(line));
    }
    return path;
}

QPainterPath plusLettersOutline(const PlusDrawLetters& letters, const PlusFont& font, double em,
                                WorkBudget& budget) {
    const Face face(font, em, budget);
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    QPointF place;
    for (std::size_t i = 0; i < letters.letters.size(); ++i) {
        if (i < letters.places.size()) {
            place = letters.places[i];
        }
        place.rx() += face.add(path, letters.letters[i], place);
    }
    return letters.transform.map(path);
}

} // namespace metafile
