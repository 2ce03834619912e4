#include "metafile/metafile_bytes.h"
#include "metafile/text/character_sets.h"
#include "metafile/text/fonts.h"
#include "metafile/text/glyph_source.h"
#include "metafile/text/symbol_fonts.h"

#include <QFontDatabase>

#include <array>
#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>
#include <thread>

namespace metafile::testing {
namespace {

constexpr std::uint8_t kShiftJis = 128;
constexpr std::uint8_t kRussian = 204;

std::uint32_t codeOf(char32_t character) {
    return character;
}

DecodedText decoded(std::initializer_list<int> bytes, std::uint8_t characterSet) {
    std::vector<std::byte> data;
    for (const int byte : bytes) {
        data.push_back(std::byte(byte));
    }
    return textOf(data, characterSet);
}

TEST(CharacterSets, UnitsOfDoubleByteTextKnowTheirBytes) {
    // Latin, hiragana, half-width katakana, kanji whose second byte is a backslash.
    const DecodedText text = decoded({'A', 0x82, 0xA0, 0xB1, 0x95, 0x5C, 'z'}, kShiftJis);
    EXPECT_EQ(text.text, QString::fromUtf16(u"A\u3042\uFF71\u8868z"));
    EXPECT_EQ(text.byteOfUnit, (std::vector{0, 1, 3, 4, 6}));
}

TEST(CharacterSets, BrokenDoubleByteTextLosesNothing) {
    EXPECT_EQ(decoded({'A', 0x82}, kShiftJis).text, QString::fromUtf16(u"A\u201A")) << "cut short";
    const DecodedText text = decoded({0x82, 0x20, 'B', 0x82, 0xA0}, kShiftJis);
    EXPECT_EQ(text.text, QString::fromUtf16(u"\u201A B\u3042")) << "a wrong second byte stays";
    EXPECT_EQ(text.byteOfUnit, (std::vector{0, 1, 2, 3}));
}

TEST(CharacterSets, EveryByteOfEverySetComesOut) {
    std::vector<std::byte> all;
    all.reserve(256);
    for (int byte = 0; byte < 256; ++byte) {
        all.push_back(std::byte(byte));
    }
    for (int set = 0; set < 256; ++set) {
        const DecodedText text = textOf(all, std::uint8_t(set));
        ASSERT_EQ(text.text.size(), qsizetype(text.byteOfUnit.size())) << "set " << set;
        EXPECT_FALSE(text.text.contains(QChar::ReplacementCharacter)) << "set " << set;
        int previous = -1;
        for (const int byte : text.byteOfUnit) {
            ASSERT_TRUE(byte >= previous && byte <= previous + 2) << "set " << set;
            previous = byte;
        }
        EXPECT_GE(previous, 254) << "set " << set;
    }
}

TEST(CharacterSets, SingleByteSetsDifferAboveAscii) {
    EXPECT_EQ(decoded({'C', 0xC4, 0x80}, 0).text, QString::fromUtf16(u"C\u00C4\u20AC"));
    EXPECT_EQ(decoded({'C', 0xC4}, kRussian).text, QString::fromUtf16(u"C\u0414"));
    EXPECT_EQ(decoded({'C', 0xC4}, 161).text, QString::fromUtf16(u"C\u0394"));
    EXPECT_EQ(decoded({'C', 0xC4}, 255).text, QString::fromUtf16(u"C\u2500"));
    EXPECT_EQ(decoded({'C', 0xC4}, 99).text, QString::fromUtf16(u"C\u00C4")) << "unknown set";
    EXPECT_EQ(decoded({'C', 0xC4}, 2).text, QString::fromUtf16(u"\uF043\uF0C4"));
}

TEST(SymbolFonts, NamesAreKnownHoweverTheyAreWritten) {
    for (const char16_t* name : {u"Symbol", u"SYMBOL", u"WingDings", u"wingdings 2", u"Wingdings3",
                                 u"Webdings", u"ZapfDingbats", u"ITC Zapf Dingbats", u"MT Extra"}) {
        EXPECT_TRUE(isSymbolFont(QStringView(name))) << QString::fromUtf16(name).toStdString();
    }
    for (const char16_t* name : {u"", u"Arial", u"Segoe UI Symbol", u"Wingdings 4"}) {
        EXPECT_FALSE(isSymbolFont(QStringView(name))) << QString::fromUtf16(name).toStdString();
    }
    EXPECT_EQ(unicodeOf(u"Arial", 'a'), 0U);
}

TEST(SymbolFonts, CodesComeAsBytesPrivateCharactersOrWindowsText) {
    for (const char32_t code : {char32_t(0x95), char32_t(0xF095), char32_t(0x2022)}) {
        EXPECT_EQ(unicodeOf(u"ZapfDingbats", code), 0U) << "no glyph in any form";
    }
    for (const char32_t code : {char32_t(0x9F), char32_t(0xF09F), char32_t(0x0178)}) {
        EXPECT_EQ(unicodeOf(u"Wingdings", code), char32_t(0x2022)) << codeOf(code);
    }
    for (const char32_t code : {char32_t(0), char32_t(0x1F), char32_t(0xF01F), char32_t(0xF100),
                                char32_t(0x3B1), char32_t(0x10FFFF), char32_t(0xFFFFFFFF)}) {
        EXPECT_EQ(unicodeOf(u"Symbol", code), 0U) << codeOf(code);
    }
}

// One at the end of each table's long rows: a character too many or too few shifts the rest.
TEST(SymbolFonts, TablesStandInTheirPlaces) {
    EXPECT_EQ(unicodeOf(u"Symbol", 'w'), U'ω');
    EXPECT_EQ(unicodeOf(u"Symbol", 0xE5), U'∑');
    EXPECT_EQ(unicodeOf(u"Symbol", 0xFE), U'⎭');
    EXPECT_EQ(unicodeOf(u"Wingdings", 'l'), U'●');
    EXPECT_EQ(unicodeOf(u"Wingdings", 0xA7), U'▪');
    EXPECT_EQ(unicodeOf(u"Wingdings", 0xFC), U'✓');
    EXPECT_EQ(unicodeOf(u"Wingdings 2", 'P'), U'✓');
    EXPECT_EQ(unicodeOf(u"Wingdings 2", 0xF8), U'※');
    EXPECT_EQ(unicodeOf(u"Wingdings 3", 'p'), U'▲');
    EXPECT_EQ(unicodeOf(u"Webdings", 'a'), U'✔');
    EXPECT_EQ(unicodeOf(u"Webdings", 0xD9), U'☁');
    EXPECT_EQ(unicodeOf(u"ZapfDingbats", '4'), U'✔');
    EXPECT_EQ(unicodeOf(u"ZapfDingbats", 0xFE), U'➾');
    EXPECT_EQ(unicodeOf(u"MT Extra", 0xF04C), U'⋯');
    EXPECT_EQ(unicodeOf(u"MT Extra", 'p'), U'≺');
    EXPECT_EQ(unicodeOf(u"MT Extra", 'f'), U'≻');
    EXPECT_EQ(unicodeOf(u"MT Extra", '<'), U'⊲');
    EXPECT_EQ(unicodeOf(u"MT Extra", '>'), U'⊳');
}

FontRequest requestFor(const char16_t* family, std::uint8_t pitchAndFamily = 0) {
    FontRequest request;
    request.family = QString::fromUtf16(family);
    request.pitchAndFamily = pitchAndFamily;
    return request;
}

QString familyFor(const char16_t* family, std::uint8_t pitchAndFamily = 0) {
    return installedFont(requestFor(family, pitchAndFamily)).family();
}

TEST(Fonts, MissingFamiliesGetOnesOfTheSameWidths) {
    if (isInstalled(u"Arial") || isInstalled(u"Times New Roman") || isInstalled(u"Courier New")) {
        GTEST_SKIP() << "the families asked for are installed";
    }
    for (const char16_t* name :
         {u"Arial", u"ARIAL", u"Arial CE", u"@Arial", u" Helv", u"ArialMT", u"Arial Unicode MS"}) {
        EXPECT_EQ(familyFor(name), "Liberation Sans") << QString::fromUtf16(name).toStdString();
    }
    EXPECT_EQ(familyFor(u"Times New Roman Greek"), "Liberation Serif");
    EXPECT_EQ(familyFor(u"Courier New"), "Liberation Mono");
    EXPECT_EQ(familyFor(u"courier", 0x22), "Liberation Mono") << "the name counts first";
    EXPECT_EQ(familyFor(u"liberation mono"), "Liberation Mono") << "installed itself";
    EXPECT_EQ(familyFor(u"Symbol", 0x22), "Liberation Serif");
}

TEST(Fonts, UnknownFamiliesGoByPitchAndClass) {
    EXPECT_EQ(familyFor(u"No Such Font", 0x12), "Liberation Serif");
    EXPECT_EQ(familyFor(u"No Such Font", 0x22), "Liberation Sans");
    EXPECT_EQ(familyFor(u"No Such Font", 0x30), "Liberation Mono");
    EXPECT_EQ(familyFor(u"No Such Font", 0x32), "Liberation Sans") << "modern, but not fixed";
    EXPECT_EQ(familyFor(u"No Such Font", 0x11), "Liberation Mono") << "roman, but fixed";
    EXPECT_EQ(familyFor(u"", 0x00), "Liberation Sans");
    EXPECT_TRUE(isInstalled(familyFor(u"Wingdings")));
    EXPECT_FALSE(isInstalled(u""));
    EXPECT_FALSE(isInstalled(u"No Such Font"));
}

TEST(Fonts, WeightAndSlantComeFromTheRecordOrTheName) {
    FontRequest request = requestFor(u"Times New Roman");
    EXPECT_EQ(installedFont(request).weight(), int(QFont::Normal)) << "0 is no weight";
    request.weight = 700;
    request.slant = Slant::Italic;
    EXPECT_EQ(installedFont(request).weight(), int(QFont::Bold));
    EXPECT_TRUE(installedFont(request).italic());
    for (const int wild : {-5, 100000, 2147483647}) {
        request.weight = wild;
        EXPECT_GE(installedFont(request).weight(), 100);
        EXPECT_LE(installedFont(request).weight(), 900);
    }
    const QFont named = installedFont(requestFor(u"Helvetica-BoldOblique"));
    if (!isInstalled(u"Helvetica-BoldOblique")) {
        EXPECT_EQ(named.weight(), int(QFont::Bold));
        EXPECT_TRUE(named.italic());
    }
}

QFont sans() {
    return QFont("Liberation Sans");
}

TEST(GlyphSource, OutlinesStandOnTheBaseLineInThousandthsOfAnEm) {
    GlyphSource source;
    const Glyph glyph = source.glyph(sans(), U'H');
    const QRectF box = glyph.outline.boundingRect();
    EXPECT_NEAR(box.top(), -688, 2); // 1409 of 2048 units
    EXPECT_NEAR(box.bottom(), 0, 0.5);
    EXPECT_NEAR(glyph.advance, 722.2, 0.5); // 1479 of 2048 units
    EXPECT_EQ(glyph.outline.fillRule(), Qt::WindingFill);
    EXPECT_TRUE(source.glyph(sans(), U' ').outline.isEmpty());
    EXPECT_NEAR(source.glyph(sans(), U' ').advance, 277.8, 0.5);
}

// Fonts belong to the thread that loaded them.
TEST(GlyphSource, ManyThreadsDrawTheSame) {
    EmfFile file(200, 60);
    file.font(1, -30, 0, u"Arial").text(5, 5, u"Typ ✔ ff", {}).font(2, -20, 0, u"Symbol", 2);
    const Bytes bytes = file.text(5, 35, u"abc", {}).bytes();
    const QImage wanted = drawnMetafile(bytes, {200, 60});
    ASSERT_FALSE(inkOf(wanted).isNull());
    std::array<QImage, 4> drawn;
    std::vector<std::thread> threads;
    for (QImage& own : drawn) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5; ++round) {
                own = drawnMetafile(bytes, {200, 60});
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const QImage& own : drawn) {
        EXPECT_EQ(own, wanted);
    }
}

TEST(GlyphSource, SizeAndLinesOfTheFontDoNotMatter) {
    QFont tiny = sans();
    tiny.setPixelSize(3);
    tiny.setHintingPreference(QFont::PreferFullHinting);
    tiny.setUnderline(true);
    QFont huge = sans();
    huge.setPointSizeF(400);
    GlyphSource first;
    GlyphSource second;
    EXPECT_EQ(first.glyph(tiny, U'g').outline, second.glyph(huge, U'g').outline);
    EXPECT_EQ(first.glyph(tiny, U'g').advance, second.glyph(huge, U'g').advance);
}

TEST(GlyphSource, MetricsAreThoseOfTheWindowsFont) {
    GlyphSource source;
    const FontMetrics metrics = source.metrics(sans());
    EXPECT_NEAR(metrics.ascent, 905.3, 0.5);  // Arial: 1854 of 2048 units
    EXPECT_NEAR(metrics.descent, 211.9, 0.5); // 434
    EXPECT_NEAR(metrics.averageWidth, 441.4, 3) << "Arial: 904, not the average of all glyphs";
    EXPECT_NEAR(source.metrics(QFont("Liberation Mono")).averageWidth, 600, 1);
    for (const char* family : {"Liberation Serif", "DejaVu Sans", "DejaVu Sans Mono"}) {
        const FontMetrics other = source.metrics(QFont(family));
        EXPECT_GT(other.underlineCentre, 0) << family;
        EXPECT_LT(other.underlineCentre, other.descent) << family;
        EXPECT_GT(other.strikeOutCentre, 150) << family;
        EXPECT_LT(other.strikeOutCentre, 450) << family;
    }
}

TEST(GlyphSource, CharactersThatTheFontLacksComeFromAnother) {
    GlyphSource source;
    for (const char32_t character : {U'✔', U'⎭', U'➢', U'♋'}) {
        const Glyph glyph = source.glyph(sans(), character);
        EXPECT_TRUE(glyph.isPresent) << codeOf(character);
        EXPECT_FALSE(glyph.outline.isEmpty()) << codeOf(character);
        EXPECT_GT(glyph.advance, 200) << codeOf(character);
    }
    const Glyph missing = source.glyph(sans(), 0x10FFFD);
    EXPECT_FALSE(missing.isPresent);
    EXPECT_FALSE(missing.outline.isEmpty()) << "the empty box";
}

TEST(GlyphSource, InvisibleAndImpossibleCharacters) {
    GlyphSource source;
    for (const char32_t character : {0x0U, 0x9U, 0xDU, 0x90U, 0x200EU, 0xFEFFU}) {
        EXPECT_TRUE(source.glyph(sans(), character).outline.isEmpty()) << codeOf(character);
        EXPECT_EQ(source.glyph(sans(), character).advance, 0) << codeOf(character);
    }
    for (const char32_t character : {0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(source.glyph(sans(), character).outline, source.glyph(sans(), 0xFFFD).outline)
            << codeOf(character);
    }
}

// How far the upper end of an upright letter leans to the right of its lower end.
double leanOf(const QPainterPath& outline) {
    const QRectF box = outline.boundingRect();
    const QRectF half(box.left(), box.top(), box.width(), box.height() / 8);
    QPainterPath top;
    top.addRect(half);
    QPainterPath bottom;
    bottom.addRect(half.translated(0, box.height() * 7 / 8));
    return outline.intersected(top).boundingRect().center().x() -
           outline.intersected(bottom).boundingRect().center().x();
}

TEST(GlyphSource, SlantIsDrawnWhetherTheFontHasItOrNot) {
    GlyphSource source;
    for (const char* family : {"Liberation Sans", "DejaVu Sans Mono", "DejaVu Serif"}) {
        QFont font(family);
        EXPECT_LT(std::abs(leanOf(source.glyph(font, U'I').outline)), 10) << family;
        font.setItalic(true);
        EXPECT_GT(leanOf(source.glyph(font, U'I').outline), 60) << family;
    }
}

// A family of letters that has no bold font of its own.
std::optional<QString> familyWithoutBold() {
    GlyphSource source;
    const QStringList families = QFontDatabase::families();
    for (const QString& family : families) {
        bool isAlwaysLight = QFontDatabase::isSmoothlyScalable(family);
        const QStringList styles = QFontDatabase::styles(family);
        for (const QString& style : styles) {
            isAlwaysLight = isAlwaysLight && QFontDatabase::weight(family, style) <= 400;
        }
        const QFont font(family);
        if (isAlwaysLight && source.glyph(font, U'l').advance <= source.glyph(font, U'm').advance) {
            return family;
        }
    }
    return std::nullopt;
}

TEST(GlyphSource, BoldIsWiderWhetherTheFontHasItOrNot) {
    const auto expectWider = [](const QString& family) {
        GlyphSource source;
        QFont font(family);
        const QRectF normal = source.glyph(font, U'l').outline.boundingRect();
        font.setBold(true);
        const QRectF bold = source.glyph(font, U'l').outline.boundingRect();
        EXPECT_GT(bold.width(), normal.width() + 10) << family.toStdString();
        EXPECT_LT(bold.width(), normal.width() * 2 + 50) << family.toStdString();
    };
    expectWider("Liberation Sans");
    if (const std::optional<QString> family = familyWithoutBold()) {
        expectWider(*family);
    }
}

// The caches forget; what they forget comes back the same.
TEST(GlyphSource, ManyFontsAndGlyphsStayRight) {
    GlyphSource source;
    const Glyph before = source.glyph(sans(), U'g');
    const auto fontNumber = [](int number) {
        QFont font("DejaVu Sans");
        font.setStretch(50 + number);
        return font;
    };
    for (int i = 0; i < 70; ++i) {
        ASSERT_FALSE(source.glyph(fontNumber(i), U'a').outline.isEmpty()) << i;
    }
    EXPECT_EQ(source.glyph(sans(), U'g').outline, before.outline);
    for (char32_t character = 0x100; character < 0x1300; ++character) {
        source.glyph(sans(), character);
    }
    EXPECT_EQ(source.glyph(sans(), U'g').outline, before.outline);
    EXPECT_EQ(&GlyphSource::ofThisThread(), &GlyphSource::ofThisThread());
}

} // namespace
} // namespace metafile::testing
