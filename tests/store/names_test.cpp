#include "base/utf8.h"
#include "store/names.h"
#include "store/picture_record.h"
#include "store/text_codec.h"

#include <gtest/gtest.h>

namespace store {
namespace {

TEST(Address, KeysSplitAtTheirFirstSlash) {
    EXPECT_EQ(addressOf(u"Sub2/Pumps"), (GroupAddress{{u"Pumps"}, {u"Sub2"}}));
    EXPECT_EQ(addressOf(u"a/b/c"), (GroupAddress{{u"b/c"}, {u"a"}}));
    EXPECT_EQ(addressOf(u"Plant"), topLevelAddress(u"Plant"));
    EXPECT_EQ(keyOf(addressOf(u"Sub2/Pumps")), u"Sub2/Pumps");
}

TEST(Address, AnyFileNameSurvivesTheRoundTrip) {
    const std::string names[] = {"plain",
                                 "B\xC3\xA4r",
                                 "\xF0\x9F\x8F\xAD plant",
                                 "odd \xFF\xC3",
                                 "\xED\xA0\x80 half",
                                 "\xC0\x80 overlong",
                                 "cut \xF0\x9F\x8F",
                                 "past \xF4\x90\x80\x80"};
    for (const std::string& name : names) {
        EXPECT_EQ(base::toUtf8(base::fromUtf8(name)), name);
    }
    EXPECT_EQ(base::fromUtf8("B\xC3\xA4r"), u"B\u00E4r");
    EXPECT_EQ(base::fromUtf8("\xF0\x9F\x8F\xAD"), u"\U0001F3ED");
    EXPECT_EQ(base::toPath(u"B\u00E4r").string(), "B\xC3\xA4r");
}

TEST(Names, GroupNamesGoOnEverySystem) {
    for (const char16_t* name : {u"Pumpen", u"Beh\u00E4lter & Tanks", u"\u20ACuro", u"Sub1",
                                 u"Information", u"com", u"COM10", u"(2)", u"'quoted'"}) {
        EXPECT_TRUE(isValidGroupName(name, GroupLevel::TopLevel)) << base::toUtf8(name);
        EXPECT_TRUE(isValidGroupName(name, GroupLevel::SubGroup)) << base::toUtf8(name);
    }
    for (const char16_t* name : {u"", u"a/b", u"a\\b", u"a:b", u"a!b", u"a?b", u"a*b", u"a<b",
                                 u"a|b", u"a\"b", u"V1.2", u" blank", u"blank ", u"con", u"Lpt1",
                                 u"COM\u00B2", u"tab\t", u"\u7F16\u53F7", u"half\xD83D"}) {
        EXPECT_FALSE(isValidGroupName(name, GroupLevel::TopLevel)) << base::toUtf8(name);
        EXPECT_FALSE(isValidGroupName(name, GroupLevel::SubGroup)) << base::toUtf8(name);
    }
    EXPECT_FALSE(isValidGroupName(u"nOnE", GroupLevel::TopLevel));
    EXPECT_TRUE(isValidGroupName(u"None", GroupLevel::SubGroup));
    EXPECT_TRUE(isValidGroupName(std::u16string(27, u'x'), GroupLevel::TopLevel));
    EXPECT_FALSE(isValidGroupName(std::u16string(28, u'x'), GroupLevel::TopLevel));
    EXPECT_TRUE(isValidGroupName(std::u16string(31, u'x'), GroupLevel::SubGroup));
    EXPECT_FALSE(isValidGroupName(std::u16string(32, u'x'), GroupLevel::SubGroup));
}

TEST(Names, PictureNamesAreFreer) {
    EXPECT_TRUE(isValidPictureName(u"pump.v2 \u7F16\u53F7?"));
    EXPECT_TRUE(isValidPictureName(u"\U0001F3ED"));
    EXPECT_FALSE(isValidPictureName(u"half\xD83D"));
    EXPECT_FALSE(isValidPictureName(u"pArEnT"));
    // Every folder holds these two.
    EXPECT_FALSE(isValidPictureName(u"."));
    EXPECT_FALSE(isValidPictureName(u".."));
    EXPECT_TRUE(isValidPictureName(u"..."));
    EXPECT_TRUE(isValidPictureName(u".hidden"));
}

TEST(Names, ListingsIgnoreCase) {
    EXPECT_TRUE(listsBefore(u"alpha", u"Beta"));
    EXPECT_TRUE(listsBefore(u"Beta", u"charlie"));
    EXPECT_TRUE(listsBefore(u"A", u"a"));
    EXPECT_FALSE(listsBefore(u"a", u"a"));
    EXPECT_TRUE(sameName(u"B\u00C4R", u"b\u00E4r"));
}

TEST(TextCodec, TheWholeCodePageSurvives) {
    std::vector<std::byte> bytes;
    for (int value = 1; value < 256; ++value) {
        bytes.push_back(static_cast<std::byte>(value));
    }
    EXPECT_EQ(encodeText(decodeText(bytes)), bytes);
    EXPECT_EQ(decodeText(std::as_bytes(std::span("ab\0cd"))), u"ab");
    EXPECT_EQ(decodeText(std::as_bytes(std::span("\x80\xE4"))), u"\u20AC\u00E4");
    EXPECT_FALSE(encodeText(u"\u7F16").has_value());
}

TEST(PictureRecord, WritesShortestNumbers) {
    EXPECT_EQ(formatRecord(recordOf({480, 480}, "ICO"), u'.'), "h32w32tICO");
    EXPECT_EQ(formatRecord(recordOf({472.5, 960}, "BMP"), u'.'), "h31.5w64tBMP");
    EXPECT_EQ(formatRecord(recordOf({472.5, 960}, "BMP"), u','), "h31,5w64tBMP");
    const std::string persian = formatRecord(recordOf({472.5, 960}, "BMP"), u'\u066B');
    EXPECT_EQ(parseRecord(persian).height, 31.5F) << persian;
    EXPECT_EQ(numberText(1000000, u'.'), "1000000");
    EXPECT_EQ(numberText(30000000, u'.'), "30000000");
    EXPECT_EQ(numberText(1.0F / 3, u','), "0,3333333");
    EXPECT_EQ(numberText(0, u'.'), "0");
}

TEST(PictureRecord, ReadsStrictlyWithEitherSeparator) {
    const PictureRecord record = parseRecord("h48,5w64.25tGIF");
    EXPECT_EQ(record.height, 48.5F);
    EXPECT_EQ(record.width, 64.25F);
    EXPECT_EQ(record.type, "GIF");
    for (const char* text :
         {"", "h", "h1w2", "h1w2t", "h1w2tXYZ", "h1w2tgif", "h1w2tGIF ", "h1t2wGIF"}) {
        EXPECT_EQ(parseRecord(text).type, "") << text;
        EXPECT_EQ(parseRecord(text).height, 0) << text;
    }
}

// The type decides which window opens and how a copy's name ends.
TEST(PictureRecord, KeepsTheTypeBesideAGarbledSize) {
    for (const char* text : {"w2h1tGIF", "hwtGIF", "h-1w2tGIF", "hnanw1tGIF", "h1e99w1tGIF",
                             "h 1w2tGIF", "h1w2.3.4tGIF", "2w1tGIF"}) {
        const PictureRecord record = parseRecord(text);
        EXPECT_EQ(record.type, "GIF") << text;
        EXPECT_EQ(record.height, 0) << text;
        EXPECT_EQ(record.width, 0) << text;
    }
}

TEST(PictureRecord, TheTypeCodeComesFromTheLastThreeCharacters) {
    EXPECT_EQ(typeCodeOf(u"logo.Gif"), "GIF");
    EXPECT_EQ(typeCodeOf(u"scan.tiff"), "JPG");
    EXPECT_EQ(typeCodeOf(u"x.jpeg"), "JPG");
    EXPECT_EQ(typeCodeOf(u"picture.eMf"), "EMF");
    EXPECT_EQ(typeCodeOf(u"ab"), "JPG");
    EXPECT_EQ(typeCodeOf(u""), "JPG");
    EXPECT_EQ(typeCodeOf(u"cur"), "CUR");
}

} // namespace
} // namespace store
