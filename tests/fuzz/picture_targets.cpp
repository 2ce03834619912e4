// The decoders, each alone, the metafile readers, and pictures as the rest of the program sees
// them.
#include "fuzz/target.h"
#include "imaging/decoders.h"
#include "metafile/emf/emf_reader.h"
#include "metafile/metafile.h"
#include "metafile/metafile_bytes.h"
#include "metafile/plus/plus_reader.h"
#include "metafile/plus_bytes.h"
#include "metafile/wmf/wmf_reader.h"
#include "picture/picture.h"

namespace fuzz {
namespace {

using imaging::testing::encoded;
using imaging::testing::gifFile;
using imaging::testing::oneOfEachKind;
using metafile::testing::EmfFile;
using metafile::testing::PlusFile;
using metafile::testing::WmfFile;
using Input = std::span<const std::byte>;
using Seeds = std::map<std::string, Bytes>;

constexpr QSize kBox{48, 48};
constexpr std::uint32_t kPlusIdentifier = 0x2B464D45; // "EMF+"

// What a decoder shows has as many pixels as it says.
template <auto measure, auto decode>
void useDecoder(Input input) {
    try {
        const imaging::PictureFacts facts = measure(input);
        require(facts.pixels.width() > 0 && facts.pixels.height() > 0, "an empty picture");
        const imaging::RasterPicture picture = decode(input);
        require(picture.image.size() == picture.facts.pixels, "another size than it is told");
    } catch (const picture::DecodeError&) {
        return; // what a decoder says of bytes that are no picture
    }
}

imaging::RasterPicture decodeWholeJpg(Input input) {
    (void)imaging::decodeJpg(input, kBox);
    return imaging::decodeJpg(input);
}

void usePicture(Input input) {
    try {
        (void)picture::measure(input);
        (void)picture::decode(input).scaledTo(kBox);
        (void)picture::decodeFor(input, kBox);
    } catch (const picture::DecodeError&) {
        return;
    }
}

class Nothing : public metafile::RecordSink {
  public:
    void take(const metafile::Record&) override {}
    void takePlus(Input comment) override {
        plus_.read(
            comment, [](const metafile::PlusRecord&) {}, [] {});
    }
    void leaveOut() override {}

