#include "compound/compound_file.h"
#include "platform/native_disk.h"
#include "tool/tool_fixture.h"

#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

namespace tool::testing {
namespace {

using std::filesystem::exists;

QJsonDocument jsonOf(const std::string& text) {
    QJsonParseError error;
    QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << text;
    return document;
}

std::size_t filesIn(const std::filesystem::path& folder) {
    if (!exists(folder)) {
        return 0;
    }
    const std::filesystem::recursive_directory_iterator files(folder);
    return static_cast<std::size_t>(std::count_if(
        begin(files), end(files), [](const auto& entry) { return entry.is_regular_file(); }));
}

TEST_F(ToolTest, ListsWhatItMade) {
    EXPECT_EQ(succeed({"new-group", "Pumps"}), "Pumps/Pumps");
    EXPECT_EQ(succeed({"new-group", "Rotary", "--below", "Pumps"}), "Sub1/Pumps");
    EXPECT_EQ(succeed({"new-group", "Gear", "--below=Sub1/Pumps"}), "Sub2/Pumps");
    EXPECT_EQ(succeed({"add", "Sub1/Pumps", picture("wheel.old.bmp", 20, 10)}), "");
    EXPECT_EQ(succeed({"add", "Pumps", picture("x.bmp", 5, 6), "--name", "Ölpumpe"}), "");

    EXPECT_EQ(succeed({"groups"}), "Pumps/Pumps\tPumps\t-\t1\t159\n"
                                   "Sub1/Pumps\tRotary\tPumps/Pumps\t1\t665\n"
                                   "Sub2/Pumps\tGear\tSub1/Pumps\t0\t8");
    EXPECT_EQ(succeed({"pictures", "Sub1/Pumps"}), "wheel\t654\t10\t20\tBMP");
    const QJsonArray groups = jsonOf(succeed({"groups", "--json"})).array();
    ASSERT_EQ(groups.size(), 3);
    EXPECT_TRUE(groups[0]["parent"].isNull());
    EXPECT_EQ(groups[1]["bytes"].toInt(), 665);
    EXPECT_EQ(jsonOf(succeed({"pictures", "Pumps", "--json"}))[0]["name"].toString(), "Ölpumpe");
}

TEST_F(ToolTest, AddsAllFilesOrNone) {
    succeed({"new-group", "Pumps"});
    const std::string broken = (folder() / "broken.bmp").string();
    writeFile(broken, "BM, but no bitmap");
    fail({"add", "Pumps", picture("one.bmp"), broken}, broken);
    fail({"add", "Pumps", picture("one.bmp"), (folder() / "missing.bmp").string()}, "missing.bmp");
    fail({"add", "Pumps", picture("one.bmp"), picture(".hidden.bmp")}, ".hidden.bmp");
    EXPECT_EQ(succeed({"pictures", "Pumps"}), "");

    succeed({"add", "Pumps", picture("one.bmp", 1, 1)});
    fail({"add", "Pumps", picture("two.bmp"), picture("ONE.bmp", 9, 9)}, "ONE");
    EXPECT_EQ(succeed({"pictures", "Pumps"}), "one\t58\t1\t1\tBMP");
    succeed({"add", "Pumps", picture("one.bmp", 2, 2), "--replace"});
    EXPECT_EQ(succeed({"pictures", "Pumps"}), "one\t70\t2\t2\tBMP");
}

TEST_F(ToolTest, ExtractsTheVeryBytes) {
    succeed({"new-group", "Pumps"});
    succeed({"add", "Pumps", picture("pump.bmp", 40, 40)});
    const std::string content = bmpFile(40, 40);
    EXPECT_EQ(run({"extract", "Pumps", "PUMP", "-"}).out, content);

    const std::filesystem::path target = folder() / "out" / "copy.bmp";
    fail({"extract", "Pumps", "pump", target.string()}, "copy.bmp");
    std::filesystem::create_directory(target.parent_path());
    succeed({"extract", "Pumps", "pump", target.string()});
    EXPECT_EQ(contentOf(target), content);

    writeFile(target, "mine");
    fail({"extract", "Pumps", "pump", target.string()}, target.string());
    fail({"extract", "Pumps", "nothing", target.string(), "--replace"}, "nothing");
    fail({"extract", "Pumps", "pump", target.parent_path().string(), "--replace"}, "out");
    EXPECT_EQ(contentOf(target), "mine");
    succeed({"extract", "Pumps", "pump", target.string(), "--replace"});
    EXPECT_EQ(contentOf(target), content);
    EXPECT_EQ(filesIn(target.parent_path()), 1U) << "temporary files were left";
}

TEST_F(ToolTest, RenamesAndRemoves) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Valves"});
    succeed({"new-group", "Rotary", "--below", "Pumps"});
    succeed({"add", "Sub1/Pumps", picture("a.bmp"), picture("b.bmp")});
    succeed({"rename-picture", "Sub1/Pumps", "a", "c"});
    fail({"rename-picture", "Sub1/Pumps", "c", "B"}, "B");
    succeed({"remove-picture", "Sub1/Pumps", "b"});
    fail({"remove-picture", "Sub1/Pumps", ""}, "Pumps.stg");

