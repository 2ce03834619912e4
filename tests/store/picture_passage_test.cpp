// Pictures between groups, pictures that arrive, groups that come back.
#include "base/utf8.h"
#include "compound/format.h"
#include "store/arriving_pictures.h"
#include "store/fitting_names.h"
#include "store/group_trash.h"
#include "store/names.h"
#include "store/store_fixture.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <iterator>
#include <stdexcept>

namespace store::testing {
namespace {

using compound::ErrorCode;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class PicturePassage : public StoreTest {
  protected:
    PicturePassage() {
        pumps_ = topGroup(u"Pumps");
        rotary_ = subGroup(pumps_, u"Rotary");
        tanks_ = topGroup(u"Tanks");
        add(pumps_, u"a", "of a");
        add(pumps_, u"b", std::string(9000, 'b'));
        add(tanks_, u"A", "of tanks");
        add(rotary_, u"b", "of rotary");
    }

    std::string textOf(const GroupAddress& group, std::u16string_view name) {
        const std::string bytes = bytesOf(group, name);
        return bytes.substr(bytes.find("of "));
    }

    GroupAddress pumps_;
    GroupAddress rotary_;
    GroupAddress tanks_;
};

TEST_F(PicturePassage, CopiesAndMovesWithinAFileAndAcross) {
    const std::vector<PassingPicture> both{
        {{u"A"}, IfNameTaken::KeepBoth}, {{u"gone"}}, {{u"Name"}}, {{u"b"}, IfNameTaken::Skip}};
    const auto copied = passPictures(library, pumps_, tanks_, both, PassageKind::Copy);
    EXPECT_THAT(pictureNames(tanks_), ElementsAre("A", "b", "a (2)"));
    EXPECT_EQ(textOf(tanks_, u"a (2)"), "of a");
    EXPECT_EQ(readPictureType(library, tanks_, {u"a (2)"}), "BMP");
    EXPECT_EQ(textOf(tanks_, u"A"), "of tanks");
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("a", "b"));
    EXPECT_EQ(copied.gone.size(), 2U);

    const std::vector<PassingPicture> replacing{{{u"b"}, IfNameTaken::Replace}};
    passPictures(library, pumps_, rotary_, replacing, PassageKind::Move);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("a"));
    EXPECT_GT(bytesOf(rotary_, u"b").size(), 9000U);
    passPictures(library, rotary_, tanks_, replacing, PassageKind::Move);
    EXPECT_THAT(pictureNames(rotary_), IsEmpty());
    EXPECT_GT(bytesOf(tanks_, u"b").size(), 9000U);
    // And back under the old name.
    passPictures(library, tanks_, pumps_, std::vector<PassingPicture>{{{u"A"}, {}, {u"tank"}}},
                 PassageKind::Move);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("a", "tank"));
    expectSound(u"Pumps");
    expectSound(u"Tanks");
}

TEST_F(PicturePassage, ReplacedPicturesComeBack) {
    const std::vector<PassingPicture> replacing{{{u"a"}, IfNameTaken::Replace}};
    const auto everything = disk.content("/library/Tanks.stg");
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Sync && !trash.fileNames().empty()) {
            throw compound::Error(ErrorCode::Failed, "/library/Tanks.stg", "the disk fails");
        }
    });
    EXPECT_EQ(errorOf([&] {
                  passPictures(library, pumps_, tanks_, replacing, PassageKind::Move, noProgress(),
                               &trash);
              }),
              ErrorCode::Failed);
    disk.setInterceptor({});
    EXPECT_THAT(trash.fileNames(), IsEmpty());
    EXPECT_EQ(textOf(tanks_, u"A"), "of tanks");

    const auto moved =
        passPictures(library, pumps_, tanks_, replacing, PassageKind::Move, noProgress(), &trash);
    EXPECT_THAT(trash.fileNames(), ElementsAre("A.BMP"));
    EXPECT_EQ(textOf(tanks_, u"A"), "of a");
    const auto back = restorePictures(library, tanks_, moved.replaced, trash, IfNameTaken::Replace);
    EXPECT_THAT(back.names, ElementsAre(PictureName{u"A"}));
    EXPECT_EQ(textOf(tanks_, u"A"), "of tanks");
    EXPECT_EQ(readPictureType(library, tanks_, {u"A"}), "BMP");
    EXPECT_THAT(trash.fileNames(), ElementsAre("a.BMP")) << "what has had to make room";

    const std::vector<ArrivingPicture> arriving{
        {source("new.bmp", 150, 150), {u"a"}, IfNameTaken::Replace}};
    const auto arrived = addArriving(library, tanks_, arriving, noProgress(), &trash);
    ASSERT_THAT(arrived.replaced, SizeIs(1));
    restorePictures(library, tanks_, arrived.replaced, trash, IfNameTaken::Replace);
    EXPECT_EQ(textOf(tanks_, u"A"), "of tanks");
    expectSound(u"Tanks");
}

