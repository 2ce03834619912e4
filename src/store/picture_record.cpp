#include "store/picture_record.h"

#include "store/names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace store {
namespace {

constexpr std::array<std::u16string_view, 7> kTypeCodes = {u"WMF", u"EMF", u"ICO", u"CUR",
                                                           u"BMP", u"GIF", u"JPG"};
constexpr double kTwipsPerPixel = 15;

bool isTypeCode(std::string_view text) {
    const auto same = [&](std::u16string_view code) { return toUtf8(code) == text; };
    return std::any_of(kTypeCodes.begin(), kTypeCodes.end(), same);
}

// A plain decimal number with "." or "," and nothing around it.
bool parseNumber(std::string_view text, float& number) {
    std::string plain(text);
    std::replace(plain.begin(), plain.end(), ',', '.');
    const char* const end = plain.data() + plain.size();
    const auto [stop, error] = std::from_chars(plain.data(), end, number);
    return error == std::errc() && stop == end && std::isfinite(number) && number >= 0;
}

} // namespace

std::string typeCodeOf(std::u16string_view fileName) {
    const std::u16string_view ending =
        fileName.substr(fileName.size() - std::min<std::size_t>(fileName.size(), 3));
    for (const std::u16string_view code : kTypeCodes) {
        if (sameName(ending, code))
            return toUtf8(code);
    }
    return "JPG";
}

PictureRecord recordOf(const TwipSize& size, std::string type) {
    return {static_cast<float>(size.height / kTwipsPerPixel),
            static_cast<float>(size.width / kTwipsPerPixel), std::move(type)};
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
    if (point != std::string::npos)
        text.replace(point, 1, toUtf8(std::u16string(1, decimalSeparator)));
    return text;
}

std::string formatRecord(const PictureRecord& record, char16_t decimalSeparator) {
    return "h" + numberText(record.height, decimalSeparator) + "w" +
           numberText(record.width, decimalSeparator) + "t" + record.type;
}

PictureRecord parseRecord(std::string_view text) {
    const std::size_t w = text.find('w');
    const std::size_t t = text.find('t');
    if (text.empty() || text.front() != 'h' || w == std::string_view::npos ||
        t == std::string_view::npos || t < w)
        return {};
    PictureRecord record;
    record.type = std::string(text.substr(t + 1));
    if (!isTypeCode(record.type) || !parseNumber(text.substr(1, w - 1), record.height) ||
        !parseNumber(text.substr(w + 1, t - w - 1), record.width))
        return {};
    return record;
}

} // namespace store