    fail({"rename-group", "Pumps", "VALVES"}, "Valves.stg");
    EXPECT_EQ(succeed({"rename-group", "Pumps", "Machines"}), "Machines/Machines");
    EXPECT_EQ(succeed({"rename-group", "Sub1/Machines", "Vane"}), "Sub1/Machines");
    EXPECT_EQ(succeed({"groups"}), "Machines/Machines\tMachines\t-\t0\t12\n"
                                   "Sub1/Machines\tVane\tMachines/Machines\t1\t102\n"
                                   "Valves/Valves\tValves\t-\t0\t10");
    EXPECT_EQ(succeed({"pictures", "Sub1/Machines"}), "c\t90\t3\t4\tBMP");

    succeed({"remove-group", "Sub1/Machines"});
    succeed({"remove-group", "Valves"});
    EXPECT_EQ(succeed({"groups"}), "Machines/Machines\tMachines\t-\t0\t12");
    EXPECT_EQ(filesIn(folder() / "home" / "trash"), 1U) << "the user's file is gone";
    fail({"remove-group", "Valves"}, "Valves.stg");
}

TEST_F(ToolTest, RefusesTakenAndImpossibleGroupNames) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Rotary", "--below", "Pumps"});
    const std::string before = succeed({"groups"});
    fail({"new-group", "PUMPS"}, "PUMPS");
    fail({"new-group", "Rotary", "--below", "Pumps"}, "Rotary");
    for (const std::string name : {"", "a/b", "../up", "None", "V1.2", "tab\there", "CON"}) {
        fail({"new-group", name}, libraryFolder().string());
    }
    fail({"new-group", "x", "--below", "Sub9/Pumps"}, "Pumps.stg");
    EXPECT_EQ(succeed({"groups"}), before);
    EXPECT_EQ(filesIn(libraryFolder()), 1U);
}

TEST_F(ToolTest, KeysNeverLeaveTheLibrary) {
    succeed({"new-group", "Outside"});
    std::filesystem::rename(libraryFolder() / "Outside.stg", folder() / "Outside.stg");
    const std::string before = contentOf(folder() / "Outside.stg");
    for (const std::string key : {"Outside/../Outside", "", "/", "Outside/", "/Outside"}) {
        fail({"pictures", key}, libraryFolder().string());
        fail({"add", key, picture("x.bmp")}, libraryFolder().string());
        fail({"remove-group", key}, libraryFolder().string());
    }
    EXPECT_EQ(contentOf(folder() / "Outside.stg"), before);
}

TEST_F(ToolTest, AFileAloneIsItsTopLevelGroup) {
    succeed({"new-group", "Pumps"});
    std::filesystem::rename(libraryFolder() / "Pumps.stg", libraryFolder() / "Pumps.v2.stg");
    succeed({"add", "Pumps.v2", picture("a.bmp")});
    EXPECT_EQ(succeed({"groups"}), "Pumps/Pumps.v2\tPumps.v2\t-\t1\t99");
}

TEST_F(ToolTest, ChecksEachFileForItself) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Valves"});
    succeed({"add", "Valves", picture("a.bmp", 80, 80)});
    const std::string sound = (libraryFolder() / "Pumps.stg").string();
    const std::string cut = (libraryFolder() / "Valves.stg").string();
    const std::string renamed = (libraryFolder() / "Other.stg").string();
    const std::string foreign = (folder() / "note.txt").string();
    EXPECT_EQ(succeed({"check", sound, cut}), "");

    std::ofstream(sound, std::ios::app | std::ios::binary) << "what a crash has left";
    EXPECT_NE(succeed({"check", sound}).find("unused"), std::string::npos);

    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 4);
    std::filesystem::copy_file(sound, renamed);
    writeFile(foreign, "a note");
    const Result result = run({"check", foreign, sound, cut, renamed, "--json"});
    EXPECT_EQ(result.status, ExitStatus::Failed);
    std::map<std::string, int> findings;
    const QJsonArray found = jsonOf(result.out).array();
    for (const auto& finding : found) {
        ++findings[finding.toObject()["file"].toString().toStdString()];
    }
    EXPECT_EQ(findings[sound], 1);
    EXPECT_EQ(findings[foreign], 1);
    EXPECT_GE(findings[cut], 1);
    EXPECT_EQ(findings[renamed], 2);
    fail({"check", (folder() / "missing.stg").string()}, "missing.stg");
}