TEST_F(PicturePassage, CopiesBesideThemselves) {
    const std::vector<PassingPicture> one{{{u"a"}}};
    passPictures(library, pumps_, pumps_, one, PassageKind::Copy);
    passPictures(library, pumps_, pumps_, one, PassageKind::Copy);
    passPictures(library, pumps_, pumps_, one, PassageKind::Move);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("a", "b", "a (2)", "a (3)"));
    EXPECT_EQ(textOf(pumps_, u"a (3)"), "of a");
    // No picture takes the place of itself, nor of another that came with it.
    const std::vector<PassingPicture> replacing{{{u"A"}, IfNameTaken::Replace},
                                                {{u"a (2)"}, IfNameTaken::Replace, {u"a"}}};
    passPictures(library, pumps_, pumps_, replacing, PassageKind::Copy);
    EXPECT_THAT(pictureNames(pumps_), SizeIs(6));
    EXPECT_EQ(textOf(pumps_, u"a"), "of a");
    const std::vector<PassingPicture> asOne{{{u"a"}, IfNameTaken::Replace, {u"one"}},
                                            {{u"b"}, IfNameTaken::Replace, {u"one"}}};
    passPictures(library, pumps_, tanks_, asOne, PassageKind::Move);
    EXPECT_EQ(textOf(tanks_, u"one"), "of a");
    EXPECT_GT(bytesOf(tanks_, u"one (2)").size(), 9000U);
}

// Whatever call fails, each picture is in one of the groups or in both, and the files are sound.
TEST_F(PicturePassage, IsInOneOfThemOrInBothWhateverFails) {
    const std::vector<PassingPicture> all{{{u"a"}}, {{u"b"}}};
    bool wasInBoth = false;
    for (int failing = 0, calls = 1; failing < calls; ++failing) {
        int call = 0;
        bool hasFailed = false;
        disk.setInterceptor([&](MemoryDisk::Call) {
            if (call++ == failing) {
                hasFailed = true;
                throw compound::Error(ErrorCode::NoSpace, "/library/Pumps.stg", "told to fail");
            }
        });
        PicturesPassed result;
        bool isThrown = false;
        try {
            result = passPictures(library, pumps_, tanks_, all, PassageKind::Move);
        } catch (const compound::Error&) {
            isThrown = true;
        }
        disk.setInterceptor({});
        const bool isAtSource = !pictureNames(pumps_).empty();
        const bool isAtTarget = pictureNames(tanks_).size() > 1;
        EXPECT_TRUE(isAtSource || isAtTarget) << failing;
        EXPECT_EQ(isThrown, !isAtTarget) << failing;
        EXPECT_EQ(result.sourceFailure.has_value(), isAtSource && isAtTarget) << failing;
        wasInBoth = wasInBoth || (isAtSource && isAtTarget);
        for (const PassedPicture& picture : result.passed) { // as before, for the next one
            if (isAtSource) {
                deletePicture(library, tanks_, picture.to);
            } else {
                passPictures(library, tanks_, pumps_,
                             std::vector<PassingPicture>{{picture.to, {}, picture.from}},
                             PassageKind::Move);
            }
        }
        calls = hasFailed ? failing + 2 : 0;
    }
    EXPECT_TRUE(wasInBoth);
}

