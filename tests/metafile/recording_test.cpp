// Metafiles as what a painter paints: the same picture as in pixels, and shapes all the way.
#include "metafile/metafile.h"
#include "metafile/metafile_bytes.h"

#include <QPainter>

#include <gtest/gtest.h>

namespace metafile::testing {
namespace {

constexpr QSize kSheet{120, 120};
constexpr std::uint32_t kFileRed = colour(255, 0, 0);

std::optional<QPicture> recorded(const Bytes& bytes) {
    return record(std::as_bytes(std::span(bytes)), kSheet, stoppedClock);
}

// How many pixels of the recording, played on white paper that goes on around the sheet, differ
// visibly from the drawing; -1 when there is no recording.
int differences(const Bytes& bytes) {
    constexpr int kAround = 20;
    constexpr int kVisible = 24;
    QImage paper(kSheet + QSize(2 * kAround, 2 * kAround), QImage::Format_RGB32);
    paper.fill(Qt::white);
    QImage expected = paper;
    QPainter(&expected).drawImage(kAround, kAround, drawnMetafile(bytes, kSheet));
    auto recording = recorded(bytes);
    if (!recording) {
        return -1;
    }
    QPainter painter(&paper);
    painter.translate(kAround, kAround);
    recording->play(&painter);
    painter.end();
    int count = 0;
    for (int i = 0; i < paper.width() * paper.height(); ++i) {
        const QRgb one = paper.pixel(i % paper.width(), i / paper.width());
        const QRgb other = expected.pixel(i % paper.width(), i / paper.width());
        count += std::abs(qGreen(one) - qGreen(other)) > kVisible ? 1 : 0;
    }
    return count;
}

EmfFile drawing() {
    EmfFile file(40, 40);
    file.brush(1, kFileRed).pen(2, 0, 2, 0).rectangle(4, 4, 20, 12);
    return file.add(42, {6, 20, 30, 36}).add(27, {0, 0}).add(54, {39, 30}); // ellipse, line
}

TEST(MetafileRecording, ShowsWhatTheDrawingShows) {
    EXPECT_EQ(differences(drawing().bytes()), 0);
    EmfFile clipped = drawing();
    clipped.add(30, {5, 5, 15, 35}).rectangle(0, 0, 40, 40); // a clip, and a box larger than it
    EXPECT_EQ(differences(clipped.bytes()), 0);
    EmfFile beyond = drawing();
    beyond.add(30, {-30, -30, 80, 20}).rectangle(-20, -20, 70, 70); // no more than the sheet shows
    EXPECT_EQ(differences(beyond.bytes()), 0);
}

TEST(MetafileRecording, IsNoneWhereColoursAreCombinedWithThoseBeneath) {
    constexpr int kXorPen = 7;
    EmfFile file = drawing();
    file.add(20, {kXorPen}).rectangle(10, 10, 30, 30);
    EXPECT_EQ(differences(file.bytes()), -1);
}

} // namespace
} // namespace metafile::testing
