// Names and addresses of groups and pictures.
//
// All names are UTF-16 as in the files themselves; a file name that is no valid UTF-8 keeps its odd
// bytes as lone surrogates U+DC80..U+DCFF, so that every file can be named.
#pragma once

#include <compare>
#include <filesystem>
#include <string>
#include <string_view>

namespace store {

// T: the base name of a group file, without ".stg". Also the name of its top-level group.
struct FileName {
    std::u16string text;
    auto operator<=>(const FileName&) const = default;
};

// S: the name of a group's storage inside its file; "Sub" and a number for a sub-group.
struct StorageName {
    std::u16string text;
    auto operator<=>(const StorageName&) const = default;
};

// A picture's name: the name of its stream and of its record's stream.
struct PictureName {
    std::u16string text;
    auto operator<=>(const PictureName&) const = default;
};

// What the user calls a group (the text of its `Name` stream).
struct GroupName {
    std::u16string text;
    auto operator<=>(const GroupName&) const = default;
};

// Where a group lies. The one way to say which group is meant.
struct GroupAddress {
    FileName file;
    StorageName storage;

    auto operator<=>(const GroupAddress&) const = default;
};

// "S/T", the key of a group in the tree and in the settings.
std::u16string keyOf(const GroupAddress& address);

// Splits at the first "/"; a key without one names a top-level group (S = T = the whole text).
GroupAddress addressOf(std::u16string_view key);

// The address of the top-level group `name`.
GroupAddress topLevelAddress(std::u16string_view name);

// The same group in a file that was given another name: only the top-level group is called after
// its file.
GroupAddress inRenamedFile(const GroupAddress& group, const FileName& file);

} // namespace store
