// Deleting several pictures and bringing them back.
#include "store/group_trash.h"
#include "store/picture_trash.h"
#include "store/store_fixture.h"

#include <gmock/gmock.h>

namespace store::testing {
namespace {

using compound::ErrorCode;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class StopAt final : public Progress {
  public:
    explicit StopAt(std::uint64_t piece) : piece_(piece) {}
    void report(std::uint64_t done, std::uint64_t) override { done_ = done; }
    bool isStopWanted() override { return done_ >= piece_; }

  private:
    std::uint64_t piece_;
    std::uint64_t done_ = 0;
};

class PictureTrash : public StoreTest {
  protected:
    PictureTrash() {
        pumps_ = topGroup(u"Pumps");
        add(pumps_, u"a", "of a");
        add(pumps_, u"b", std::string(9000, 'b'));
        add(pumps_, u"Pipe 1.2", "of a pipe");
        before_ = pictureNames(pumps_);
    }

    static std::vector<PictureName> named(std::initializer_list<const char16_t*> names) {
        std::vector<PictureName> pictures;
        for (const char16_t* name : names) {
            pictures.push_back({name});
        }
        return pictures;
    }

    GroupAddress pumps_;
    std::vector<std::string> before_;
};

TEST_F(PictureTrash, TakesWholeFilesAndGivesThemBack) {
    const std::string bytes = bytesOf(pumps_, u"b");
    const auto records = listPictures(library, pumps_);
    // Another program may have written a name that is a path.
    {
        auto raw = openRaw(u"Pumps");
        raw.root().openStorage(u"Pumps").createStream(u"..").assign({});
        raw.commit();
    }
    const auto deleted =
        deletePictures(library, pumps_, named({u"A", u"gone", u"b", u"Name", u".."}), &trash);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("Pipe 1.2"));
    EXPECT_THAT(trash.fileNames(), ElementsAre("a.BMP", "b.BMP", "_...JPG"));
    EXPECT_THAT(disk.list("/staging"), IsEmpty());
    expectSound(u"Pumps");

    const auto restored = restorePictures(library, pumps_, std::span(deleted).first(2), trash);
    EXPECT_THAT(restored.missing, IsEmpty());
    EXPECT_EQ(pictureNames(pumps_), before_);
    EXPECT_EQ(bytesOf(pumps_, u"b"), bytes);
    const auto after = listPictures(library, pumps_);
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(after[i].record.type, records[i].record.type);
        EXPECT_EQ(after[i].record.height, records[i].record.height);
    }
    EXPECT_EQ(errorOf([&] { disk.open(deleted[0].file, compound::Access::Read); }),
              ErrorCode::NotFound)
        << "it is in the trash and in the group";
}

TEST_F(PictureTrash, GivesBackBesideWhatHasTheNameNow) {
    const auto deleted = deletePictures(library, pumps_, named({u"a", u"b"}), &trash);
    add(pumps_, u"A", "of another");
    trash.takeBack(deleted[1].file, "/staging/taken.bmp"); // the user has emptied the trash
    const auto restored = restorePictures(library, pumps_, deleted, trash);
    EXPECT_THAT(restored.names, ElementsAre(PictureName{u"a (2)"}));
    ASSERT_EQ(restored.missing.size(), 1U);
    EXPECT_EQ(restored.missing[0].code(), ErrorCode::NotFound);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("A", "a (2)", "Pipe 1.2"));
}

TEST_F(PictureTrash, LeavesNoTraceWhenStoppedOrFailing) {
    const auto names = named({u"a", u"b", u"Pipe 1.2"});
    const auto everything = disk.content("/library/Pumps.stg");
    for (std::uint64_t piece = 0; piece <= names.size(); ++piece) {
        StopAt progress(piece);
        EXPECT_EQ(errorOf([&] { deletePictures(library, pumps_, names, &trash, progress); }),
                  ErrorCode::Cancelled);
        EXPECT_EQ(disk.content("/library/Pumps.stg"), everything);
    }
    const std::size_t thrown = trash.thrown();
    // Every call fails once, until none is left to fail.
    for (int failing = 0, calls = 1; failing < calls; ++failing) {
        int call = 0;
        disk.setInterceptor([&](MemoryDisk::Call) {
            if (call++ == failing) {
                throw compound::Error(ErrorCode::Denied, "/library/Pumps.stg", "told to fail");
            }
        });
        bool isDone = true;
        try {
            deletePictures(library, pumps_, names, &trash);
        } catch (const compound::Error&) {
            isDone = false;
        }
        disk.setInterceptor({});
        calls = isDone ? 0 : failing + 2;
        EXPECT_EQ(pictureNames(pumps_).size(), isDone ? 0U : before_.size()) << failing;
    }
    add(pumps_, u"after");
    expectSound(u"Pumps");
    EXPECT_GT(trash.thrown(), thrown);
    EXPECT_EQ(trash.fileNames().size(), names.size()) << "copies of what is still there";
}

// The trash cannot take a copy then, the pictures can go all the same.
TEST_F(PictureTrash, GoWithoutTheTrashOnAFullDisk) {
    const GroupAddress rotary = subGroup(pumps_, u"Rotary");
    add(rotary, u"wheel", std::string(9000, 'w'));
    const auto names = named({u"a", u"b"});
    disk.setCapacity(disk.placed());
    EXPECT_THROW(deletePictures(library, pumps_, names, &trash), compound::TrashFailure);
    EXPECT_THROW(trashGroup(library, rotary, trash), compound::TrashFailure);
    EXPECT_EQ(pictureNames(pumps_), before_);
    const auto deleted = deletePictures(library, pumps_, names, nullptr);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("Pipe 1.2"));
    deleteGroup(library, rotary);
    disk.setCapacity(std::nullopt);
    expectSound(u"Pumps");
    EXPECT_EQ(restorePictures(library, pumps_, deleted, trash).missing.size(), 2U);
}

} // namespace
} // namespace store::testing
