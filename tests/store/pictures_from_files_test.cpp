#include "store/group_in_the_making.h"
#include "store/group_layout.h"
#include "store/pictures_from_files.h"
#include "store/storage_access.h"
#include "store/store_fixture.h"

#include <gmock/gmock.h>

namespace store::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Paths = std::vector<std::filesystem::path>;

// Wants to stop once `count` files were reported.
class StopAfter final : public Progress {
  public:
    explicit StopAfter(std::uint64_t count) : count_(count) {}
    void report(std::uint64_t done, std::uint64_t) override { done_ = done; }
    bool isStopWanted() override { return done_ >= count_; }

  private:
    std::uint64_t count_;
    std::uint64_t done_ = 0;
};

class PicturesFromFiles : public StoreTest {
  protected:
    Paths sources(const std::vector<std::string>& names) {
        Paths paths;
        for (const std::string& name : names) {
            paths.push_back(source(name, 150, 150, "of " + name));
        }
        return paths;
    }

    // Enough to need sectors of all kinds.
    Paths manySources() {
        Paths paths;
        for (std::size_t i = 0; i < 40; ++i) {
            paths.push_back(source("many" + std::to_string(i) + ".bmp", 150, 150,
                                   std::string(i * i * 20, 'x')));
        }
        return paths;
    }

    std::string textOf(const GroupAddress& group, std::u16string_view name) {
        const std::string bytes = bytesOf(group, name);
        return bytes.substr(bytes.find("of "));
    }
};

TEST_F(PicturesFromFiles, AreCalledLikeTheirFilesOrNumbered) {
    const Paths files = sources({"pump.bmp", "PUMP.gif", "a.jpeg", "Name.bmp", ".bmp", "no!.ico",
                                 "- none -.bmp", "an absolutely endless name of it.wmf"});
    const std::vector<std::u16string> reserved{u"- None -"};
    const FilesAdded added =
        createGroupFromFiles(library, std::nullopt, {u"Plant"}, files, reserved);
    EXPECT_EQ(added.group, topLevelAddress(u"Plant"));
    EXPECT_EQ(added.pictures, 7U);
    EXPECT_THAT(added.skipped, IsEmpty());
    EXPECT_THAT(pictureNames(added.group), ElementsAre("a.", "PUMP", "Picture3", "Picture4",
                                                       "Picture5", "Picture6", "Picture7"));
    EXPECT_EQ(textOf(added.group, u"pump"), "of PUMP.gif");
    EXPECT_EQ(readPictureType(library, added.group, {u"pump"}), "GIF");
    EXPECT_EQ(textOf(added.group, u"Picture3"), "of Name.bmp");
    EXPECT_THAT(treeOf(u"Plant"), IsEmpty());
    expectSound(u"Plant");
}

TEST_F(PicturesFromFiles, AreListedByNameWithoutRegardToCase) {
    sources({"b.BMP", "a.emf", "C.Cur", "d.txt", "ebmp", "f.bmp.bak"});
    disk.makeFolder("/sources/folder.bmp");
    EXPECT_THAT(pictureFilesIn(disk, "/sources"),
                ElementsAre("/sources/a.emf", "/sources/b.BMP", "/sources/C.Cur"));
    EXPECT_EQ(errorOf([&] { pictureFilesIn(disk, "/nowhere"); }), compound::ErrorCode::NotFound);
}

TEST_F(PicturesFromFiles, SkipsWhatIsNoPictureAndSaysWhy) {
    const GroupAddress pumps = topGroup(u"Pumps");
    Paths files = sources({"one.bmp", "two.bmp"});
    files.insert(files.begin() + 1, fileOf("broken.bmp", "no picture at all"));
    files.insert(files.begin() + 2, "/sources/gone.bmp");
    const FilesAdded added = createGroupFromFiles(library, pumps, {u"Rotary"}, files);
    EXPECT_THAT(pictureNames(added.group), ElementsAre("one", "two"));
    EXPECT_THAT(treeOf(u"Pumps"), ElementsAre("Pumps>Sub1:Rotary"));
    ASSERT_EQ(added.skipped.size(), 2U);
    EXPECT_EQ(added.skipped[0].file, "/sources/broken.bmp");
    EXPECT_EQ(added.skipped[0].failure.code(), compound::ErrorCode::InvalidPicture);
    EXPECT_EQ(added.skipped[1].file, "/sources/gone.bmp");
    EXPECT_EQ(added.skipped[1].failure.code(), compound::ErrorCode::NotFound);
}