TEST_F(PicturePassage, ArrivalsKeepReplaceSkipAndAreNumbered) {
    const auto file = [&](const std::string& name) { return source(name, 150, 150, "of " + name); };
    const std::vector<ArrivingPicture> arriving{
        {file("a.bmp"), {u"a"}, IfNameTaken::Replace},
        {file("b.gif"), {u"B"}, IfNameTaken::KeepBoth},
        {file("c.bmp"), {u"c"}, IfNameTaken::Replace},
        {file("c.ico"), {u"C"}, IfNameTaken::Replace}, // beside the other arrival
        {fileOf("broken.bmp", "no picture"), {u"broken"}},
        {"/sources/memory",
         {u"memory"},
         {},
         "BMP",
         [&] { return readPictureFile(disk, "/sources/a.bmp"); }},
        {"/sources/refused", {u"refused"}, {}, "BMP", []() -> std::vector<std::byte> {
             throw std::runtime_error("cannot be converted");
         }}};
    const auto arrived = addArriving(library, pumps_, arriving);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("a", "b", "c", "B (2)", "C (2)", "memory"));
    EXPECT_EQ(textOf(pumps_, u"a"), "of a.bmp");
    EXPECT_EQ(readPictureType(library, pumps_, {u"C (2)"}), "ICO");
    EXPECT_EQ(arrived.names.size(), 5U);
    ASSERT_EQ(arrived.skipped.size(), 2U);
    EXPECT_EQ(arrived.skipped[0].file, "/sources/broken.bmp");
    EXPECT_EQ(arrived.skipped[1].failure.cause(), "cannot be converted");
    expectSound(u"Pumps");
}

// Another program is still writing it: half a picture is none.
TEST_F(PicturePassage, AFileThatGrowsIsLeftOut) {
    const std::filesystem::path growing = source("growing.bmp", 150, 150);
    const auto writer = disk.open(growing, compound::Access::ReadWrite);
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Read) {
            writer->write(writer->size(), std::vector<std::byte>(1));
        }
    });
    const std::vector<ArrivingPicture> arriving{{growing, {u"growing"}}};
    const auto arrived = addArriving(library, pumps_, arriving);
    disk.setInterceptor({});
    ASSERT_EQ(arrived.skipped.size(), 1U);
    EXPECT_EQ(arrived.skipped[0].failure.file(), growing);
    EXPECT_THAT(pictureNames(pumps_), ElementsAre("a", "b"));
}

// Changes of pictures that are large enough to leave gaps worth closing.
class GapsBehindPictures : public StoreTest {
  protected:
    // A group of its own file with such pictures, "0" and so on, and others behind them.
    GroupAddress groupWith(std::u16string_view name, std::size_t pictures) {
        const GroupAddress top = topGroup(name);
        GroupAddress below = subGroup(top, u"Valves");
        for (std::size_t i = 0; i < pictures; ++i) {
            add(below, numbered(i).text, std::string(kBytes, 'v'));
        }
        for (const char16_t* behind : {u"behind", u"it", u"lie", u"others"}) {
            add(top, behind, std::string(kBytes, 'b'));
        }
        return below;
    }

    static PictureName numbered(std::size_t number) {
        return {base::fromUtf8(std::to_string(number))};
    }

    template <typename Item, typename Make>
    static std::vector<Item> several(std::size_t count, Make make) {
        std::vector<Item> items;
        for (std::size_t i = 0; i < count; ++i) {
            items.push_back(make(i));
        }
        return items;
    }

    // The low byte of what counts a file's transactions.
    std::uint8_t transactionOf(std::u16string_view file) {
        const auto bytes = disk.content(pathOf(library, {std::u16string(file)}));
        return std::to_integer<std::uint8_t>(bytes.at(compound::format::header::kTransactionAt));
    }

    static constexpr std::size_t kBytes = 300000;
};

