#include "metafile/drawing/text_painter.h"

#include "metafile/text/character_sets.h"
#include "metafile/text/fonts.h"
#include "metafile/text/glyph_source.h"
#include "metafile/text/symbol_fonts.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

enum Alignment : unsigned {
    MovesPosition = 1,
    Right = 2,
    Centre = 6,
    Bottom = 8,
    BaseLine = 24,
};

constexpr char32_t kPrivateBegin = 0xF000;
constexpr char32_t kPrivateEnd = 0xF0FF;

struct Letter {
    char32_t character = 0;
    std::optional<double> advance; // logical units; none: the font's own
    double rise = 0;               // upwards
};

double sumOf(const std::vector<double>& values, std::size_t begin, std::size_t end) {
    double sum = 0;
    for (std::size_t i = begin; i < std::min(end, values.size()); ++i) {
        sum += values[i];
    }
    return sum;
}

// Units to characters; `first` tells for each unit which of the record's advances begins it.
template <typename First>
std::vector<Letter> lettersOf(const QString& text, const Text& record, First first,
                              std::size_t advances) {
    std::vector<Letter> letters;
    for (qsizetype i = 0; i < text.size();) {
        const bool pair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        const qsizetype next = i + (pair ? 2 : 1);
        Letter letter;
        letter.character =
            pair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : char32_t{text[i].unicode()};
        if (!record.advances.empty()) {
            const std::size_t end = next < text.size() ? first(next) : advances;
            letter.advance = sumOf(record.advances, first(i), end);
            letter.rise = sumOf(record.verticalAdvances, first(i), end);
        }
        letters.push_back(letter);
        i = next;
    }
    return letters;
}

// Glyph numbers mean something in their own font only. The usual fonts begin with three special
// glyphs and go on with the characters from the space on.
std::vector<Letter> lettersOfGlyphs(const std::vector<std::uint16_t>& glyphs, const Text& record) {
    constexpr unsigned kFirstGlyph = 3;
    constexpr unsigned kGlyphs = 95;
    std::vector<Letter> letters;
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        Letter letter;
        const bool usual = glyphs[i] >= kFirstGlyph && glyphs[i] < kFirstGlyph + kGlyphs;
        letter.character = usual ? U' ' + glyphs[i] - kFirstGlyph : U' ';
        if (i < record.advances.size()) {
            letter.advance = record.advances[i];
        }
        if (i < record.verticalAdvances.size()) {
            letter.rise = record.verticalAdvances[i];
        }
        letters.push_back(letter);
    }
    return letters;
}

std::vector<Letter> lettersOf(const Text& record, const Font& font) {
    if (const auto* glyphs = std::get_if<std::vector<std::uint16_t>>(&record.characters)) {
        return lettersOfGlyphs(*glyphs, record);
    }
    if (const auto* bytes = std::get_if<QByteArray>(&record.characters)) {
        const auto decoded =
            textOf(std::as_bytes(std::span(bytes->data(), static_cast<std::size_t>(bytes->size()))),
                   font.characterSet);
        return lettersOf(
            decoded.text, record,
            [&](qsizetype unit) {
                return static_cast<std::size_t>(decoded.byteOfUnit[static_cast<std::size_t>(unit)]);
            },
            static_cast<std::size_t>(bytes->size()));
    }
    const auto& text = std::get<QString>(record.characters);
    return lettersOf(
        text, record, [](qsizetype unit) { return static_cast<std::size_t>(unit); },
        static_cast<std::size_t>(text.size()));
}

// The character to draw. Codes of symbol fonts have counterparts; the private ones of others are
// bytes in disguise.
char32_t drawnCharacter(char32_t character, const ChosenFont& font) {
    if (font.translatesSymbols) {
        const char32_t same = unicodeOf(font.record.family, character);
        return same != 0 ? same : character;
    }
    const bool isPrivate = character > kPrivateBegin && character <= kPrivateEnd;
    const bool isSymbol = isSymbolFont(font.record.family);
    if (isPrivate && !isSymbol) {
        return character - kPrivateBegin;
    }
    // An installed symbol font has its signs in the private range.
    if (isSymbol && character > U' ' && character <= kPrivateEnd - kPrivateBegin) {
        return character + kPrivateBegin;
    }
    return character;
}

