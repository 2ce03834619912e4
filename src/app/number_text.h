// Numbers as the user reads them: the decimal separator of the process's locale (not of the
// program's language), no grouping, no padding.
#pragma once

#include <QString>

#include <optional>

namespace app {

// 7 significant digits for single precision, 15 for double; whole numbers without a separator.
QString numberText(float value);
QString numberText(double value);

// A number's text, cut behind so many digits after a decimal comma (with none of them the comma
// goes, too). A decimal point cuts nothing: so it is wanted.
QString cutBehindComma(const QString& number, int digits);

// The separator in use: the locale's, unless overridden.
QChar decimalSeparator();

// Tests set it; an empty value returns to the locale's.
void overrideDecimalSeparator(std::optional<QChar> separator);

} // namespace app