TEST_F(ToolTest, CompactingGivesSpaceBackAndKeepsThePictures) {
    succeed({"new-group", "Pumps"});
    for (const std::string name : {"a.bmp", "b.bmp", "c.bmp"}) {
        succeed({"add", "Pumps", picture(name, 400, 400)});
    }
    succeed({"remove-picture", "Pumps", "a"});
    const std::filesystem::path file = libraryFolder() / "Pumps.stg";
    const std::string pictures = succeed({"pictures", "Pumps"});
    const auto before = std::filesystem::file_size(file);
    const QJsonDocument sizes = jsonOf(succeed({"compact", file.string(), "--json"}));
    EXPECT_EQ(sizes["before"].toInt(), static_cast<int>(before));
    EXPECT_EQ(sizes["after"].toInt(), static_cast<int>(std::filesystem::file_size(file)));
    EXPECT_LT(std::filesystem::file_size(file), before);
    EXPECT_EQ(succeed({"pictures", "Pumps"}), pictures);
    EXPECT_EQ(run({"extract", "Pumps", "c", "-"}).out, bmpFile(400, 400));
    fail({"compact", (folder() / "missing.stg").string()}, "missing.stg");
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(libraryFolder());
    EXPECT_EQ(run({"compact", "Pumps.stg"}).err, "") << "a bare name has no folder";
    std::filesystem::current_path(here);
}

TEST_F(ToolTest, RendersFittedAndNeverOverAFile) {
    const std::string source = picture("a.bmp", 40, 20, 0x33);
    const auto render = [&](const std::string& name, std::vector<std::string> options) {
        const std::filesystem::path target = folder() / name;
        options.insert(options.begin(), {"render", source, target.string()});
        succeed(options);
        return QImage(QString::fromStdString(target.string()));
    };
    const QImage whole = render("whole.png", {});
    EXPECT_EQ(whole.size(), QSize(40, 20));
    EXPECT_EQ(whole.pixelColor(20, 10), QColor(0x33, 0x33, 0x33));
    EXPECT_EQ(render("narrow.png", {"--width", "10"}).size(), QSize(10, 5));
    EXPECT_EQ(render("box.png", {"--width", "30", "--height", "5"}).size(), QSize(10, 5));
    fail({"render", source, (folder() / "box.png").string()}, "box.png");
    writeFile(folder() / "broken.gif", "GIF89a");
    fail({"render", (folder() / "broken.gif").string(), (folder() / "x.png").string()},
         "broken.gif");
    EXPECT_FALSE(exists(folder() / "x.png"));
}

TEST_F(ToolTest, DrawsTheFirstPictureOfAGroupFileOrOfTheGroupsBelowIt) {
    const std::string file = (libraryFolder() / "Pumps.stg").string();
    const std::string target = (folder() / "out.png").string();
    succeed({"new-group", "Pumps"});
    fail({"thumbnail", file, target}, "Pumps.stg");
    EXPECT_FALSE(std::filesystem::exists(target));
    const std::string below = succeed({"new-group", "Rotary", "--below", "Pumps"});
    succeed({"add", below, picture("below.bmp", 30, 30, 0x11)});
    const auto thumbnail = [&] {
        succeed({"thumbnail", file, target, "--width", "16", "--height", "16", "--replace"});
        return QImage(QString::fromStdString(target));
    };
    EXPECT_EQ(thumbnail().pixelColor(1, 1), QColor(0x11, 0x11, 0x11));
    succeed({"add", "Pumps", picture("top.bmp", 40, 20, 0x33)});
    EXPECT_EQ(thumbnail().size(), QSize(16, 8));
    EXPECT_EQ(thumbnail().pixelColor(1, 1), QColor(0x33, 0x33, 0x33));
    writeFile(folder() / "broken.stg", "no compound file");
    fail({"thumbnail", (folder() / "broken.stg").string(), target}, "broken.stg");
}