TEST_F(PicturesFromFiles, LeaveNoTraceWhenStopped) {
    const GroupAddress pumps = topGroup(u"Pumps");
    add(pumps, u"old", std::string(9000, 'o'));
    topGroup(
        u"Rotary"); // bears the name of the sub-group in the making, and is none of its business
    const auto pumpsFile = disk.content("/library/Pumps.stg");
    const auto rotaryFile = disk.content("/library/Rotary.stg");
    const Paths files = manySources();
    for (const std::size_t count :
         {std::size_t{0}, std::size_t{1}, std::size_t{17}, files.size() - 1}) {
        for (const auto& [parent, name] :
             {std::pair(std::optional(pumps), u"Rotary"), {std::nullopt, u"Tanks"}}) {
            StopAfter progress(count);
            EXPECT_EQ(errorOf([&] {
                          createGroupFromFiles(library, parent, {name}, files, {}, progress);
                      }),
                      compound::ErrorCode::Cancelled);
        }
        EXPECT_EQ(disk.list("/library").size(), 2U);
        EXPECT_EQ(disk.content("/library/Pumps.stg").size(), pumpsFile.size());
        EXPECT_EQ(disk.content("/library/Rotary.stg"), rotaryFile);
        EXPECT_THAT(treeOf(u"Pumps"), IsEmpty());
        expectSound(u"Pumps");
    }
    StopAfter never(files.size() + 1);
    createGroupFromFiles(library, pumps, {u"Rotary"}, files, {}, never);
    EXPECT_THAT(treeOf(u"Pumps"), ElementsAre("Pumps>Sub1:Rotary"));
    EXPECT_EQ(pictureNames(addressOf(u"Sub1/Pumps")).size(), files.size());
}

TEST_F(PicturesFromFiles, TakeNoNameThatIsTaken) {
    const Paths files = sources({"one.bmp"});
    topGroup(u"Pumps");
    EXPECT_EQ(errorOf([&] { createGroupFromFiles(library, std::nullopt, {u"Pumps"}, files); }),
              compound::ErrorCode::Exists);
    GroupInTheMaking tanks(library, std::nullopt, {u"Tanks"});
    topGroup(u"Tanks"); // somebody else's, meanwhile
    EXPECT_EQ(errorOf([&] { tanks.commit(); }), compound::ErrorCode::Exists);
    EXPECT_EQ(disk.list("/library").size(), 3U) << "the group in the making is still there";
}

TEST_F(PicturesFromFiles, ReplaceInAGroupOnlyWhenAsked) {
    const GroupAddress pumps = topGroup(u"Pumps");
    add(pumps, u"ONE", "of old");
    const Paths files = sources({"one.bmp", "two.bmp", "two.gif"});
    const FilesAdded refused = addFiles(library, pumps, files, IfPictureExists::Refuse);
    ASSERT_EQ(refused.skipped.size(), 1U);
    EXPECT_EQ(refused.skipped[0].file, files[0]);
    EXPECT_EQ(refused.skipped[0].failure.code(), compound::ErrorCode::Exists);
    EXPECT_EQ(refused.pictures, 1U);
    EXPECT_EQ(textOf(pumps, u"one"), "of old");
    EXPECT_EQ(textOf(pumps, u"two"), "of two.gif");

    EXPECT_EQ(addFiles(library, pumps, files, IfPictureExists::Replace).pictures, 2U);
    EXPECT_EQ(textOf(pumps, u"one"), "of one.bmp");

    {
        StorageAccess access(library); // as a program that keeps no records
        access.openGroup(pumps, compound::Access::ReadWrite);
        access.root().DestroyElement(infoStorageOf(pumps.storage).text);
        access.Commit();
    }
    const auto before = disk.content("/library/Pumps.stg");
    EXPECT_EQ(addFiles(library, pumps, Paths{files[0]}, IfPictureExists::Refuse).pictures, 0U);
    EXPECT_EQ(disk.content("/library/Pumps.stg"), before) << "nothing was added";
}

} // namespace
} // namespace store::testing