// A power cut between the commits that give and take leaves the pictures in both files.
TEST_F(GapsBehindPictures, AreClosedWhenBothFilesHaveWhatTheyAreToHave) {
    const GroupAddress from = groupWith(u"From", 2);
    const GroupAddress to = groupWith(u"To", 2);
    const auto both = several<PassingPicture>(2, [](std::size_t i) {
        return PassingPicture{numbered(i), IfNameTaken::Replace};
    });
    std::string order;
    std::uint8_t last[] = {transactionOf(u"From"), transactionOf(u"To")};
    const auto look = [&] {
        const std::uint8_t now[] = {transactionOf(u"From"), transactionOf(u"To")};
        order += now[0] != last[0] ? "source " : "";
        order += now[1] != last[1] ? "target " : "";
        std::copy(std::begin(now), std::end(now), std::begin(last));
    };
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Sync) {
            look();
        }
    });
    passPictures(library, from, to, both, PassageKind::Move);
    disk.setInterceptor({});
    EXPECT_EQ(order, "target source target source ");
    expectSound(u"From");
    expectSound(u"To");
}

// What one picture leaves waits for the next changes: two more syncs would double its price.
TEST_F(GapsBehindPictures, AreClosedAtOnceOnlyBehindSeveral) {
    const auto sourceOf = [&](std::size_t i) {
        return source(base::toUtf8(numbered(i).text) + ".bmp", 15, 15, std::string(kBytes, 's'));
    };
    const auto namesOf = [](std::size_t count) { return several<PictureName>(count, numbered); };
    const auto passingOf = [](std::size_t count) {
        return several<PassingPicture>(count, [](std::size_t i) {
            return PassingPicture{numbered(i), IfNameTaken::Replace};
        });
    };
    const auto arrivingOf = [&](std::size_t count) {
        return several<ArrivingPicture>(count, [&](std::size_t i) {
            return ArrivingPicture{sourceOf(i), numbered(i), IfNameTaken::Replace};
        });
    };
    const GroupAddress elsewhere = topGroup(u"Elsewhere");
    std::vector<TrashedPicture> trashed;
    using Group = const GroupAddress&;
    const std::pair<const char*, std::function<void(Group, std::size_t)>> operations[] = {
        {"delete",
         [&](Group group, std::size_t count) {
             trashed = deletePictures(library, group, namesOf(count), &trash);
         }},
        {"replace by those in the trash",
         [&](Group group, std::size_t count) {
             restorePictures(library, group, std::span(trashed).first(count), trash,
                             IfNameTaken::Replace);
         }},
        {"move",
         [&](Group group, std::size_t count) {
             passPictures(library, group, elsewhere, passingOf(count), PassageKind::Move);
         }},
        {"replace by another group's",
         [&](Group group, std::size_t count) {
             passPictures(library, elsewhere, group, passingOf(count), PassageKind::Copy);
         }},
        {"replace by arriving ones",
         [&](Group group, std::size_t count) { addArriving(library, group, arrivingOf(count)); }},
        {"replace by files",
         [&](Group group, std::size_t count) {
             addFiles(library, group, several<std::filesystem::path>(count, sourceOf),
                      IfPictureExists::Replace);
         }},
        {"replace in a batch",
         [&](Group group, std::size_t count) {
             PictureBatch batch(library, group);
             for (std::size_t i = 0; i < count; ++i) {
                 batch.add(numbered(i), sourceOf(i), IfPictureExists::Replace);
             }
             batch.commit();
         }},
        {"delete the group", [&](Group group, std::size_t) { deleteGroup(library, group); }},
        {"trash the group", [&](Group group, std::size_t) { trashGroup(library, group, trash); }},
    };
    std::u16string file = u"Works";
    for (const std::size_t count : {2U, 1U}) {
        for (const auto& [what, change] : operations) {
            file += u'x';
            const GroupAddress group = groupWith(file, count);
            const std::uint8_t before = transactionOf(file);
            change(group, count);
            EXPECT_EQ(transactionOf(file) - before, static_cast<int>(count)) << what;
            expectSound(file);
        }
    }
}