TEST_F(ToolTest, TellsWrongUsageFromFailure) {
    const std::vector<std::vector<std::string>> wrong{
        {},
        {"frobnicate"},
        {"groups", "too", "many"},
        {"add", "Pumps"},
        {"extract", "Pumps", "name"},
        {"groups", "--replace"},
        {"groups", "--colour"},
        {"groups", "--json=yes"},
        {"groups", "--json", "--json"},
        {"new-group", "x", "--below"},
        {"add", "Pumps", "a.bmp", "b.bmp", "--name", "both"},
        {"render", "a.bmp", "b.png", "--width", "0"},
        {"render", "a.bmp", "b.png", "--width", "12cm"},
    };
    for (const std::vector<std::string>& words : wrong) {
        std::ostringstream out;
        std::ostringstream err;
        Console console{out, err};
        EXPECT_EQ(tool::run(words, console), ExitStatus::WrongUsage)
            << ::testing::PrintToString(words);
        EXPECT_EQ(out.str(), "");
        EXPECT_NE(err.str().find("stgtool: "), std::string::npos);
    }
    EXPECT_EQ(filesIn(libraryFolder()), 0U);
}

// A group file of another program may hold names that no dialog would let through.
TEST_F(ToolTest, ForeignNamesStayOnOneLine) {
    succeed({"new-group", "Pumps"});
    {
        auto file = compound::CompoundFile::open(
            platform::nativeDisk().open(libraryFolder() / "Pumps.stg", compound::Access::ReadWrite),
            compound::Access::ReadWrite);
        file.root().openStorage(u"Pumps").createStream(u"a\tb\nc\u001B\"ä").append({});
        file.commit();
    }
    EXPECT_EQ(succeed({"pictures", "Pumps"}), "a\\tb\\nc\\x1b\"ä\t0\t-\t-\t-");
    const QJsonDocument json = jsonOf(succeed({"pictures", "Pumps", "--json"}));
    EXPECT_EQ(json[0]["name"].toString(), QStringLiteral("a\tb\nc\u001B\"ä"));
    EXPECT_TRUE(json[0]["type"].isNull());
    fail({"extract", "Pumps", "x\x1b[2J", "-"}, "x\\x1b[2J");
}

// A library may gather files that lie elsewhere.
TEST_F(ToolTest, AGroupBehindALinkStaysWhereItIs) {
    namespace fs = std::filesystem;
    succeed({"new-group", "Pumps"});
    succeed({"add", "Pumps", picture("a.bmp")});
    succeed({"add", "Pumps", picture("b.bmp", 200, 200)});
    succeed({"remove-picture", "Pumps", "b"});
    const fs::path elsewhere = folder() / "elsewhere";
    fs::create_directory(elsewhere);
    fs::rename(libraryFolder() / "Pumps.stg", elsewhere / "real.stg");
    fs::permissions(elsewhere / "real.stg", fs::perms(0600));
    fs::create_symlink("../elsewhere/real.stg", libraryFolder() / "Pumps.stg");

    const std::uintmax_t before = fs::file_size(elsewhere / "real.stg");
    succeed({"compact", (libraryFolder() / "Pumps.stg").string()});
    EXPECT_LT(fs::file_size(elsewhere / "real.stg"), before);
    EXPECT_EQ(fs::status(elsewhere / "real.stg").permissions(), fs::perms(0600));
    EXPECT_EQ(fs::read_symlink(libraryFolder() / "Pumps.stg"), "../elsewhere/real.stg");

    succeed({"rename-group", "Pumps", "Works"});
    EXPECT_EQ(fs::read_symlink(libraryFolder() / "Works.stg"), "../elsewhere/Works.stg");
    EXPECT_EQ(fs::status(elsewhere / "Works.stg").permissions(), fs::perms(0600));
    EXPECT_FALSE(fs::is_symlink(libraryFolder() / "Pumps.stg"));
    EXPECT_FALSE(exists(elsewhere / "real.stg"));
    EXPECT_EQ(succeed({"pictures", "Works"}).substr(0, 1), "a");

    // Neither name may take another's place, here or there.
    writeFile(elsewhere / "Taken.stg", "somebody's");
    fail({"rename-group", "Works", "Taken"}, "Taken.stg");
    EXPECT_EQ(contentOf(elsewhere / "Taken.stg"), "somebody's");
    fs::create_symlink("gone", libraryFolder() / "Dangling.stg");
    fail({"rename-group", "Works", "Dangling"}, "Dangling.stg");
    EXPECT_FALSE(exists(elsewhere / "Dangling.stg"));
    EXPECT_EQ(succeed({"pictures", "Works"}).substr(0, 1), "a");
}

TEST_F(ToolTest, ARenamedFileKeepsItsRights) {
    succeed({"new-group", "Pumps"});
    for (const int mode : {0600, 0640, 0666}) {
        std::filesystem::permissions(libraryFolder() / "Pumps.stg", std::filesystem::perms(mode));
        succeed({"rename-group", "Pumps", "Works"});
        succeed({"rename-group", "Works", "Pumps"});
        EXPECT_EQ(std::filesystem::status(libraryFolder() / "Pumps.stg").permissions(),
                  std::filesystem::perms(mode));
    }
}

