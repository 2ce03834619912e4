// How names compare, and what is found by them.
#include "compound/file_helpers.h"
#include "compound/names.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace compound_tests {
namespace {

using compound::compareNames;
using compound::CompoundFile;
using compound::Element;
using compound::Storage;

CompoundFile newFile(MemoryDisk& disk) {
    return CompoundFile::create(disk.create("names.stg"));
}

// Letters whose full upper case is longer than one unit have a simple one all the same, but for
// those that have none.
TEST(NamesTest, UpperCaseIsTheSimpleMapping) {
    EXPECT_EQ(compareNames(u"\u1F80", u"\u1F88"), 0);
    EXPECT_EQ(compareNames(u"\u1FB3\u1FF3", u"\u1FBC\u1FFC"), 0);
    EXPECT_NE(compareNames(u"\u00DF", u"\u1E9E"), 0);
    EXPECT_EQ(compareNames(u"\u00FF\u0436", u"\u0178\u0416"), 0);
}

// Wherever they differ: in length, in one unit of many, in a letter behind others of another case,
// in one half of a pair.
TEST(NamesTest, TheDirectoryHasTheSameOrder) {
    std::vector<std::u16string> names{u"abcdEfghZ", u"ABCDefghA", u"\U0001F600a", u"\U0001F601A",
                                      u"\uFB01abc", u"\u00FFbcd", u"\u0178bce"};
    for (const std::size_t length : {1U, 3U, 4U, 5U, 8U, 9U, 31U}) {
        for (std::size_t at = 0; at < length; ++at) {
            for (const char16_t unit : {u'Q', u'\u00E9', u'\u0451', char16_t{0xD83D}}) {
                names.emplace_back(length, u'm').at(at) = unit;
            }
        }
    }
    std::mt19937 random(3);
    std::shuffle(names.begin(), names.end(), random);
    MemoryDisk disk;
    CompoundFile file = newFile(disk);
    for (const std::u16string& name : names) {
        file.root().createStream(name);
    }
    const auto comesBefore = [](const std::u16string& left, const std::u16string& right) {
        return compareNames(left, right) < 0;
    };
    std::sort(names.begin(), names.end(), comesBefore);
    compound::ElementCursor cursor = file.root().elements();
    Element element;
    for (const std::u16string& name : names) {
        ASSERT_TRUE(cursor.next(element));
        EXPECT_EQ(element.name, name);
        std::u16string inCapitals = name;
        std::transform(name.begin(), name.end(), inCapitals.begin(), compound::toUpper);
        EXPECT_EQ(file.root().find(inCapitals).value_or(Element{}).name, name);
    }
}

// The entry beside a companion is the element only when the storage holds it and it has the name.
TEST(NamesTest, NothingIsFoundThatOnlyStandsBesideACompanion) {
    MemoryDisk disk;
    CompoundFile file = newFile(disk);
    Storage pictures = file.root().createStorage(u"pictures");
    Storage records = file.root().createStorage(u"records");
    for (const char16_t* const name : {u"pump", u"valve"}) {
        pictures.createStream(name);
        records.createStream(name);
    }
    const auto record = [&](const char16_t* name, const char16_t* picture) {
        const auto companion = pictures.find(picture);
        return records.find(name, &companion.value()).value_or(Element{}).id;
    };
    const compound::EntryId pump = record(u"PUMP", u"pump");
    EXPECT_EQ(pump, records.find(u"pump")->id);
    EXPECT_EQ(record(u"pump", u"valve"), pump);
    EXPECT_EQ(record(u"tank", u"pump"), 0U);

    pictures.createStream(u"tank"); // beside a record, which is no picture
    const auto valve = records.find(u"valve");
    EXPECT_EQ(pictures.find(u"tank", &valve.value())->id, pictures.find(u"tank")->id);
    EXPECT_FALSE(records.find(u"tank", &valve.value()));

    records.rename(u"pump", u"tap");
    EXPECT_EQ(record(u"pump", u"pump"), 0U);
    EXPECT_EQ(record(u"tap", u"pump"), pump);
    records.destroy(u"tap");
    EXPECT_EQ(record(u"tap", u"pump"), 0U);
    pictures.createStream(u"tap"); // takes that entry
    EXPECT_EQ(record(u"tap", u"pump"), 0U);
    EXPECT_EQ(record(u"valve", u"valve"), valve->id);
}

} // namespace
} // namespace compound_tests
