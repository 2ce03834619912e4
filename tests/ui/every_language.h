// The main window in both languages, each with both decimal separators: what a text says and how a
// number is written are two settings.
#pragma once

#include "app/number_text.h"
#include "app/texts.h"
#include "ui/main_window_fixture.h"

#include <ostream>

struct LanguageSetting {
    int locale;
    QChar separator;
};

inline void PrintTo(const LanguageSetting& setting, std::ostream* out) {
    *out << (setting.locale == app::kGermanLocale ? "German" : "English")
         << (setting.separator == u',' ? ", comma" : ", point");
}

class EveryLanguageTest : public MainWindowTest,
                          public testing::WithParamInterface<LanguageSetting> {
  public:
    static auto all() {
        return testing::Values(
            LanguageSetting{app::kGermanLocale, u','}, LanguageSetting{app::kGermanLocale, u'.'},
            LanguageSetting{app::kEnglishLocale, u','}, LanguageSetting{app::kEnglishLocale, u'.'});
    }

  protected:
    EveryLanguageTest() {
        app::setLanguage(GetParam().locale);
        app::overrideDecimalSeparator(GetParam().separator);
    }

    static bool isGerman() { return GetParam().locale == app::kGermanLocale; }
    static bool hasComma() { return GetParam().separator == u','; }

    // Which of the two texts belongs to the test's language.
    static QString say(const char* german, const char* english) {
        return QString::fromUtf8(isGerman() ? german : english);
    }

    // A number written with a point, as the test's setting writes it.
    static QString number(QString text) { return text.replace(u'.', GetParam().separator); }
};
