#include "store/picture_record.h"

#include "base/picture_units.h"
#include "base/utf8.h"
#include "store/names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numeric>
#include <utility>

namespace store {
namespace {

bool isTypeCode(std::string_view text) {
    return std::find(base::kTypeCodes.begin(), base::kTypeCodes.end(), text) !=
           base::kTypeCodes.end();
}

// A plain decimal number with "." or "," and nothing around it.
bool parseNumber(std::string_view text, float& number) {
    constexpr std::size_t kExactDigits = 7; // a whole number of so many is a float
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (!text.empty() && text.size() <= kExactDigits &&
        std::all_of(text.begin(), text.end(), isDigit)) {
        const auto append = [](int value, char digit) { return 10 * value + (digit - '0'); };
        number = static_cast<float>(std::accumulate(text.begin(), text.end(), 0, append));
        return true;
    }
    std::array<char, 64> plain{};
    if (text.size() > plain.size()) {
        return false;
    }
    std::replace_copy(text.begin(), text.end(), plain.begin(), ',', '.');
    const char* const end = plain.data() + text.size();
    const auto [stop, error] = std::from_chars(plain.data(), end, number);
    return error == std::errc() && stop == end && std::isfinite(number) && number >= 0;
}

} // namespace

std::string typeCodeOf(std::u16string_view fileName) {
    const std::u16string_view ending =
        fileName.substr(fileName.size() - std::min<std::size_t>(fileName.size(), 3));
    for (const std::string_view code : base::kTypeCodes) {
        if (sameName(ending, base::fromUtf8(code))) {
            return std::string(code);
        }
    }
    return "JPG";
}

PictureRecord recordOf(const TwipSize& size, std::string type) {
    return {static_cast<float>(size.height / base::kTwipsPerPixel),
            static_cast<float>(size.width / base::kTwipsPerPixel), std::move(type)};
}

std::string numberText(float number, char16_t decimalSeparator) {
    constexpr int kSignificantDigits = 7;
    std::array<char, 64> buffer{};
    char* const end = buffer.data() + buffer.size();
    const auto rounded =
        std::to_chars(buffer.data(), end, number, std::chars_format::general, kSignificantDigits);
    std::string text(buffer.data(), rounded.ptr);
    if (text.find('e') != std::string::npos) {
        const auto fixed = std::to_chars(buffer.data(), end, number, std::chars_format::fixed);
        text.assign(buffer.data(), fixed.ptr);
    }
    const std::size_t point = text.find('.');
    if (point != std::string::npos) {
        text.replace(point, 1, base::toUtf8(std::u16string(1, decimalSeparator)));
    }
    return text;
}

std::string formatRecord(const PictureRecord& record, char16_t decimalSeparator) {
    const char16_t separator = decimalSeparator == u',' ? u',' : u'.';
    std::string text = "h";
    text += numberText(record.height, separator) + "w" + numberText(record.width, separator) + "t";
    return text + record.type;
}

PictureRecord parseRecord(std::string_view text) {
    const std::size_t w = text.find('w');
    const std::size_t t = text.find('t');
    if (w == std::string_view::npos || t == std::string_view::npos || t < w ||
        !isTypeCode(text.substr(t + 1))) {
        return {};
    }
    PictureRecord record{0, 0, std::string(text.substr(t + 1))};
    float height = 0;
    float width = 0;
    if (text.front() == 'h' && parseNumber(text.substr(1, w - 1), height) &&
        parseNumber(text.substr(w + 1, t - w - 1), width)) {
        record.height = height;
        record.width = width;
    }
    return record;
}

} // namespace store