// How large letters are and where they run, from units of the font to image pixels.
struct Frame {
    FontMetrics metrics;
    double perUnit = 1; // logical units down to one of the font's
    double stretch = 1; // letters' width against their natural one
    QTransform toImage; // from the text's own axes (logical lengths, not turned) to image pixels

    double ascent() const { return metrics.ascent * perUnit; }
    double descent() const { return metrics.descent * perUnit; }
    double width(double fontUnits) const { return fontUnits * perUnit * stretch; }
};

// In logical units; `logicalPerDevice` of them are a device unit.
double emOf(const Font& font, const FontMetrics& metrics, double logicalPerDevice) {
    constexpr double kUsualPixels = 13;
    const double unit = font.deviceUnits ? logicalPerDevice : 1;
    if (font.height < 0) {
        return -font.height * unit;
    }
    if (font.height > 0) {
        return font.height * unit * kUnitsPerEm / std::max(1.0, metrics.ascent + metrics.descent);
    }
    return kUsualPixels * logicalPerDevice;
}

Frame frameOf(const ChosenFont& font, const DeviceContext& context) {
    Frame frame;
    frame.metrics = GlyphSource::ofThisThread().metrics(font.painterFont);
    // Mirrored axes of the page do not mirror letters; the world transform does.
    const QTransform& page = context.pageToImage;
    const double across = std::hypot(page.m11(), page.m12());
    const double down = std::hypot(page.m21(), page.m22());
    const double logicalPerDevice = context.imagePerDevice / std::max(down, 1e-6);
    frame.perUnit = emOf(font.record, frame.metrics, logicalPerDevice) / kUnitsPerEm;
    const QTransform& world = context.mapping.world;
    const double fold = page.m22() < 0 ? -1 : 1; // the world's y axis runs as the page's does
    const double foldAcross = page.m11() < 0 ? -1 : 1;
    const QTransform turned(world.m11(), world.m12() * fold * foldAcross,
                            world.m21() * fold * foldAcross, world.m22(), 0, 0);
    frame.toImage = turned * QTransform::fromScale(across, down);
    if (font.record.width != 0 && frame.metrics.averageWidth > 0) {
        frame.stretch = std::abs(font.record.width) / (frame.metrics.averageWidth * frame.perUnit);
    } else if (across > 0) {
        frame.stretch = down / across; // letters keep their shape on a page that does not
    }
    // The angle counts in the page's own sense: where its y axis points up it turns the other way.
    QTransform turn;
    turn.rotate(-font.record.escapement / 10.0 * fold * foldAcross);
    frame.toImage = turn * frame.toImage;
    return frame;
}

struct Line {
    std::vector<double> at;   // where each letter begins
    std::vector<double> rise; // how far it is above the base line
    double length = 0;
};

Line layOut(const std::vector<Letter>& letters, const ChosenFont& font, const Frame& frame,
            const DeviceContext& context, WorkBudget& budget) {
    constexpr std::size_t kPointsPerLetter = 20;
    Line line;
    double rise = 0;
    for (const Letter& letter : letters) {
        budget.spendPoints(kPointsPerLetter);
        line.at.push_back(line.length);
        line.rise.push_back(rise);
        rise += letter.rise;
        if (letter.advance) {
            line.length += *letter.advance;
            continue;
        }
        const char32_t character = drawnCharacter(letter.character, font);
        line.length +=
            frame.width(GlyphSource::ofThisThread().glyph(font.painterFont, character).advance) +
            context.characterExtra;
        if (letter.character == U' ' && context.justification.breaks > 0) {
            line.length += context.justification.extra / context.justification.breaks;
        }
    }
    return line;
}

QPointF originOf(const Line& line, const Frame& frame, unsigned alignment) {
    QPointF origin;
    const unsigned across = alignment & Centre;
    if (across == Centre) {
        origin.setX(-line.length / 2);
    } else if (across == Right) {
        origin.setX(-line.length);
    }
    if ((alignment & BaseLine) == BaseLine) {
        origin.setY(0);
    } else if ((alignment & Bottom) != 0) {
        origin.setY(-frame.descent());
    } else {
        origin.setY(frame.ascent());
    }
    return origin;
}