// Scripts run where there is no home, and need no temporary folder.
TEST_F(ToolTest, TheSettingsLibraryNeedsNoTemporaryFolder) {
    std::ostringstream out;
    std::ostringstream err;
    Console console{out, err, ErrorStream::Elsewhere};
    const std::vector<std::string> words{"groups"};
    EXPECT_EQ(tool::run(words, console), ExitStatus::Done) << err.str();
    EXPECT_TRUE(exists(folder() / "home" / "TalvixStudio")) << "the settings were not read";
    EXPECT_FALSE(exists(folder() / "home" / "tmp"));
    EXPECT_FALSE(exists(folder() / "home" / "data"));
}

TEST_F(ToolTest, AnOutputFileBehindALinkIsWrittenThroughIt) {
    namespace fs = std::filesystem;
    succeed({"new-group", "Pumps"});
    const std::string source = picture("a.bmp");
    succeed({"add", "Pumps", source});
    writeFile(folder() / "real.bmp", "old");
    fs::create_symlink("real.bmp", folder() / "link.bmp");
    succeed({"extract", "Pumps", "a", (folder() / "link.bmp").string(), "--replace"});
    EXPECT_TRUE(fs::is_symlink(folder() / "link.bmp"));
    EXPECT_EQ(contentOf(folder() / "real.bmp"), contentOf(source));
}

TEST_F(ToolTest, ALockedGroupDoesNotHideTheOthers) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Valves"});
    const auto holder =
        platform::nativeDisk().open(libraryFolder() / "Pumps.stg", compound::Access::ReadWrite);
    ASSERT_TRUE(holder->lock(std::chrono::milliseconds{0}));
    const Result result = run({"groups"});
    EXPECT_EQ(result.status, ExitStatus::Failed);
    EXPECT_EQ(result.out, "Valves/Valves\tValves\t-\t0\t10\n");
    EXPECT_NE(result.err.find("Pumps.stg"), std::string::npos);
    EXPECT_TRUE(exists(libraryFolder() / "Pumps.stg")) << "a locked file was set aside";
}

// A file may have lost one of its groups, or be held while it is listed.
TEST_F(ToolTest, AGroupThatCannotBeReadDoesNotHideTheOthers) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Rotary", "--below", "Pumps"});
    {
        auto file = compound::CompoundFile::open(
            platform::nativeDisk().open(libraryFolder() / "Pumps.stg", compound::Access::ReadWrite),
            compound::Access::ReadWrite);
        file.root().destroy(u"Pumps");
        file.commit();
    }
    const Result result = run({"groups"});
    EXPECT_EQ(result.status, ExitStatus::Failed);
    EXPECT_EQ(result.out, "Pumps/Pumps\tPumps\t-\t-\t-\nSub1/Pumps\tRotary\tPumps/Pumps\t0\t11\n");
    EXPECT_NE(result.err.find("Pumps.stg"), std::string::npos);
}

// Whatever is listed can be renamed, and bears no name of those it is listed with.
TEST_F(ToolTest, AGroupThatHasLostItsParentCanBeRenamed) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Rotary", "--below", "Pumps"});
    succeed({"new-group", "Screw", "--below", "Pumps"});
    {
        auto file = compound::CompoundFile::open(
            platform::nativeDisk().open(libraryFolder() / "Pumps.stg", compound::Access::ReadWrite),
            compound::Access::ReadWrite);
        file.root().openStorage(u"Sub1").destroy(u"Parent");
        file.commit();
    }
    fail({"rename-group", "Sub1/Pumps", "Screw"}, "Screw");
    EXPECT_EQ(succeed({"rename-group", "Sub1/Pumps", "Gear"}), "Sub1/Pumps");
    EXPECT_NE(succeed({"groups"}).find("Sub1/Pumps\tGear\tPumps/Pumps"), std::string::npos);
}

TEST_F(ToolTest, WithoutAFolderTheSettingsChooseTheLibrary) {
    const std::vector<std::string> words{"new-group", "Pumps"};
    std::ostringstream out;
    std::ostringstream err;
    Console console{out, err};
    EXPECT_EQ(tool::run(words, console), ExitStatus::Done) << err.str();
    EXPECT_EQ(filesIn(folder() / "home"), 1U);
    EXPECT_EQ(filesIn(libraryFolder()), 0U);
}

} // namespace
} // namespace tool::testing

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv); // rendering paints text
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
