// Catalogues: where things stand on their pages, and the files that come out.
#include "app/texts.h"
#include "catalogue/catalogue.h"
#include "catalogue/page_layout.h"
#include "metafile/metafile_bytes.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "tool/tool_fixture.h"

#include <QPainter>

#include <random>

namespace tool::testing {
namespace {

using catalogue::Page;

constexpr QSizeF kA4(595, 842);
constexpr QSizeF kLetter(612, 792);

// Every box lies on the sheet and on no other one; a heading's first row is on its page.
void expectSound(const std::vector<std::size_t>& sections, const std::vector<Page>& pages,
                 QSizeF sheet) {
    std::vector<std::size_t> seen(sections.size());
    std::size_t headings =
        sections.size() > 1 && sections[0] == 0 ? 1 : 0; // the title stands for it
    for (const Page& page : pages) {
        std::vector<QRectF> boxes{catalogue::frameOf(sheet).footer};
        for (const auto& heading : page.headings) {
            EXPECT_EQ(heading.section, headings++);
            boxes.push_back(heading.place);
            const bool hasFirst =
                std::any_of(page.pictures.begin(), page.pictures.end(), [&](const auto& picture) {
                    return picture.section == heading.section && picture.picture == 0;
                });
            EXPECT_EQ(hasFirst, sections[heading.section] > 0);
        }
        for (const auto& picture : page.pictures) {
            EXPECT_EQ(picture.picture, seen[picture.section]++);
            boxes.push_back(picture.place.adjusted(0, 0, 0, 2 * catalogue::kLineHeight));
        }
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            EXPECT_TRUE(QRectF(QPointF(0, 0), sheet).contains(boxes[i]));
            for (std::size_t j = 0; j < i; ++j) {
                EXPECT_FALSE(boxes[i].intersects(boxes[j]));
            }
        }
    }
    EXPECT_EQ(headings, sections.size());
    for (std::size_t i = 0; i < sections.size(); ++i) {
        EXPECT_EQ(seen[i], sections[i]);
    }
}

TEST(CatalogueLayout, ShowsEverythingOnceAndNothingOnTopOfAnother) {
    std::mt19937 random(14);
    for (int round = 0; round < 100; ++round) {
        std::vector<std::size_t> sections(1 + random() % 8);
        for (std::size_t& pictures : sections) {
            pictures = random() % 3 == 0 ? 0 : random() % 50;
        }
        const QSizeF sheet = round % 2 == 0 ? kA4 : kLetter;
        expectSound(sections, catalogue::layOut(sections, sheet), sheet);
    }
}

// Drawings came out enlarged by the printer's density.
TEST(CataloguePicture, FillsItsPlaceOnADeviceOfAnyDensity) {
    metafile::testing::EmfFile file(40, 40);
    const auto bytes = file.brush(1, 0).rectangle(0, 0, 40, 40).bytes();
    for (const int density : {96, 600}) {
        QImage page(100, 100, QImage::Format_RGB32);
        page.setDotsPerMeterX(density * 10000 / 254);
        page.setDotsPerMeterY(density * 10000 / 254);
        page.fill(Qt::white);
        QPainter painter(&page);
        picture::decode(bytes).print(painter, {20, 30, 50, 40}, {100, 100});
        painter.end();
        EXPECT_EQ(metafile::testing::inkOf(page), QRect(20, 30, 50, 40)) << density;
    }
}

class CatalogueTest : public ToolTest {
  protected:
    CatalogueTest() {
        succeed({"new-group", "Pumps"});
        key_ = succeed({"new-group", "Rotary", "--below", "Pumps"});
    }

    void addDrawing(const std::string& name, int penOperation) {
        metafile::testing::EmfFile file(40, 40);
        file.add(20, {penOperation}).rectangle(4, 4, 30, 30);
        const auto bytes = file.bytes();
        const std::string path = (folder() / (name + ".emf")).string();
        writeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        succeed({"add", key_, path});
    }

    std::string target() const { return (folder() / "out" / "pumps.pdf").string(); }
    std::vector<std::string> words() const { return {"catalogue", "Pumps", target()}; }