void addBar(QPainterPath& path, const Frame& frame, double length, double centre,
            double thickness) {
    const double height = std::max(thickness * frame.perUnit, 0.0);
    path.addRect(0, centre * frame.perUnit - height / 2, length, height);
}

QPainterPath outlineOf(const std::vector<Letter>& letters, const Line& line, const ChosenFont& font,
                       const Frame& frame, QPointF origin, WorkBudget& budget) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const QTransform size = QTransform::fromScale(frame.perUnit * frame.stretch, frame.perUnit);
    for (std::size_t i = 0; i < letters.size() && path.elementCount() < kMostTextElements; ++i) {
        budget.spendPoints(1);
        const Glyph glyph = GlyphSource::ofThisThread().glyph(
            font.painterFont, drawnCharacter(letters[i].character, font));
        // An empty box says less than a gap where a symbol has no counterpart.
        if (glyph.outline.isEmpty() || (font.translatesSymbols && !glyph.isPresent)) {
            continue;
        }
        const QTransform place =
            size * QTransform::fromTranslate(origin.x() + line.at[i], origin.y() - line.rise[i]);
        path.addPath(place.map(glyph.outline));
    }
    QPainterPath bars;
    if (font.record.underline) {
        addBar(bars, frame, line.length, frame.metrics.underlineCentre,
               frame.metrics.underlineThickness);
    }
    if (font.record.strikeOut) {
        addBar(bars, frame, line.length, -frame.metrics.strikeOutCentre,
               frame.metrics.strikeOutThickness);
    }
    bars.translate(origin);
    path.addPath(bars);
    return path;
}

// From image pixels back to logical units, for the current position.
QPointF logicalStep(QPointF step, const DeviceContext& context) {
    const QTransform back = context.toImage.inverted();
    return back.map(step) - back.map(QPointF());
}

// Scripts that run leftwards are told in the order of reading. Letters are not joined.
void putInOrderOfSight(std::vector<Letter>& letters) {
    const auto strong = std::find_if(letters.begin(), letters.end(), [](const Letter& letter) {
        const auto direction = QChar::direction(letter.character);
        return direction == QChar::DirL || direction == QChar::DirR || direction == QChar::DirAL;
    });
    if (strong != letters.end() && QChar::direction(strong->character) != QChar::DirL) {
        std::reverse(letters.begin(), letters.end());
    }
}

} // namespace

ChosenFont chosenFont(const Font& record) {
    ChosenFont font{record, {}, false};
    // An at sign asks for letters that stand upright in columns.
    if (font.record.family.startsWith(u'@')) {
        font.record.family.remove(0, 1);
    }
    const Slant slant = record.italic ? Slant::Italic : Slant::Upright;
    font.painterFont = installedFont(
        {font.record.family, record.pitchAndFamily, record.characterSet, record.weight, slant});
    font.translatesSymbols = isSymbolFont(font.record.family) && !isInstalled(font.record.family);
    return font;
}

PlacedText placeText(const Text& text, const ChosenFont& font, const DeviceContext& context,
                     WorkBudget& budget) {
    std::vector<Letter> letters = lettersOf(text, font.record);
    putInOrderOfSight(letters);
    const Frame frame = frameOf(font, context);
    const Line line = layOut(letters, font, frame, context, budget);
    const bool moves = (context.textAlignment & MovesPosition) != 0;
    const QPointF reference = context.map(moves ? context.position : text.reference);
    const QPointF origin = originOf(line, frame, context.textAlignment);
    const QTransform place =
        frame.toImage * QTransform::fromTranslate(reference.x(), reference.y());

    PlacedText placed;
    placed.outline = place.map(outlineOf(letters, line, font, frame, origin, budget));
    QPainterPath box;
    box.addRect(origin.x(), origin.y() - frame.ascent(), line.length,
                frame.ascent() + frame.descent());
    placed.background = place.map(box);
    const double direction = (context.textAlignment & Centre) == Right ? -1 : 1;
    const double length = (context.textAlignment & Centre) == Centre ? 0 : line.length;
    placed.advance = logicalStep(
        frame.toImage.map(QPointF(direction * length, 0)) - frame.toImage.map(QPointF()), context);
    return placed;
}

} // namespace metafile
