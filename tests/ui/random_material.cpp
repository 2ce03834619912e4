#include "ui/random_material.h"

#include "metafile/metafile_bytes.h"

#include <QImage>

namespace library_model {
namespace {

QByteArray toArray(const imaging::testing::Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

QByteArray bitmap(int width, int height, const QColor& colour) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return toArray(imaging::testing::encoded(image, "BMP"));
}

QByteArray icon(const QColor& colour) {
    const std::vector<std::uint32_t> pixels(256, colour.rgba());
    return toArray(imaging::testing::iconFile(
        1, {{imaging::testing::iconFrame32(16, 16, pixels, std::vector<int>(16, 0))}}));
}

QByteArray redGif() {
    imaging::testing::Gif gif;
    gif.screenWidth = gif.width = 12;
    gif.screenHeight = gif.height = 6;
    gif.indexes.assign(72, 1);
    return toArray(imaging::testing::gifFile(gif));
}

// A rectangle without an outline, 300 twips wide and 308 high.
QByteArray metafile(const QColor& colour) {
    metafile::testing::WmfFile file;
    file.window(0, 0, 300, 308);
    file.add(0x02FC, {0, colour.green() << 8 | colour.red(), colour.blue(), 0}).add(0x012D, {0});
    file.add(0x02FA, {5, 0, 0, 0, 0}).add(0x012D, {1});
    file.add(0x041B, {308, 300, 0, 0});
    return toArray(file.placeable(0, 0, 300, 308, 1440));
}

} // namespace

const std::vector<GroupNameTrial>& groupNameTrials() {
    static const std::vector<GroupNameTrial> kNames{
        {"", false, false},
        {"Pumpen", true, true},
        {"pumpen", true, true},
        {"PumpenInfo", true, true},
        {"Rührwerk & Söhne", true, true},
        {"RÜHRWERK & SÖHNE", true, true},
        {"Sub1", true, true}, // as storages are called
        {"sub2", true, true},
        {"Sub3", true, true},
        {"Sub4Info", true, true},
        {"TXSGraphicsLib", true, true},
        {"None", false, true},
        {"none", false, true},
        {"123456789012345678901234567", true, true},
        {"1234567890123456789012345678", false, true},
        {"1234567890123456789012345678901", false, true},
        {"12345678901234567890123456789012", false, false},
        {"a/b", false, false},
        {"a\\b", false, false},
        {"a:b", false, false},
        {"<b>x</b>", false, false},
        {"CON", false, false},
        {" before", false, false},
        {"after ", false, false},
        {"日本", false, false}, // not in the text code page
        {"V1.2", false, false},
    };
    return kNames;
}

const QStringList& pictureNameTrials() {
    static const QStringList kNames{
        "",
        "p1",
        "p2",
        "p3",
        "Übersicht",
        "übersicht",
        "<i>Motor</i> & Co",
        "<i>Motor< i> & Co",
        "Ansicht 1.2",
        "日本",
        "Name",
        "PARENT",
        "1234567890123456789012345678901",
        "12345678901234567890123456789012",
        "a/b",
        "a\\b",
        "a:b",
        "a!b",
        "- Kein Bild -",
        "- No picture -",
    };
    return kNames;
}

bool isReservedName(const QString& pictureName) {
    return isSameName(pictureName, "Name") || isSameName(pictureName, "Parent");
}

bool isValidPictureName(const QString& name) {
    return !name.isEmpty() && name.size() <= 31 && !isReservedName(name) && !name.contains(u'/') &&
           !name.contains(u'\\') && !name.contains(u':') && !name.contains(u'!');
}

std::vector<Source> makeSources() {
    const QColor orange(255, 128, 0);
    const QColor violet(128, 0, 128);
    const QColor teal(0, 128, 128);
    const QColor blue(10, 20, 200);
    return {
        {"orange.bmp", "BMP", "10", "20", orange, bitmap(20, 10, orange)},
        {"violet.old.bmp", "BMP", "60", "100", violet, bitmap(100, 60, violet)},
        {"teal.ICO", "ICO", "16", "16", teal, icon(teal)},
        {"red.gif", "GIF", "6", "12", QColor(255, 0, 0), redGif()},
        {"blue.wmf", "WMF", "20.53333", "20", blue, metafile(blue)},
    };
}

} // namespace library_model
