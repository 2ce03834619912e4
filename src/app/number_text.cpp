#include "app/number_text.h"

#include <QLocale>

namespace app {

namespace {

constexpr int kSingleDigits = 7;
constexpr int kDoubleDigits = 15;

std::optional<QChar> overriddenSeparator;

QString numberText(double value, int digits) {
    QString result = QString::number(value, 'G', digits);
    return result.replace(u'.', decimalSeparator());
}

} // namespace

QString numberText(float value) {
    return numberText(static_cast<double>(value), kSingleDigits);
}

QString numberText(double value) {
    return numberText(value, kDoubleDigits);
}

QString cutBehindComma(const QString& number, int digits) {
    const qsizetype comma = number.indexOf(u',');
    return comma < 0 ? number : number.left(digits == 0 ? comma : comma + 1 + digits);
}

QChar decimalSeparator() {
    if (overriddenSeparator) {
        return *overriddenSeparator;
    }
    const QString separator = QLocale::system().decimalPoint();
    return separator.size() == 1 ? separator.at(0) : QChar(u'.');
}

void overrideDecimalSeparator(std::optional<QChar> separator) {
    overriddenSeparator = separator;
}

} // namespace app
