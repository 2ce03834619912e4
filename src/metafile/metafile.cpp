#include "metafile/metafile.h"

#include "imaging/new_image.h"
#include "metafile/emf/emf_reader.h"
#include "metafile/player/player.h"
#include "metafile/plus/plus_survey.h"
#include "metafile/wmf/wmf_reader.h"

#include <cmath>
#include <new>

namespace metafile {

namespace {

// Looks at a file's EMF+ comments alone.
class Surveyor : public RecordSink {
  public:
    void take(const Record&) override {}
    void takePlus(std::span<const std::byte> comment) override { survey.look(comment); }
    void leaveOut() override {}

    PlusSurvey survey;
};

// Which halves to play. A file that draws before its first EMF+ record did not begin as an EMF+
// file: somebody put one into it later, which the other records do not stand in for.
PlusHalf betterHalf(std::span<const std::byte> bytes) {
    Surveyor surveyor;
    readPlusComments(bytes, surveyor);
    const PlusSurvey& survey = surveyor.survey;
    if (!survey.found()) {
        return PlusHalf::Ignored;
    }
    const DrawingWithoutPlus without = drawingWithoutPlus(bytes);
    if (without == DrawingWithoutPlus::Before) {
        return survey.isDual() ? PlusHalf::Ignored : PlusHalf::Beside;
    }
    const bool isBest =
        !survey.isDual() || survey.drawsBetter() || without == DrawingWithoutPlus::Nowhere;
    return isBest ? PlusHalf::Played : PlusHalf::Ignored;
}

// Device units that are the size's pixels already.
QTransform fitted(const QRectF& from, QSize size) {
    return QTransform::fromTranslate(-from.left(), -from.top()) *
           QTransform::fromScale(size.width() / from.width(), size.height() / from.height());
}

// Plays on the canvas, which keeps what was drawn whatever ends it early.
template <typename Play>
Completeness played(Canvas& canvas, Play play) {
    Completeness completeness = Completeness::Part;
    try {
        if (play() == FileEnd::Reached && !canvas.budget().pictures().haveRefused()) {
            completeness = Completeness::Whole;
        }
    } catch (const WorkExhausted&) {
        completeness = Completeness::Part;
    }
    return completeness;
}

// What a drawing is drawn on: a sheet of that size is made once it is known what lies on it.
struct Sheet {
    QSize size;
    WorkBudget& budget;
    Surface surface = Surface::Pixels;
    std::optional<Canvas> canvas = {};

    Canvas& make(const QTransform& deviceToImage) {
        return canvas.emplace(size, deviceToImage, budget, surface);
    }
};

Completeness drawOn(Sheet& sheet, std::span<const std::byte> bytes);

class Nested : public NestedMetafiles {
  public:
    QRectF frameOf(std::span<const std::byte> bytes) const override {
        if (isEmf(bytes)) {
            return readEmfLayout(bytes).frame;
        }
        const WmfLayout layout = readWmfLayout(bytes);
        return layout.unitsPerInch > 0 ? layout.window.normalized() : QRectF();
    }

    QImage draw(std::span<const std::byte> bytes, QSize size, WorkBudget& budget) const override {
        const WorkBudget::Nesting nesting(budget);
        Sheet sheet{size, budget};
        drawOn(sheet, bytes);
        return sheet.canvas->take();
    }
};

Completeness drawEmf(Sheet& sheet, std::span<const std::byte> bytes) {
    const Nested nested;
    const EmfLayout layout = readEmfLayout(bytes);
    const QTransform axis = QTransform::fromScale(1, layout.mirrored ? -1 : 1);
    Canvas& canvas = sheet.make(axis * fitted(layout.frame, sheet.size));
    return played(canvas, [&] {
        Player player(canvas, layout.pixelsPerMillimetre, betterHalf(bytes), nested);
        const FileEnd end = readEmf(bytes, player);
        player.finish();
        return end;
    });
}

// The file's window is all that is shown; it fills the sheet whatever the file takes for a device.
Completeness drawWmf(Sheet& sheet, std::span<const std::byte> bytes) {
    constexpr double kPixelsPerInch = 96;
    constexpr double kMillimetresPerInch = 25.4;
    // The enhanced metafile that a file was made of shows more than what was left of it.
    const std::vector<std::byte> original = readEmbeddedEmf(bytes);
    if (isEmf(original)) {
        return drawEmf(sheet, original);
    }
    const Nested nested;
    const WmfLayout layout = readWmfLayout(bytes);
    const double perInch = layout.unitsPerInch > 0 ? layout.unitsPerInch : kPixelsPerInch;
    const double pixelsPerUnit = kPixelsPerInch / perInch;
    const QSizeF page(std::abs(layout.window.width()) * pixelsPerUnit,
                      std::abs(layout.window.height()) * pixelsPerUnit);
    Canvas& canvas = sheet.make(fitted(QRectF({0, 0}, page), sheet.size));
    return played(canvas, [&] {
        const double density = kPixelsPerInch / kMillimetresPerInch;
        Player player(canvas, {density, density}, PlusHalf::Ignored, nested);
        player.take(SetMapMode{MapMode::Anisotropic});
        player.take(SetMapping{MappingPart::WindowOrigin, layout.window.topLeft()});
        player.take(
            SetMapping{MappingPart::WindowExtent, {layout.window.width(), layout.window.height()}});
        player.take(SetMapping{MappingPart::ViewportExtent, {page.width(), page.height()}});
        const FileEnd end = readWmf(bytes, player);
        player.finish();
        return end;
    });
}

Completeness drawOn(Sheet& sheet, std::span<const std::byte> bytes) {
    try {
        return isEmf(bytes) ? drawEmf(sheet, bytes) : drawWmf(sheet, bytes);
    } catch (const std::bad_alloc&) {
        throw imaging::DecodeError("there is no memory for the picture");
    }
}

} // namespace

Drawing draw(std::span<const std::byte> bytes, QSize size, WorkClock clock) {
    imaging::requireSensibleSize(size.width(), size.height());
    WorkBudget budget(clock);
    Sheet sheet{size, budget};
    const Completeness completeness = drawOn(sheet, bytes);
    return {sheet.canvas->take(), completeness};
}

std::optional<QPicture> record(std::span<const std::byte> bytes, QSize size, WorkClock clock) {
    imaging::requireSensibleSize(size.width(), size.height());
    WorkBudget budget(clock);
    Sheet sheet{size, budget, Surface::Recording};
    try {
        drawOn(sheet, bytes);
        return sheet.canvas->takeRecording();
    } catch (const PixelsNeeded&) {
        return std::nullopt;
    }
}

} // namespace metafile
