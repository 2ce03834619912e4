#include "store/fitting_names.h"

#include "base/utf8.h"
#include "store/names.h"
#include "store/text_codec.h"

#include <algorithm>

namespace store {
namespace {

constexpr char16_t kSubstitute = u'_';

bool isHigh(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

// No half of a character stays at the end.
std::u16string_view cutTo(std::u16string_view text, std::size_t length) {
    text = text.substr(0, length);
    return !text.empty() && isHigh(text.back()) ? text.substr(0, text.size() - 1) : text;
}

// The characters that `isFit`, which judges texts, accepts, one by one; "_" for the others.
template <typename IsFit>
std::u16string substituted(std::u16string_view text, IsFit isFit) {
    std::u16string fitting;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t units = isHigh(text[at]) && at + 1 < text.size() ? 2 : 1;
        const std::u16string_view character = text.substr(at, units);
        const bool fits = isFit(character);
        fitting.append(fits ? character : std::u16string_view(&kSubstitute, 1));
        at += fits ? units : 1;
    }
    return fitting;
}

} // namespace

PictureName fittingPictureName(std::u16string_view text) {
    // A single dot is no name, but may stand in one.
    std::u16string name = substituted(cutTo(text, kMaximumNameLength), [](auto character) {
        return character == u"." || isValidPictureName(character);
    });
    if (!isValidPictureName(name)) {
        name = std::u16string(cutTo(name, kMaximumNameLength - 1)) + kSubstitute;
    }
    return {std::move(name)};
}

PictureName freePictureName(const PictureName& name,
                            const std::function<bool(const PictureName&)>& isTaken) {
    PictureName free = name;
    for (std::uint64_t number = 2; isTaken(free); ++number) {
        const std::u16string ending = u" (" + base::fromUtf8(std::to_string(number)) + u")";
        free.text = std::u16string(cutTo(name.text, kMaximumNameLength - ending.size())) + ending;
    }
    return free;
}

GroupName fittingGroupName(std::u16string_view text) {
    constexpr std::size_t kLongest = kMaximumNameLength - kInfoSuffix.size();
    // What stands between two letters may be what cannot begin or end a name.
    std::u16string name = substituted(cutTo(text, kLongest), [](auto character) {
        std::u16string word = u"a"; // u"a" + ... is refused by GCC 12 at -O3, by mistake
        word.append(character).append(u"a");
        return isValidGroupName(word, GroupLevel::TopLevel);
    });
    if (!name.empty() && !isValidGroupName(name, GroupLevel::TopLevel)) {
        name.front() = name.front() == u' ' || name.front() == u'\u00A0' ? kSubstitute : name[0];
        name.back() = name.back() == u' ' || name.back() == u'\u00A0' ? kSubstitute : name.back();
    }
    if (!isValidGroupName(name, GroupLevel::TopLevel)) {
        name = std::u16string(cutTo(name, kLongest - 1)) + kSubstitute;
    }
    return {std::move(name)};
}

std::string fileBaseNameFor(const PictureName& name) {
    constexpr std::u16string_view kUnfit = u"/\\:*?\"<>|\x7F";
    std::u16string text = name.text;
    std::replace_if(
        text.begin(), text.end(),
        [&](char16_t unit) { return unit < u' ' || kUnfit.find(unit) != kUnfit.npos; },
        kSubstitute);
    if (text.empty() || text.front() == u'.') {
        text.insert(text.begin(), kSubstitute);
    }
    return base::toUtf8(text);
}

} // namespace store