TEST(FittingNames, AreValidAndKeepWhatTheyCan) {
    const auto picture = [](std::u16string_view text) { return fittingPictureName(text).text; };
    EXPECT_EQ(picture(u"Pipe 1.2"), u"Pipe 1.2");
    EXPECT_EQ(picture(u"a/b:c!"), u"a_b_c_");
    EXPECT_EQ(picture(u"name"), u"name_");
    EXPECT_EQ(picture(u".."), u".._");
    EXPECT_EQ(picture(u""), u"_");
    EXPECT_EQ(picture(std::u16string(40, u'x')), std::u16string(31, u'x'));
    EXPECT_EQ(picture(std::u16string(30, u'x') + u"\U0001F600"), std::u16string(30, u'x'));
    EXPECT_EQ(picture(std::u16string(1, char16_t(0xDC80)) + u"a"), u"_a");
    int asked = 0;
    const auto isTaken = [&](const PictureName&) { return ++asked < 10; };
    EXPECT_EQ(freePictureName({std::u16string(31, u'x')}, isTaken).text,
              std::u16string(26, u'x') + u" (10)");
    for (const std::u16string_view text :
         {u"", u" ", u"CON", u"None", u"a.b", u" x ", u"\u4E2D", u"what?", u"."}) {
        EXPECT_TRUE(isValidGroupName(fittingGroupName(text).text, GroupLevel::TopLevel));
    }
}

TEST_F(PicturePassage, GroupsComeBackWhereTheyWere) {
    const GroupAddress steel = subGroup(rotary_, u"Sub9");
    add(steel, u"bolt", "of steel");
    const auto before = treeOf(u"Pumps");
    EXPECT_EQ(countGroupsBelow(library, pumps_), 2U);
    EXPECT_EQ(countGroupsBelow(library, steel), 0U);
    const auto small = trashGroup(library, steel, trash);
    const auto large = trashGroup(library, rotary_, trash);
    EXPECT_THAT(treeOf(u"Pumps"), IsEmpty());
    EXPECT_EQ(trash.fileNames().back(), "Rotary.stg");
    EXPECT_EQ(restoreGroup(library, large, trash), rotary_);
    EXPECT_EQ(restoreGroup(library, small, trash), steel);
    EXPECT_EQ(treeOf(u"Pumps"), before);
    EXPECT_EQ(textOf(steel, u"bolt"), "of steel");
    EXPECT_EQ(textOf(rotary_, u"b"), "of rotary");
    EXPECT_EQ(trash.fileNames().size(), 0U);
    expectSound(u"Pumps");

    // Another group has taken the place meanwhile.
    const auto again = trashGroup(library, rotary_, trash);
    const GroupAddress screw = subGroup(pumps_, u"Screw");
    ASSERT_EQ(screw, rotary_);
    const GroupAddress back = restoreGroup(library, again, trash);
    EXPECT_NE(back, screw);
    EXPECT_EQ(textOf(back, u"b"), "of rotary");
    EXPECT_EQ(readGroupName(library, screw).text, u"Screw");
    expectSound(u"Pumps");

    const auto file = trashGroup(library, tanks_, trash);
    EXPECT_EQ(file.address, tanks_);
    topGroup(u"TANKS");
    EXPECT_EQ(errorOf([&] { restoreGroup(library, file, trash); }), ErrorCode::Exists);
    removeGroupFile(library, {u"TANKS"});
    restoreGroup(library, file, trash);
    EXPECT_EQ(textOf(tanks_, u"A"), "of tanks");
}

// What is called as info storages are must not become one.
TEST_F(PicturePassage, AGroupThatComesBackBesideAnotherIsSeen) {
    const GroupAddress info = subGroup(pumps_, u"TradeInfo");
    add(info, u"fair", "of a fair");
    const auto trashed = trashGroup(library, info, trash);
    ASSERT_EQ(subGroup(pumps_, u"Screw"), info) << "its place is not taken";
    const GroupAddress back = restoreGroup(library, trashed, trash);
    EXPECT_THAT(treeOf(u"Pumps"),
                ElementsAre("Pumps>Sub1:Rotary", "Pumps>Sub2:Screw", "Pumps>Sub3:TradeInfo"));
    EXPECT_EQ(textOf(back, u"fair"), "of a fair");
    expectSound(u"Pumps");
}

