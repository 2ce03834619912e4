// Pictures that a library has twice.
#include "store/same_pictures.h"
#include "store/store_fixture.h"

namespace store::testing {
namespace {

class SamePicturesTest : public StoreTest {
  protected:
    // "A = B C" for each picture that others have the bytes of, by their names.
    std::vector<std::string> sameOf(const std::vector<PictureAddress>& pictures) {
        std::vector<std::string> lines;
        unread.clear();
        for (const SamePictures& same :
             findSamePictures(library, pictures, noProgress(),
                              [&](const auto& error) { unread.emplace_back(error.what()); })) {
            std::string line = nameOf(same.picture) + " =";
            for (const PictureAddress& other : same.others) {
                line += " " + nameOf(other);
            }
            lines.push_back(line);
        }
        return lines;
    }

    static std::string nameOf(const PictureAddress& picture) {
        return {picture.name.text.begin(), picture.name.text.end()};
    }

    std::vector<std::string> unread;
};

TEST_F(SamePicturesTest, AreFoundInAllGroupsOfAllFilesByTheirBytesAlone) {
    const GroupAddress pumps = topGroup(u"Pumps");
    const GroupAddress rotary = subGroup(pumps, u"Rotary");
    const GroupAddress valves = topGroup(u"Valves");
    add(pumps, u"a", "one");
    add(pumps, u"b", "two"); // as large as the others, and another picture
    add(rotary, u"c", "one");
    add(valves, u"d", "one");
    add(valves, u"e", "longer");
    EXPECT_EQ(sameOf(allPictures(library)),
              (std::vector<std::string>{"a = c d", "c = a d", "d = a c"}));
    EXPECT_EQ(sameOf({{valves, {u"D"}}, {valves, {u"e"}}, {valves, {u"gone"}}}),
              std::vector<std::string>{"D = a c"})
        << "a name's case counts no more than elsewhere";
}

TEST_F(SamePicturesTest, OfFilesThatCannotBeReadAreToldAndDoNotHideTheOthers) {
    const GroupAddress pumps = topGroup(u"Pumps");
    add(pumps, u"a", "one");
    add(pumps, u"b", "one");
    const auto broken = disk.create(library.folder / "Broken.stg");
    broken->write(0, std::vector<std::byte>(600));
    EXPECT_EQ(sameOf({{pumps, {u"a"}}}), std::vector<std::string>{"a = b"});
    ASSERT_EQ(unread.size(), 1U) << "an incomplete search must not look like a complete one";
    EXPECT_NE(unread[0].find("Broken.stg"), std::string::npos);
}

} // namespace
} // namespace store::testing