    int countInPdf(const std::string& text) const {
        const std::string content = contentOf(target());
        EXPECT_EQ(content.substr(0, 5), "%PDF-");
        int count = 0;
        for (auto at = content.find(text); at != std::string::npos;
             at = content.find(text, at + 1)) {
            ++count;
        }
        return count;
    }

    std::size_t filesBesideTarget() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder() / "out"), {}));
    }

    std::string key_;
};

TEST_F(CatalogueTest, KeepsDrawingsAsShapesUnlessTheyCombineTheirPixels) {
    constexpr int kCopyPen = 13;
    constexpr int kXorPen = 7;
    std::filesystem::create_directory(folder() / "out");
    addDrawing("plain", kCopyPen);
    auto command = words();
    command.push_back("--paper=letter");
    succeed(command);
    EXPECT_EQ(countInPdf("/Type /Page\n"), 1);
    EXPECT_EQ(countInPdf("/MediaBox [0 0 612."), 1) << "letter";
    fail(command, target());
    command.insert(command.end(), {"--sub-groups", "--replace"});
    succeed(command);
    EXPECT_EQ(countInPdf("/Subtype /Image"), 0);
    addDrawing("combined", kXorPen);
    succeed(command);
    EXPECT_EQ(countInPdf("/Subtype /Image"), 1);
    for (int i = 0; i < 30; ++i) {
        succeed({"add", "Pumps", picture(std::to_string(i) + ".bmp")});
    }
    succeed(command);
    EXPECT_EQ(countInPdf("/Type /Page\n"), 3);
}

TEST_F(CatalogueTest, TellsOfPicturesThatCannotBeShownAndMakesTheRest) {
    std::filesystem::create_directory(folder() / "out");
    succeed({"add", "Pumps", picture("good.bmp")});
    const auto file = libraryFolder() / "Pumps.stg";
    std::string bytes = contentOf(file);
    for (auto at = bytes.find("BM"); at != std::string::npos; at = bytes.find("BM", at + 1)) {
        bytes.replace(at, 2, "XX");
    }
    writeFile(file, bytes);
    const Result result = run(words());
    EXPECT_EQ(result.status, ExitStatus::Failed);
    EXPECT_NE(result.err.find("Pumps, good: "), std::string::npos) << result.err;
    EXPECT_EQ(countInPdf("/Type /Page\n"), 1);
}

TEST_F(CatalogueTest, SpeaksTheLanguageOfTheSettings) {
    std::filesystem::create_directory(folder() / "out");
    std::filesystem::create_directories(folder() / "home" / "settings");
    for (const int language : {app::kEnglishLocale, app::kGermanLocale}) {
        writeFile(folder() / "home" / "settings" / "machine.conf",
                  "[SOFTWARE\\NORAVEX GmbH\\Talvix\\4.0]\nLCID=" + std::to_string(language) + "\n");
        auto command = words();
        command.push_back("--replace");
        succeed(command);
        EXPECT_EQ(app::languageCode(), language);
    }
}

class StoppedAtOnce : public store::Progress {
  public:
    void report(std::uint64_t, std::uint64_t) override {}
    bool isStopWanted() override { return true; }
};

TEST_F(CatalogueTest, LeavesNothingHalfDoneBehind) {
    fail(words(), target()); // no such folder
    writeFile(folder() / "plain", "no folder");
    const std::string below = (folder() / "plain" / "pumps.pdf").string();
    fail({"catalogue", "Pumps", below}, below + ": create: ");
    std::filesystem::create_directory(folder() / "out");
    fail({"catalogue", "Valves", target()}, "Valves.stg");
    EXPECT_EQ(filesBesideTarget(), 0U);
    writeFile(target(), "mine");
    succeed({"add", "Pumps", picture("a.bmp")});
    const store::Library library{platform::nativeDisk(), libraryFolder(), {}};
    StoppedAtOnce progress;
    const auto contents = catalogue::readContents(library, store::topLevelAddress(u"Pumps"),
                                                  catalogue::SubGroups::Included);
    EXPECT_THROW(catalogue::writePdf(library, contents, catalogue::Paper::A4, target(),
                                     platform::IfFileExists::Replace, progress),
                 compound::Error);
    EXPECT_EQ(filesBesideTarget(), 1U);
    EXPECT_EQ(contentOf(target()), "mine");
}

} // namespace
} // namespace tool::testing
