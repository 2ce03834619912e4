// Plays records on a canvas, as a device would have drawn them that only they were sent to.
//
// The player is what Windows calls a device context: records of state change pen, brush, font,
// mapping, clip and path, records of drawing use them. Logical units are mapped to image pixels
// here; the painters of drawing/ get outlines, texts and bitmaps in image pixels. EMF+ records go
// on to a PlusPlayer, which shares nothing with this state but the canvas.
//
// One player plays one file from its first record to its last, in one thread. Wild numbers, unknown
// handles and states are bounded or passed over; whatever ends the playing early, the canvas keeps
// what was drawn by then.
#pragma once

#include "metafile/drawing/blit_painter.h"
#include "metafile/drawing/shape_painter.h"
#include "metafile/drawing/text_painter.h"
#include "metafile/plus_drawing/plus_player.h"
#include "metafile/records/record_sink.h"

#include <map>

namespace metafile {

// Which of an EMF file's two descriptions is played: the EMF records, the EMF+ records in their
// stead, or both in the file's order.
enum class PlusHalf { Ignored, Played, Beside };

class Player : public RecordSink {
  public:
    // The device's density maps fixed units (millimetres, inches, points); `nested` shows metafiles
    // that EMF+ records hold. Canvas and nested metafiles must outlive the player.
    Player(Canvas& canvas, QSizeF pixelsPerMillimetre, PlusHalf plusHalf,
           const NestedMetafiles& nested);

    // All three throw WorkExhausted, take() and takePlus() also DecodeError (no memory for a
    // layer), on a recording canvas PixelsNeeded, and nothing else.
    void take(const Record& record) override;
    void takePlus(std::span<const std::byte> comment) override;
    void leaveOut() override;

    // Draws what is kept back for being drawn in one piece; after the last record.
    void finish() { flushLines(); } // as take()

  private:
    void on(const CreateObject& record);
    void on(const SelectObject& record);
    void on(const SelectStockObject& record) { select(record.object); }
    void on(const DeleteObject& record);
    void on(const SetMapMode& record);
    void on(const SetBackgroundOpaque& record) { context_.backgroundOpaque = record.opaque; }
    void on(const SetFillMode& record) { context_.fillMode = record.mode; }
    void on(const SetRasterOperation& record) { context_.rasterOperation = record.operation; }
    void on(const SetSmoothStretching& record) { context_.smoothStretching = record.smooth; }
    void on(const SetTextAlignment& record) { context_.textAlignment = record.flags; }
    void on(const SetArcDirection& record) { context_.arcDirection = record.direction; }
    void on(const SetMiterLimit& record) { context_.miterLimit = record.limit; }
    void on(const SetCharacterExtra& record) { context_.characterExtra = record.extra; }
    void on(const SetJustification& record) { context_.justification = record; }
    void on(const SetTextColour& record) { context_.textColour = record.colour; }
    void on(const SetBackgroundColour& record) { context_.backgroundColour = record.colour; }
    void on(const SetBrushOrigin& record) { context_.brushOrigin = record.origin; }
    void on(const SetMapping& record);
    void on(const MoveMapping& record);
    void on(const ScaleMapping& record);
    void on(const SetWorldTransform& record);
    void on(const MultiplyWorldTransform& record);
    void on(const SaveState& record);
    void on(const RestoreState& record);

    void on(const ClipRectangle& record);
    void on(const MoveClip& record);
    void on(const ResetClip& record);
    void on(const ClipRegion& record);
    void on(const FreezeClip& record);
    void on(const PathStep& record);
    void on(const ClipPath& record);

    void on(const MoveTo& record);
    void on(const LineTo& record);
    void on(const Poly& record);
    void on(const PolyDraw& record);
    void on(const Box& record);
    void on(const AngleArc& record);
    void on(const SetPixel& record);
    void on(const FloodFill& record);
    void on(const RegionPaint& record);
    void on(const GradientFill& record);
    void on(const Text& record);
    void on(const RasterBlit& record);
    void on(const AlphaBlit& record);

    void select(const Object& object);
    void keepPattern(Brush& brush);
    void remap();
    QPointF& mappingPart(MappingPart part);
    void clipTo(const QPainterPath& path, ClipMode mode);
    void spendClip();
    void clipChanged() { shapes_.forgetClip(); }

    bool inPath() const { return pathOpen_; }
    // The path or the lines kept back, its pen at the current position.
    QPainterPath& goOn(QPainterPath& path);
    void flushLines();
    void boundPath() const;
    void drawOutline(const QPainterPath& outline, ShapePart part);
    void drawAndMove(const QPainterPath& outline, QPointF end);
    void paintPath(ShapePart part);
    void joinArc(const QPainterPath& arc);
    bool skips(const Record& record) const;

    Canvas& canvas_;
    QSizeF pixelsPerMillimetre_;
    PlusHalf plusHalf_;
    PlusPlayer plus_;
    ShapePainter shapes_;
    BlitPainter blits_;
    DeviceContext context_;
    ChosenFont font_;
    bool fontChosen_ = false;
    std::vector<DeviceContext> saved_;
    std::vector<std::size_t> savedWeights_; // of the clips of each state and those before it
    std::map<std::size_t, Object> objects_;

    QPainterPath path_; // of the bracket that is open or was closed last; image pixels
    bool pathOpen_ = false;
    bool figureOpen_ = false; // the next line goes on where the path ends
    // Single lines that follow one another are stroked as one, which is faster and joins them.
    QPainterPath lines_;
    bool lineOpen_ = false;
};

} // namespace metafile
