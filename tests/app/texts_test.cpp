#include "app/number_text.h"
#include "app/texts.h"
#include "app/texts_table.h"
#include "app/twips.h"

#include <QSet>

#include <gtest/gtest.h>

namespace {

using app::text;

class TextsTest : public testing::Test {
  protected:
    void TearDown() override { app::setLanguage(app::kGermanLocale); }
};

TEST_F(TextsTest, areGermanUnlessTheStudioIsEnglish) {
    app::setLanguage(1033);
    EXPECT_EQ(text(800), "Create new group");
    for (const int locale : {1031, 1036, 0, -1}) {
        app::setLanguage(locale);
        EXPECT_EQ(text(800), "Neue Gruppe erstellen") << locale;
        EXPECT_EQ(app::languageCode(), locale);
    }
}

// The offset is added to the id, so an English text is not found under its own number.
TEST_F(TextsTest, sayWhatIsMissing) {
    EXPECT_EQ(text(8), "Resource 8 not found");
    EXPECT_EQ(text(-1), "Resource -1 not found");
    app::setLanguage(1033);
    EXPECT_EQ(text(8), "Resource 8 not found");
    EXPECT_EQ(text(10800), "Resource 10800 not found");
}

TEST_F(TextsTest, joinToWholeMessages) {
    EXPECT_EQ(text(300) + "a" + text(301) + "b" + text(302),
              "Sind Sie sicher, dass Sie das Bild \"a\" aus der Gruppe \"b\" löschen möchten?");
    EXPECT_EQ(text(1405) + "3" + text(1406), "Die 3 kaputte Storage wurde gelöscht!");
    app::setLanguage(1033);
    EXPECT_EQ(text(1400) + "1" + text(1402),
              "1 corrupt storage detected! Do you wan't to delete it?");
    EXPECT_EQ(text(151) + "a" + text(153) + "b" + text(154), "The group a was renamed into b.");
    EXPECT_EQ(text(955) + "/mnt" + text(956), "Drive \"/mnt\" not available.");
}

TEST_F(TextsTest, haveOneEntryForEachId) {
    QSet<int> ids;
    for (const app::TextEntry& entry : app::textEntries()) {
        ids.insert(entry.id);
    }
    EXPECT_EQ(ids.size(), 174);
    EXPECT_EQ(app::textEntries().size(), 174U);
}

TEST(NumberText, followsTheLocaleAndNotTheLanguage) {
    app::setLanguage(1033);
    app::overrideDecimalSeparator(u',');
    EXPECT_EQ(app::numberText(31.5), "31,5");
    EXPECT_EQ(app::numberText(1234567.0), "1234567");
    app::setLanguage(1031);
    app::overrideDecimalSeparator(u'.');
    EXPECT_EQ(app::numberText(31.5), "31.5");
    EXPECT_EQ(app::numberText(1.0F / 3.0F), "0.3333333");
    EXPECT_EQ(app::numberText(1.0 / 3.0), "0.333333333333333");
    EXPECT_EQ(app::numberText(64.0F), "64");
    app::overrideDecimalSeparator(std::nullopt);
}

TEST(Twips, roundOnlyWhenTheyBecomePixels) {
    EXPECT_EQ(app::toPixels({97.5, 566.25, 1395, 592.5}), QRect(7, 38, 93, 40));
    EXPECT_EQ(app::toPixels(app::toTwips(317)), 317);
}

} // namespace
