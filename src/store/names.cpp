#include "store/names.h"

#include "compound/names.h"
#include "store/text_codec.h"

#include <algorithm>
#include <array>

namespace store {
namespace {

constexpr std::u16string_view kStorageForbidden = u"/\\:!";
constexpr std::u16string_view kFileForbidden = u"<>:\"/\\|?*!.";

bool isControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

// Half of a character: no text can show it, and no UTF-8 file name can carry it.
bool hasLoneSurrogate(std::u16string_view name) {
    for (std::size_t at = 0; at < name.size(); ++at) {
        const bool high = name[at] >= 0xD800 && name[at] <= 0xDBFF;
        const bool low = name[at] >= 0xDC00 && name[at] <= 0xDFFF;
        const bool paired =
            high && at + 1 < name.size() && name[at + 1] >= 0xDC00 && name[at + 1] <= 0xDFFF;
        if (low || (high && !paired)) {
            return true;
        }
        if (paired) {
            ++at;
        }
    }
    return false;
}

bool containsAny(std::u16string_view name, std::u16string_view forbidden) {
    return name.find_first_of(forbidden) != std::u16string_view::npos ||
           std::any_of(name.begin(), name.end(), isControl);
}

// The names that Windows keeps for devices, with any extension.
bool isDeviceName(std::u16string_view name) {
    constexpr std::array<std::u16string_view, 6> kPlain = {u"CON", u"PRN",    u"AUX",
                                                           u"NUL", u"CONIN$", u"CONOUT$"};
    const auto same = [&](std::u16string_view device) { return sameName(name, device); };
    if (std::any_of(kPlain.begin(), kPlain.end(), same)) {
        return true;
    }
    if (name.size() != 4 ||
        !(sameName(name.substr(0, 3), u"COM") || sameName(name.substr(0, 3), u"LPT"))) {
        return false;
    }
    constexpr std::u16string_view kDigits = u"0123456789\u00B9\u00B2\u00B3";
    return kDigits.find(name[3]) != std::u16string_view::npos;
}

bool isBlank(char16_t unit) {
    return unit == u' ' || unit == u'\u00A0';
}

} // namespace

bool sameName(std::u16string_view left, std::u16string_view right) {
    return compound::compareNames(left, right) == 0;
}

bool ByName::operator()(std::u16string_view left, std::u16string_view right) const {
    return compound::compareNames(left, right) < 0;
}

bool listsBefore(std::u16string_view left, std::u16string_view right) {
    const auto before = [](char16_t one, char16_t other) {
        return compound::toUpper(one) < compound::toUpper(other);
    };
    if (std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                     before)) {
        return true;
    }
    if (std::lexicographical_compare(right.begin(), right.end(), left.begin(), left.end(),
                                     before)) {
        return false;
    }
    return left < right;
}

bool endsWithIgnoringCase(std::u16string_view text, std::u16string_view ending) {
    return text.size() >= ending.size() &&
           sameName(text.substr(text.size() - ending.size()), ending);
}

bool isValidGroupName(std::u16string_view name, GroupLevel level) {
    const std::size_t longest = level == GroupLevel::TopLevel
                                    ? kMaximumNameLength - kInfoSuffix.size()
                                    : kMaximumNameLength;
    if (name.empty() || name.size() > longest || containsAny(name, kFileForbidden)) {
        return false;
    }
    if (isBlank(name.front()) || isBlank(name.back()) || isDeviceName(name)) {
        return false;
    }
    if (level == GroupLevel::TopLevel && sameName(name, kNoParent)) {
        return false;
    }
    return encodeText(name).has_value();
}

bool isValidPictureName(std::u16string_view name) {
    if (name.empty() || name.size() > kMaximumNameLength || isGroupText(name)) {
        return false;
    }
    // They name folders wherever a picture becomes a file again.
    if (name == u"." || name == u"..") {
        return false;
    }
    return !containsAny(name, kStorageForbidden) && !hasLoneSurrogate(name);
}

bool isGroupText(std::u16string_view streamName) {
    return sameName(streamName, kNameStream) || sameName(streamName, kParentStream);
}

StorageName infoStorageOf(const StorageName& group) {
    return {group.text + std::u16string(kInfoSuffix)};
}

bool isTopLevel(const GroupAddress& group) {
    return sameName(group.storage.text, group.file.text) ||
           sameName(group.storage.text, cutAtFirstDot(group.file.text));
}

std::u16string_view cutAtFirstDot(std::u16string_view name) {
    return name.substr(0, name.find(u'.'));
}

} // namespace store
