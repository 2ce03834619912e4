// Groups that come from folders and files, and groups that leave as files.
#include "tool/tool_fixture.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace tool::testing {
namespace {

class TransferTest : public ToolTest {
  protected:
    // A folder with two pictures, one of them twice, and two files that are none.
    std::string pictureFolder() {
        const std::filesystem::path pictures = folder() / "drawings";
        std::filesystem::create_directory(pictures);
        writeFile(pictures / "pump.bmp", bmpFile(2, 1));
        writeFile(pictures / "PUMP.gif", bmpFile(4, 3)); // measured by its bytes, named by its name
        writeFile(pictures / "valve.v2.BMP", bmpFile(1, 1));
        writeFile(pictures / "broken.jpg", "no picture");
        writeFile(pictures / "notes.txt", "no picture either");
        return pictures.string();
    }

    // Moves the group file out of the library, under its own name.
    std::string moveOut(const std::string& name) {
        const std::filesystem::path out = folder() / "out" / name;
        std::filesystem::create_directories(out.parent_path());
        std::filesystem::rename(libraryFolder() / name, out);
        return out.string();
    }
};

TEST_F(TransferTest, MakesAGroupOfAFolder) {
    const std::string drawings = pictureFolder();
    const Result made = run({"new-group", "Plant", "--folder", drawings});
    EXPECT_EQ(made.status, ExitStatus::Failed) << "one file was left out";
    EXPECT_EQ(made.out, "Plant/Plant\n");
    EXPECT_NE(made.err.find("broken.jpg: "), std::string::npos) << made.err;
    EXPECT_EQ(std::count(made.err.begin(), made.err.end(), '\n'), 1) << made.err;
    EXPECT_EQ(succeed({"pictures", "Plant"}), "PUMP\t90\t3\t4\tGIF\nvalve.v2\t58\t1\t1\tBMP");

    std::filesystem::remove(drawings + "/broken.jpg");
    EXPECT_EQ(succeed({"new-group", "Below", "--below", "Plant", "--folder", drawings}),
              "Sub1/Plant");
    EXPECT_EQ(succeed({"pictures", "Sub1/Plant"}), succeed({"pictures", "Plant"}));
    succeed({"new-group", "Empty"});
    EXPECT_EQ(succeed({"add", "Empty", "--folder", drawings}), "");
    const Result again = run({"add", "Empty", "--folder", drawings});
    EXPECT_EQ(again.status, ExitStatus::Failed);
    EXPECT_NE(again.err.find("valve.v2"), std::string::npos) << again.err;
    succeed({"add", "Empty", "--folder", drawings, "--replace"});
    EXPECT_EQ(succeed({"pictures", "Empty"}), succeed({"pictures", "Plant"}));

    fail({"new-group", "Gone", "--folder", drawings + "-gone"}, "drawings-gone");
    fail({"new-group", "Gone", "--folder", libraryFolder().string()}, "no picture files");
    EXPECT_FALSE(std::filesystem::exists(libraryFolder() / "Gone.stg"));
    EXPECT_EQ(run({"add", "Plant", "--folder", drawings, "more.bmp"}).status,
              ExitStatus::WrongUsage);
    EXPECT_EQ(run({"add", "Plant"}).status, ExitStatus::WrongUsage);
}

// A group file from elsewhere can call its groups anything.
TEST_F(TransferTest, NoGroupsNameLeadsOutOfTheFolder) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "abcde", "--below", "Pumps"});
    const std::filesystem::path file = libraryFolder() / "Pumps.stg";
    std::string bytes = contentOf(file);
    const std::size_t name = bytes.find("abcde");
    ASSERT_NE(name, std::string::npos);
    writeFile(file, bytes.replace(name, 5, "../zz"));
    const std::filesystem::path out = folder() / "out" / "inner";
    std::filesystem::create_directories(out);
    fail({"export", "Sub1/Pumps", out.string()}, "\"../zz\"");
    EXPECT_FALSE(std::filesystem::exists(folder() / "out" / "zz.stg"));
    succeed({"export", "Sub1/Pumps", (out / "named.stg").string()});
}

