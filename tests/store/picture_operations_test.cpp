#include "base/utf8.h"
#include "compound/error.h"
#include "compound/raw_file.h"
#include "store/library_count.h"
#include "store/picture_trash.h"
#include "store/pictures_from_files.h"
#include "store/store_fixture.h"

#include <gmock/gmock.h>

namespace store::testing {
namespace {

using compound::ErrorCode;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PictureTest : public StoreTest {
  protected:
    std::string rawRecord(std::u16string_view name) {
        compound::CompoundFile raw = openRaw(u"Plant");
        const auto bytes = raw.root().openStorage(u"Sub1Info").openStream(name).readAll();
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    void destroyRaw(std::u16string_view storage, std::u16string_view name) {
        compound::CompoundFile raw = openRaw(u"Plant");
        raw.root().openStorage(storage).destroy(name);
        raw.commit();
    }

    GroupAddress plant = topGroup(u"Plant");
    GroupAddress group = subGroup(plant, u"Pumps");
};

TEST_F(PictureTest, APictureIsItsBytesAndARecord) {
    addPicture(library, group, {u"icon"}, source("pump.ico", 480, 480));
    addPicture(library, group, {u"scan"}, source("scan.tiff", 472, 960));
    library.decimalSeparator = u',';
    addPicture(library, group, {u"logo"}, source("logo.Gif", 472, 960, std::string(9000, 'g')));
    EXPECT_EQ(rawRecord(u"icon"), "h32w32tICO");
    EXPECT_EQ(rawRecord(u"scan"), "h31.46667w64tJPG");
    EXPECT_EQ(rawRecord(u"logo"), "h31,46667w64tGIF");
    EXPECT_EQ(bytesOf(group, u"LOGO"), "PIC472 960 " + std::string(9000, 'g'));

    const std::vector<PictureEntry> pictures = listPictures(library, group);
    ASSERT_EQ(pictures.size(), 3U);
    EXPECT_FLOAT_EQ(pictures[1].record.height, 31.46667F); // icon, logo, scan
    EXPECT_EQ(pictures[1].record.width, 64);
    EXPECT_EQ(pictures[1].record.type, "GIF");
    EXPECT_EQ(pictures[1].bytes, 9011U);
    EXPECT_EQ(readPictureType(library, group, {u"ICON"}), "ICO");
    EXPECT_EQ(readGroupSize(library, group).pictures, 3U);
    expectSound(u"Plant");
}

// Only damage may cost a picture its record; a disk that fails must be told of.
TEST_F(PictureTest, AReadThatFailsHidesNothing) {
    add(group, u"drain");
    add(group, u"pump", std::string(9000, 'p'));
    const auto readAll = [&] {
        const Library fresh{disk, library.folder, measureText, u'.', std::chrono::milliseconds{0}};
        std::string all;
        for (const PictureEntry& entry : listPictures(fresh, group)) {
            const StoredPicture picture = readPicture(fresh, group, entry.name);
            all += entry.record.type + picture.record.type + std::to_string(entry.bytes) + " " +
                   std::to_string(picture.bytes.size()) + "\n";
        }
        return all;
    };
    const std::string whole = readAll();
    ASSERT_EQ(whole, "BMPBMP9011 9011\nBMPBMP11 11\n");
    int calls = 0;
    int failing = 0;
    disk.setInterceptor([&](MemoryDisk::Call) {
        if (calls++ == failing) {
            throw compound::Error(ErrorCode::Failed, "/library/Plant.stg", "told to fail");
        }
    });
    int failures = 0;
    for (; calls = 0, failing < 1000; ++failing) {
        try {
            const std::string read = readAll();
            if (calls <= failing) {
                break; // it makes fewer calls
            }
            EXPECT_EQ(read, whole) << "call " << failing;
        } catch (const compound::Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::Failed) << "call " << failing;
            ++failures;
        }
    }
    disk.setInterceptor({});
    EXPECT_GT(failures, 8);
}

TEST_F(PictureTest, APicturesPlaceCountsElementsAndNamesThePictureBesideIt) {
    EXPECT_FALSE(placeOfPicture(library, group, {u"a"}));
    for (const char16_t* name : {u"a", u"Logo", u"Pumps"}) { // `Name` stands behind Logo
        add(group, name);
    }
    const auto expectPlace = [&](const char16_t* name, std::size_t element,
                                 const char16_t* beside) {
        const auto place = placeOfPicture(library, group, {name});
        ASSERT_TRUE(place);
        EXPECT_EQ(place->element, element);
        EXPECT_EQ(place->beside, PictureName{beside});
        EXPECT_THAT(listPictureNames(library, group).elements, ::testing::Contains(element));
    };
    expectPlace(u"A", 0, u"Logo");
    expectPlace(u"Logo", 1, u"Pumps");
    expectPlace(u"PUMPS", 3, u"Logo");
    EXPECT_FALSE(placeOfPicture(library, group, {u"name"}));
    deletePicture(library, group, {u"Logo"});
    deletePicture(library, group, {u"a"});
    EXPECT_FALSE(placeOfPicture(library, group, {u"Pumps"})->beside);
}

TEST_F(PictureTest, AddingUnderAnExistingNameReplacesBytesAndRecord) {
    add(group, u"Logo", "first");
    addPicture(library, group, {u"LOGO"}, source("second.gif", 15, 30));
    EXPECT_THAT(pictureNames(group), ElementsAre("LOGO"));
    EXPECT_EQ(rawRecord(u"logo"), "h1w2tGIF");
    EXPECT_EQ(errorOf([&] {
                  addPicture(library, group, {u"logo"}, source("x.bmp", 1, 1),
                             IfPictureExists::Refuse);
              }),
              ErrorCode::Exists);
    EXPECT_TRUE(pictureExists(library, group, {u"lOgO"}));
    EXPECT_FALSE(pictureExists(library, group, {u"other"}));
    EXPECT_TRUE(pictureExists(library, group, {u"name"}));
    EXPECT_TRUE(pictureExists(library, group, {u"Parent"}));
}

TEST_F(PictureTest, AFailedAddLeavesTheOldPicture) {
    add(group, u"logo", "kept");
    const auto tryAdd = [&](std::u16string_view name, const std::filesystem::path& file) {
        return errorOf([&] { addPicture(library, group, {std::u16string(name)}, file); });
    };
    EXPECT_EQ(tryAdd(u"logo", "/sources/missing.bmp"), ErrorCode::NotFound);
    EXPECT_EQ(tryAdd(u"logo", fileOf("broken.bmp", "nothing")), ErrorCode::InvalidPicture);
    EXPECT_EQ(tryAdd(u"Name", source("a.bmp", 1, 1)), ErrorCode::InvalidName);
    EXPECT_EQ(tryAdd(u"PARENT", source("a.bmp", 1, 1)), ErrorCode::InvalidName);
    EXPECT_EQ(tryAdd(u"a/b", source("a.bmp", 1, 1)), ErrorCode::InvalidName);
    disk.create("/sources/huge.bmp")->truncate(kMaximumPictureBytes + 1);
    EXPECT_EQ(tryAdd(u"logo", "/sources/huge.bmp"), ErrorCode::TooLarge);
    EXPECT_EQ(bytesOf(group, u"logo"), "PIC480 480 kept");
    EXPECT_EQ(readGroupName(library, group).text, u"Pumps");
    EXPECT_EQ(errorOf([&] {
                  addPicture(library, addressOf(u"Sub9/Plant"), {u"a"}, source("a.bmp", 1, 1));
              }),
              ErrorCode::NotFound);
}

TEST_F(PictureTest, TestingANameChangesNothing) {
    add(group, u"logo", "kept");
    const auto bytes = disk.content("/library/Plant.stg");
    EXPECT_TRUE(testPictureName(library, group, {u"logo"}));
    EXPECT_TRUE(testPictureName(library, group, {u"new"}));
    EXPECT_TRUE(testPictureName(library, group, {std::u16string(31, u'x')}));
    for (const char16_t* name : {u"", u"NAME", u"parent", u"a:b", u"a\\b", u"a!b", u"a\tb"}) {
        EXPECT_FALSE(testPictureName(library, group, {name})) << base::toUtf8(name);
    }
    EXPECT_FALSE(testPictureName(library, group, {std::u16string(32, u'x')}));
    EXPECT_FALSE(testPictureName(library, addressOf(u"Sub9/Plant"), {u"new"}));
    EXPECT_EQ(disk.content("/library/Plant.stg"), bytes);
}

TEST_F(PictureTest, AStreamTooLargeForAPictureIsNotRead) {
    add(group, u"small");
    {
        compound::CompoundFile raw = openRaw(u"Plant");
        compound::Stream huge = raw.root().openStorage(u"Sub1").createStream(u"huge");
        const std::vector<std::byte> zeros(std::size_t{8} << 20U);
        while (huge.size() <= kMaximumPictureBytes) {
            huge.append(zeros);
        }
        raw.commit();
    }
    EXPECT_EQ(errorOf([&] { readPicture(library, group, {u"huge"}); }), ErrorCode::TooLarge);
    std::vector<std::size_t> sizes;
    walkPictures(library, group, 0, [&](const StoredPicture& picture) {
        sizes.push_back(picture.bytes.size());
        return TakePicture::Continue;
    });
    EXPECT_THAT(sizes, ElementsAre(0U, std::string("PIC480 480 ").size()));
}

TEST_F(PictureTest, FindingTellsTheStoredSpelling) {
    add(group, u"Logo");
    EXPECT_EQ(findPicture(library, group, {u"LOGO"}), PictureName{u"Logo"});
    EXPECT_EQ(findPicture(library, group, {u"Log"}), std::nullopt);
    EXPECT_EQ(findPicture(library, group, {u""}), std::nullopt);
    EXPECT_EQ(findPicture(library, group, {u"name"}), std::nullopt); // the group's own
    EXPECT_EQ(findPicture(library, plant, {u"Sub1"}), std::nullopt); // a storage
}

TEST_F(PictureTest, CountingSkipsWhatCannotBeRead) {
    add(plant, u"a");
    add(group, u"a");
    add(group, u"b");
    destroyRaw(u"Sub1Info", u"b");
    topGroup(u"Empty");
    disk.setContent("/library/Broken.stg", {});
    const auto count = [&] { return countLibrary(library, LockBudget{library.lockWait}); };
    EXPECT_EQ(count().groupFiles, 2U);
    EXPECT_EQ(count().elements, 5U);
    const auto held = disk.open("/library/Plant.stg", compound::Access::Read);
    ASSERT_TRUE(held->lock(library.lockWait));
    EXPECT_EQ(count().groupFiles, 1U);
    EXPECT_EQ(count().elements, 0U);
}

TEST_F(PictureTest, RenamingMovesStreamAndRecord) {
    addPicture(library, group, {u"Logo"}, source("a.gif", 15, 30, "logo"));
    add(group, u"Other", "other");
    EXPECT_EQ(errorOf([&] { renamePicture(library, group, {u"Logo"}, {u"OTHER"}); }),
              ErrorCode::Exists);
    EXPECT_EQ(errorOf([&] { renamePicture(library, group, {u"Logo"}, {u"Name"}); }),
              ErrorCode::InvalidName);
    EXPECT_EQ(errorOf([&] { renamePicture(library, group, {u"Name"}, {u"free"}); }),
              ErrorCode::NotFound);
    EXPECT_EQ(errorOf([&] { renamePicture(library, group, {u"gone"}, {u"free"}); }),
              ErrorCode::NotFound);
    renamePicture(library, group, {u"logo"}, {u"LOGO"});
    renamePicture(library, group, {u"LOGO"}, {u"A much longer name"});
    EXPECT_THAT(pictureNames(group), ElementsAre("Other", "A much longer name"));
    EXPECT_EQ(rawRecord(u"A much longer name"), "h1w2tGIF");
    EXPECT_EQ(bytesOf(group, u"A much longer name"), "PIC15 30 logo");
    expectSound(u"Plant");
}

TEST_F(PictureTest, APictureWithoutARecordIsStillAPicture) {
    add(group, u"orphan", "bytes");
    add(group, u"second");
    destroyRaw(u"Sub1Info", u"orphan");
    destroyRaw(u"Sub1", u"second"); // leaves a record without a picture
    EXPECT_EQ(listPictures(library, group).front().record.type, "");
    renamePicture(library, group, {u"orphan"}, {u"second"});
    EXPECT_EQ(listPictures(library, group).front().record.type, "") << "a stranger's record";
}

// The record is a note on the picture: whatever has become of it, the bytes can be had.
TEST_F(PictureTest, ADamagedRecordDoesNotHideThePicture) {
    add(group, u"a", "first");
    add(group, u"b", "second");
    add(group, u"c", "third");
    const auto expectAllRead = [&] {
        EXPECT_THAT(pictureNames(group), ElementsAre("a", "b", "c"));
        EXPECT_EQ(bytesOf(group, u"b"), "PIC480 480 second");
        EXPECT_EQ(readPictureType(library, group, {u"b"}), "");
        std::vector<std::string> types;
        walkPictures(library, group, 0, [&](const StoredPicture& picture) {
            types.push_back(picture.bytes.empty() ? "lost" : picture.record.type);
            return TakePicture::Continue;
        });
        EXPECT_THAT(types, ElementsAre("BMP", "", "BMP"));
        EXPECT_EQ(listPictures(library, group).back().record.type, "BMP");
    };
    {
        compound::CompoundFile raw = openRaw(u"Plant");
        raw.root().openStorage(u"Sub1Info").createStorage(u"b", compound::IfExists::Replace);
        raw.commit();
    }
    expectAllRead();

    destroyRaw(u"Sub1Info", u"b");
    add(group, u"b", "second");
    const compound::EntryId record =
        openRaw(u"Plant").root().openStorage(u"Sub1Info").find(u"b")->id;
    compound_tests::RawFile raw(disk.content("/library/Plant.stg"));
    raw.put(raw.entry(record) + compound::format::entry::kStartAt, 0x00FFFFFF);
    disk.setContent("/library/Plant.stg", raw.bytes());
    expectAllRead();
}

// A record that is left behind would be taken for that of the next picture of the name.
TEST_F(PictureTest, DeletingTakesTheRecordWithIt) {
    for (const char16_t* name : {u"one", u"Two", u"three"}) {
        add(group, name);
    }
    deletePicture(library, group, {u"one"});
    deletePicture(library, group, {u"TWO"});
    compound::CompoundFile raw = openRaw(u"Plant");
    for (const char16_t* name : {u"Sub1", u"Sub1Info"}) {
        const compound::Storage storage = raw.root().openStorage(name);
        EXPECT_FALSE(storage.find(u"one"));
        EXPECT_FALSE(storage.find(u"Two"));
        EXPECT_TRUE(storage.find(u"three"));
    }
}

TEST_F(PictureTest, DeletingToleratesMissingRecordsAndStorages) {
    add(group, u"one");
    add(group, u"two");
    destroyRaw(u"Sub1Info", u"one");
    deletePicture(library, group, {u"one"});
    {
        compound::CompoundFile raw = openRaw(u"Plant");
        raw.root().destroy(u"Sub1Info");
        raw.commit();
    }
    EXPECT_EQ(listPictures(library, group).size(), 1U);
    EXPECT_EQ(readPicture(library, group, {u"two"}).record.type, "");
    deletePicture(library, group, {u""});
    EXPECT_THAT(pictureNames(group), ElementsAre("two"));
    deletePicture(library, group, {u"TWO"});
    EXPECT_THAT(pictureNames(group), IsEmpty());
    EXPECT_EQ(errorOf([&] { deletePicture(library, group, {u"Name"}); }), ErrorCode::NotFound);
    add(group, u"three"); // makes the info storage anew
    EXPECT_EQ(rawRecord(u"three"), "h32w32tBMP");
}

TEST_F(PictureTest, ABatchIsAllOrNothing) {
    {
        PictureBatch batch(library, group);
        batch.add({u"one"}, source("a.bmp", 15, 15), IfPictureExists::Refuse);
        EXPECT_EQ(errorOf([&] { add(group, u"elsewhere"); }), ErrorCode::Locked);
    }
    EXPECT_THAT(pictureNames(group), IsEmpty());
    {
        PictureBatch batch(library, group);
        batch.add({u"one"}, source("a.bmp", 15, 15), IfPictureExists::Refuse);
        const auto broken = fileOf("broken.bmp", "nothing");
        EXPECT_EQ(errorOf([&] { batch.add({u"two"}, broken, IfPictureExists::Refuse); }),
                  ErrorCode::InvalidPicture);
        const auto other = source("b.bmp", 1, 1);
        EXPECT_EQ(errorOf([&] { batch.add({u"ONE"}, other, IfPictureExists::Refuse); }),
                  ErrorCode::Exists);
        batch.add({u"three"}, source("c.bmp", 15, 15), IfPictureExists::Refuse);
        batch.commit();
    }
    EXPECT_THAT(pictureNames(group), ElementsAre("one", "three"));
}

TEST_F(PictureTest, ABatchOnAFullDiskKeepsWhatFits) {
    const auto large = source("large.bmp", 15, 15, std::string(200000, 'l'));
    const auto small = source("small.bmp", 15, 15, std::string(500, 's'));
    add(group, u"old", "old");
    disk.setCapacity(disk.placed() + 150000);
    {
        PictureBatch batch(library, group);
        batch.add({u"one"}, small, IfPictureExists::Refuse);
        for (const auto* name : {u"two", u"old"}) {
            EXPECT_EQ(errorOf([&] { batch.add({name}, large, IfPictureExists::Replace); }),
                      ErrorCode::NoSpace);
        }
        batch.add({u"three"}, small, IfPictureExists::Refuse);
        batch.commit();
    }
    EXPECT_THAT(pictureNames(group), ElementsAre("old", "one", "three"));
    EXPECT_NE(bytesOf(group, u"old").find("old"), std::string::npos);
    expectSound(u"Plant");
}

// Old places cannot be used before the commit; whatever changes many pictures gives them back.
TEST_F(PictureTest, ManyThatAreReplacedOrRemovedLeaveLittleFree) {
    constexpr int kPictures = 40;
    const GroupAddress below = subGroup(plant, u"Valves");
    const auto nameOfPicture = [](int number) {
        return PictureName{u"part " + base::fromUtf8(std::to_string(number))};
    };
    const auto putAll = [&](const GroupAddress& into, std::size_t bytes) {
        const auto file = source("part.bmp", 480, 480, std::string(bytes, 'p'));
        PictureBatch batch(library, into);
        for (int i = 0; i < kPictures; ++i) {
            batch.add(nameOfPicture(i), file, IfPictureExists::Replace);
        }
        batch.commit();
    };
    const auto sizeOfFile = [&] { return disk.content("/library/Plant.stg").size(); };
    putAll(group, 15000);
    const std::size_t whole = sizeOfFile();
    const std::size_t much = whole / 4;
    putAll(group, 16000);
    EXPECT_LT(sizeOfFile(), whole + much);
    std::vector<std::filesystem::path> files;
    for (int i = 0; i < kPictures; ++i) {
        const std::string name = "part " + std::to_string(i) + ".bmp";
        files.push_back(source(name, 480, 480, std::string(15500, 'q')));
    }
    addFiles(library, group, files, IfPictureExists::Replace);
    EXPECT_LT(sizeOfFile(), whole + much);
    putAll(below, 15000); // at the file's end
    std::vector<PictureName> most;
    most.reserve(kPictures);
    for (int i = 0; i < kPictures - 4; ++i) {
        most.push_back(nameOfPicture(i));
    }
    deletePictures(library, group, most, nullptr);
    EXPECT_LT(sizeOfFile(), whole + much);
    putAll(group, 15000);
    deleteGroup(library, below);
    EXPECT_LT(sizeOfFile(), whole + much);
    EXPECT_EQ(bytesOf(group, u"part 39").size(), 15011U);
    expectSound(u"Plant");
}

TEST_F(PictureTest, PagesAreCutByElementIndex) {
    for (const char16_t* name : {u"a", u"b", u"longer name", u"longest name"}) {
        add(group, name, base::toUtf8(name));
    }
    // a, b, Name, Parent, longer name, longest name
    EXPECT_THAT(listPictureNames(library, group).elements, ElementsAre(0U, 1U, 4U, 5U));
    const auto page = [&](std::size_t start, std::size_t most) {
        std::vector<std::string> names;
        walkPictures(library, group, start, [&](const StoredPicture& picture) {
            names.push_back(base::toUtf8(picture.name.text));
            return names.size() == most ? TakePicture::Stop : TakePicture::Continue;
        });
        return names;
    };
    EXPECT_THAT(page(0, 3), ElementsAre("a", "b", "longer name"));
    EXPECT_THAT(page(3, 3), ElementsAre("longer name", "longest name"));
    EXPECT_THAT(page(6, 3), IsEmpty());
}

TEST_F(PictureTest, ExportReplacesTheEarlierCopy) {
    disk.makeFolder("/temporary");
    addPicture(library, group, {u"long"}, source("photo.jpeg", 15, 15, std::string(100, 'x')));
    addPicture(library, group, {u"short"}, source("photo.jpeg", 15, 15));
    exportPicture(library, group, {u"long"}, "/temporary", "CopiedPicture");
    const auto path = exportPicture(library, group, {u"short"}, "/temporary", "CopiedPicture");
    EXPECT_EQ(path, "/temporary/CopiedPicture.JPG");
    EXPECT_EQ(disk.content(path).size(), std::string("PIC15 15 ").size());
}

TEST_F(PictureTest, AnExportThatFailsLeavesNoHalfCopy) {
    disk.makeFolder("/temporary");
    add(group, u"P", std::string(5000, 'x'));
    disk.setInterceptor([](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Write) {
            throw compound::Error(ErrorCode::NoSpace, "/temporary", "told to fail");
        }
    });
    EXPECT_EQ(errorOf([&] { exportPicture(library, group, {u"P"}, "/temporary", "Copy"); }),
              ErrorCode::NoSpace);
    disk.setInterceptor({});
    EXPECT_THAT(disk.list("/temporary"), IsEmpty());
}

TEST_F(PictureTest, ExportNeverLeavesItsFolder) {
    disk.makeFolder("/temporary");
    add(group, u"P");
    for (const char* base : {"", "/library/A", "../library/A", "..\\A", "C:A"}) {
        EXPECT_EQ(errorOf([&] { exportPicture(library, group, {u"P"}, "/temporary", base); }),
                  ErrorCode::InvalidName)
            << base;
    }
    EXPECT_THAT(disk.list("/temporary"), IsEmpty());
}

} // namespace
} // namespace store::testing