  private:
    metafile::PlusReader plus_;
};

template <auto read, auto readLayout>
void useMetafile(Input input) {
    try {
        Nothing sink;
        read(input, sink);
        readLayout(input);
        metafile::draw(input, kBox);
    } catch (const picture::DecodeError&) {
        return; // what a reader says of bytes that are no metafile
    }
}

void usePlus(Input input) {
    try {
        Nothing().takePlus(input);
        metafile::testing::Data comment;
        comment.word(static_cast<std::uint32_t>(input.size() + 4)).word(kPlusIdentifier);
        comment.append({input.begin(), input.end()});
        metafile::draw(EmfFile(40, 40).addBytes(70, comment.bytes).bytes(), kBox);
    } catch (const picture::DecodeError&) {
        return;
    }
}

Bytes shapes() {
    EmfFile file(40, 40);
    file.pen(1, 2, 3, 255).brush(2, 255).rectangle(0, 0, 20, 20).add(42, {0, 0, 20, 20});
    file.add(44, {0, 0, 20, 20, 5, 5}).add(47, {0, 0, 20, 20, 20, 0, 0, 20});
    file.add(41, {10, 10, 5, 0, 0x42B40000}).add(27, {0, 0}).add(54, {20, 20});
    file.add(3, {0, 0, -1, -1, 3, 0, 0, 9, 9, 0, 9}).add(59).add(54, {3, 3}).add(61).add(60);
    file.add(67, {1}).add(33).add(30, {0, 0, 9, 9}).add(34, {-1});
    return file.bytes();
}

Bytes texts() {
    EmfFile file(40, 40);
    file.font(1, -12, 450, u"Symbol", 2).text(5, 5, u"abc", {5, 5, 5}).font(2, 12, 0, u"Arial");
    return file.add(22, {30}).text(5, 5, u"xyz", {}, 2).bytes();
}

WmfFile windows() {
    WmfFile file;
    file.window(0, 0, 40, 40).add(0x02FA, {0, 2, 0, 255, 0}).add(0x012D, {0});
    file.add(0x0538, {2, 3, 3, 0, 0, 9, 0, 9, 9, 20, 20, 30, 20, 30, 30});
    file.add(0x0A32, {5, 5, 2, 2, 0, 0, 9, 9, 0x4241, 5, 5}).add(0x0817, {0, 9, 9, 0, 9, 9, 0, 0});
    file.add(0x06FF, {0, 6, 0, 0, 0, 1, 2, 5, 5, 25, 15, 2, 5, 15, 5, 25, 2}).add(0x0228, {1, 0});
    return file;
}

Bytes plusComment() {
    EmfFile whole(40, 40);
    const Bytes file = PlusFile()
                           .object(1, 1, metafile::testing::solidBrush(0xFF112233))
                           .object(2, 2, metafile::testing::pen(2, 0xFF112233))
                           .fillWith(1, {1, 1, 20, 20})
                           .fill({5, 5, 9, 9}, 0xFF445566)
                           .into(whole)
                           .bytes();
    // The records: behind the file's header, the comment's head and the identifier, before the end
    // record.
    return {file.begin() + 88 + 16, file.end() - 20};
}

Seeds ofKind(imaging::PictureKind kind) {
    Seeds seeds;
    for (const Bytes& bytes : oneOfEachKind()) {
        if (picture::sniff(bytes) == kind) {
            seeds["sound-" + std::to_string(seeds.size())] = bytes;
        }
    }
    return seeds;
}

Seeds iconSeeds() {
    Seeds seeds = ofKind(imaging::PictureKind::Ico);
    seeds["pointer"] = ofKind(imaging::PictureKind::Cur).begin()->second;
    // Was divided by, and ended the program.
    constexpr std::uint32_t kJpeg = 4;
    Bytes frame = imaging::testing::infoHeader({2, 4, 0, kJpeg, 0});
    frame.resize(frame.size() + 60);
    seeds["frame-without-depth"] = imaging::testing::iconFile(1, {{frame, 0, 0}});
    return seeds;
}

Seeds gifSeeds() {
    return {{"interlaced", gifFile({4, 6, 1, 1, 2, 5, true, 1, {0, 1, 2, 3, 0, 1, 2, 3, 0, 1}})},
            {"plain", gifFile({2, 2, 0, 0, 2, 2, false, -1, {0, 1, 2, 3}})}};
}

Seeds jpgSeeds() {
    QImage grey(9, 7, QImage::Format_Grayscale8);
    grey.fill(90);
    Seeds seeds = ofKind(imaging::PictureKind::Jpg);
    seeds["turned"] = imaging::testing::turnedJpg(grey.convertToFormat(QImage::Format_RGB32));
    seeds["grey"] = encoded(grey, "JPG");
    return seeds;
}

Seeds wmfSeeds() {
    return {{"plain", windows().plain()}, {"placeable", windows().placeable(0, 0, 40, 40, 96)}};
}

Seeds emfSeeds() {
    // Arcs without a point that the next line could begin at.
    EmfFile arcs(40, 40);
    arcs.add(41, {10, 10, 0, 0, 0x42B40000}).add(41, {10, 10, 5, 0x7FC00000, 0x7FC00000});
    arcs.add(55, {5, 5, 6, 6, 9, 5, 5, 9}).add(55, {5, 5, 5, 5, 9, 5, 5, 9});
    return {{"shapes", shapes()}, {"texts", texts()}, {"arcs-without-points", arcs.bytes()}};
}

Seeds plusSeeds() {
    return {{"comment", plusComment()}};
}

Seeds everyKind() {
    Seeds seeds;
    for (const Bytes& bytes : oneOfEachKind()) {
        seeds["kind-" + std::to_string(seeds.size())] = bytes;
    }
    return seeds;
}

} // namespace

std::vector<Target> pictureTargets() {
    using namespace imaging;
    const std::vector<std::string> bitmap = {"BM", {"\x28\0\0\0", 4}, {"\1\0\x20\0", 4}};
    const std::vector<std::string> jpg = {"\xFF\xD8\xFF", "\xFF\xC0", "\xFF\xC2",
                                          "\xFF\xC4",     "\xFF\xDA", "\xFF\xDB",
                                          "\xFF\xDD",     "\xFF\xE1", {"Exif\0\0II*\0", 10}};
    const std::vector<std::string> gif = {"GIF87a", "GIF89a", "!\xF9\4", "!\xFF\13NETSCAPE2.0\3"};
    const std::vector<std::string> meta = {"\xD7\xCD\xC6\x9A", " EMF",   "EMF+",
                                           "\1\x40",           "\2\x40", "\x08\x40"};
    return {
        {"bmp", useDecoder<measureBmp, decodeBmp>, [] { return ofKind(PictureKind::Bmp); }, bitmap},
        {"icon", useDecoder<measureIcon, decodeIcon>, iconSeeds, {"\x89PNG\r\n\x1A\n", "IHDR"}},
        {"gif", useDecoder<measureGif, decodeGif>, gifSeeds, gif},
        {"jpg", useDecoder<measureJpg, decodeWholeJpg>, jpgSeeds, jpg},
        {"wmf", useMetafile<metafile::readWmf, metafile::readWmfLayout>, wmfSeeds, meta},
        {"emf", useMetafile<metafile::readEmf, metafile::readEmfLayout>, emfSeeds, meta},
        {"emf-plus", usePlus, plusSeeds, meta},
        {"picture", usePicture, everyKind, {"BM", "GIF89a", "\xFF\xD8\xFF", " EMF"}}};
}

} // namespace fuzz