TEST_F(TransferTest, ExportsAndImportsGroups) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Rotary", "--below", "Pumps"});
    succeed({"new-group", "Gear", "--below", "Sub1/Pumps"});
    succeed({"add", "Sub2/Pumps", picture("wheel.bmp", 20, 10)});
    const std::string file = (folder() / "Rotary.stg").string();
    EXPECT_EQ(succeed({"export", "Sub1/Pumps", file}), "");
    fail({"export", "Sub1/Pumps", folder().string()}, "Rotary.stg"); // the very file
    EXPECT_EQ(succeed({"check", file}), "");

    EXPECT_EQ(succeed({"import", file}), "Rotary/Rotary");
    fail({"import", file}, "Rotary.stg");
    EXPECT_EQ(succeed({"import", file, "--below", "Rotary"}), "Sub3/Rotary");
    EXPECT_EQ(succeed({"import", file, "--below", "Sub3/Rotary"}), "Sub6/Rotary");
    fail({"import", file, "--below", "Sub3/Rotary"}, "\"Rotary\"");
    EXPECT_EQ(succeed({"groups"}), "Pumps/Pumps\tPumps\t-\t0\t9\n"
                                   "Sub1/Pumps\tRotary\tPumps/Pumps\t0\t11\n"
                                   "Sub2/Pumps\tGear\tSub1/Pumps\t1\t662\n"
                                   "Rotary/Rotary\tRotary\t-\t0\t10\n"
                                   "Sub2/Rotary\tGear\tRotary/Rotary\t1\t664\n"
                                   "Sub3/Rotary\tRotary\tRotary/Rotary\t0\t12\n"
                                   "Sub5/Rotary\tGear\tSub3/Rotary\t1\t662\n"
                                   "Sub6/Rotary\tRotary\tSub3/Rotary\t0\t10\n"
                                   "Sub8/Rotary\tGear\tSub6/Rotary\t1\t662");
    EXPECT_EQ(run({"extract", "Sub8/Rotary", "wheel", "-"}).out, bmpFile(20, 10));
    fail({"import", picture("Picture.stg")}, "Picture.stg");
    fail({"import", picture("Picture.stg"), "--below", "Pumps"}, "Picture.stg");
}

TEST_F(TransferTest, KnowsTheTargetAndTheLibrarysOwnFilesByAnyPath) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Plant"});
    const std::filesystem::path link = folder() / "link.stg";
    const std::filesystem::path hardLink = folder() / "Pumps.stg";
    std::filesystem::create_symlink(libraryFolder() / "Plant.stg", link);
    std::filesystem::create_hard_link(libraryFolder() / "Pumps.stg", hardLink);
    const std::string plant = contentOf(libraryFolder() / "Plant.stg");
    fail({"import", link.string(), "--below", "Plant"}, link.string());
    fail({"export", "Plant", link.string(), "--replace"}, link.string());
    EXPECT_EQ(contentOf(libraryFolder() / "Plant.stg"), plant);

    const std::string pumps = contentOf(hardLink);
    EXPECT_EQ(succeed({"import", hardLink.string(), "--below", "Plant"}), "Sub1/Plant");
    EXPECT_EQ(contentOf(hardLink), pumps);
    EXPECT_FALSE(std::filesystem::exists(hardLink.string() + ".bak"));
}

TEST_F(TransferTest, RenumbersOnlyASourceThatCanBeWritten) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Plant"});
    const std::string source = moveOut("Pumps.stg");
    const std::string original = contentOf(source);
    std::filesystem::permissions(source, std::filesystem::perms::owner_read);
    std::filesystem::permissions(std::filesystem::path(source).parent_path(),
                                 std::filesystem::perms::owner_read |
                                     std::filesystem::perms::owner_exec);
    const bool mayWriteAnything = ::access(source.c_str(), W_OK) == 0; // the superuser
    EXPECT_EQ(succeed({"import", source, "--below", "Plant"}), "Sub1/Plant");
    std::filesystem::permissions(std::filesystem::path(source).parent_path(),
                                 std::filesystem::perms::owner_all);
    EXPECT_EQ(contentOf(source) == original, !mayWriteAnything);
    EXPECT_EQ(std::filesystem::exists(source + ".bak"), mayWriteAnything);

    // A copy in the library can be written, whatever the source could be.
    std::filesystem::remove(source);
    writeFile(source, original);
    std::filesystem::permissions(source, std::filesystem::perms::owner_read);
    EXPECT_EQ(succeed({"import", source}), "Pumps/Pumps");
    const auto permissions = std::filesystem::status(libraryFolder() / "Pumps.stg").permissions();
    EXPECT_NE(permissions & std::filesystem::perms::owner_write, std::filesystem::perms::none);
    succeed({"add", "Pumps", picture("x.bmp")});
}

} // namespace
} // namespace tool::testing