// Once the trash was emptied, something else may get the place there.
TEST_F(PicturePassage, WhatIsNotTheirsInTheTrashDoesNotComeBack) {
    const std::vector<PictureName> name{{u"b"}};
    const auto pictures = deletePictures(library, pumps_, name, &trash);
    const auto sub = trashGroup(library, rotary_, trash);
    const auto file = trashGroup(library, tanks_, trash);
    const std::vector<std::filesystem::path> places{pictures[0].file, sub.file, file.file};
    for (const std::filesystem::path& place : places) {
        const auto bytes = disk.content(place);
        disk.removeTemporary(place);
        disk.create(place)->write(0, bytes); // of the same name, of the same size
    }
    const auto restored = restorePictures(library, pumps_, pictures, trash);
    EXPECT_THAT(restored.names, IsEmpty());
    ASSERT_THAT(restored.missing, SizeIs(1));
    EXPECT_EQ(restored.missing[0].code(), ErrorCode::NotFound);
    for (const TrashedGroup& group : {sub, file}) {
        EXPECT_EQ(errorOf([&] { restoreGroup(library, group, trash); }), ErrorCode::NotFound);
    }
    for (const std::filesystem::path& place : places) {
        EXPECT_TRUE(disk.exists(place)) << place << " was somebody else's";
    }
}

// A picture may be replaced by another one that is to have its name; what is no picture may not.
// Nor does its record take the place of anything but a record.
TEST_F(PicturePassage, AStorageOfAnotherProgramIsNeverReplaced) {
    {
        compound::CompoundFile raw = openRaw(u"Pumps");
        raw.root().openStorage(u"Pumps").createStorage(u"Box").createStream(u"x");
        raw.root().openStorage(u"PumpsInfo").createStorage(u"Lid").createStream(u"x");
        raw.commit();
    }
    const auto file = fileOf("box.bmp", "PIC15 15");
    for (const char16_t* name : {u"box", u"lid"}) {
        const std::vector<std::filesystem::path> files{
            fileOf(base::toUtf8(name) + ".bmp", "PIC15 15")};
        EXPECT_EQ(errorOf([&] { addPicture(library, pumps_, {name}, file); }), ErrorCode::Exists);
        {
            PictureBatch batch(library, pumps_);
            EXPECT_EQ(errorOf([&] { batch.add({name}, file, IfPictureExists::Replace); }),
                      ErrorCode::Exists);
            batch.add({u"c"}, file, IfPictureExists::Replace);
            batch.commit();
        }
        EXPECT_EQ(errorOf([&] { renamePicture(library, pumps_, {u"c"}, {name}); }),
                  ErrorCode::Exists);
        EXPECT_THAT(addFiles(library, pumps_, files, IfPictureExists::Replace).skipped, SizeIs(1));
        addArriving(library, pumps_,
                    std::vector<ArrivingPicture>{{file, {name}, IfNameTaken::Replace}});
        passPictures(library, tanks_, pumps_,
                     std::vector<PassingPicture>{{{u"A"}, IfNameTaken::Replace, {name}}},
                     PassageKind::Copy);
    }
    EXPECT_THAT(pictureNames(pumps_),
                ElementsAre("a", "b", "c", "box (2)", "box (3)", "lid (2)", "lid (3)"));
    {
        compound::CompoundFile raw = openRaw(u"Pumps");
        raw.root().openStorage(u"Pumps").createStream(u"lid"); // whose record this program lacks
        raw.commit();
    }
    deletePicture(library, pumps_, {u"lid"});
    EXPECT_TRUE(openRaw(u"Pumps").root().openStorage(u"Pumps").openStorage(u"Box").find(u"x"));
    EXPECT_TRUE(openRaw(u"Pumps").root().openStorage(u"PumpsInfo").openStorage(u"Lid").find(u"x"));
    expectSound(u"Pumps");
}

} // namespace
} // namespace store::testing
