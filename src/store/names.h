// Which names groups and pictures may have, and how names compare.
//
// The rules are the strictest of all systems on which a library may lie, so that a library can be
// carried from one to another: what Windows' and Linux' file systems, the compound-file format
// (31 UTF-16 units, no / \ : !) and the text code page (Windows-1252) accept.
#pragma once

#include "store/address.h"

#include <string_view>

namespace store {

enum class GroupLevel { TopLevel, SubGroup };

inline constexpr std::size_t kMaximumNameLength = 31; // UTF-16 units
inline constexpr std::u16string_view kInfoSuffix = u"Info";
inline constexpr std::u16string_view kNameStream = u"Name";
inline constexpr std::u16string_view kParentStream = u"Parent";
inline constexpr std::u16string_view kNoParent = u"None";
inline constexpr std::u16string_view kSubGroupPrefix = u"Sub";
inline constexpr std::u16string_view kRenumberedPrefix = u"Sib"; // in a file that was merged

// Equality as inside compound files: without regard to case, unit by unit.
bool sameName(std::u16string_view left, std::u16string_view right);

// Orders names for sets and maps in which those that are equal so are one.
struct ByName {
    bool operator()(std::u16string_view left, std::u16string_view right) const;
};

// For sorting and listing: without regard to case, equal names by their units.
bool listsBefore(std::u16string_view left, std::u16string_view right);

bool endsWithIgnoringCase(std::u16string_view text, std::u16string_view ending);

// A top-level group's name also names its file and, with "Info", a storage: 27 units at most, and
// not "None", which marks a top-level group in the `Parent` texts. No name contains ".", since a
// group file's base name ends at its first one.
bool isValidGroupName(std::u16string_view name, GroupLevel level);

// Anything that can name a stream, but for the group's own streams `Name` and `Parent`.
bool isValidPictureName(std::u16string_view name);

// Whether the stream is one of the group's own (`Name`, `Parent` in any case).
bool isGroupText(std::u16string_view streamName);

StorageName infoStorageOf(const StorageName& group);

// Whether `group` is the top-level group of its file. Its storage bears the file's base name, or,
// in a file whose name has further dots, the base name up to the first of them.
bool isTopLevel(const GroupAddress& group);

// The base name up to its first ".".
std::u16string_view cutAtFirstDot(std::u16string_view name);

} // namespace store
