#include "store/group_layout.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/text_codec.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace store {
namespace {

using compound::Element;
using compound::ElementKind;
using compound::Error;

struct RawGroup {
    StorageName storage;
    GroupName name;
    std::u16string parent;
    bool placed = false;
};

std::optional<RawGroup> readRawGroup(StorageHandle root, const std::u16string& storage) {
    RawGroup group{{storage}, {storage}, {}};
    try {
        const StorageHandle handle = root.OpenStorage(storage);
        const auto name = readGroupText(handle, kNameStream);
        const auto parent = readGroupText(handle, kParentStream);
        if (!name && !parent) {
            return std::nullopt; // not ours: carried along, never shown
        }
        group.name.text = name.value_or(storage);
        group.parent = parent.value_or(std::u16string());
    } catch (const Error& error) {
        // Its own tree is damaged; the group stays visible under its storage name. What could not
        // be read for another reason is told: nobody may take the group for one without a parent.
        if (error.code() != compound::ErrorCode::Damaged) {
            throw;
        }
    }
    return group;
}

// Turns the groups' `Parent` texts into a tree below the top-level group. Linear in the number of
// groups and without recursion, since a hostile file may hold very many in one chain.
class TreeBuilder {
  public:
    TreeBuilder(const FileName& file, const StorageName& top, std::vector<RawGroup> groups)
        : file_(file), top_(top), groups_(std::move(groups)) {
        for (std::size_t i = 0; i < groups_.size(); ++i) {
            byStorage_.emplace(groups_[i].storage.text, i);
            byParent_[groups_[i].parent].push_back(i);
        }
    }

    std::vector<GroupEntry> build() {
        placed_.push_back({{file_, top_}, {file_.text}, {}});
        placeBelow(top_);
        for (std::size_t i = 0; i < groups_.size(); ++i) {
            if (!groups_[i].placed && !parentOf(i)) {
                placeWithChildren({i});
            }
        }
        placeRings();
        return std::move(placed_);
    }

  private:
    std::optional<std::size_t> parentOf(std::size_t index) const {
        const auto found = byStorage_.find(groups_[index].parent);
        if (found == byStorage_.end() || found->second == index) {
            return std::nullopt;
        }
        return found->second;
    }

    void place(std::size_t index, const StorageName& parent) {
        RawGroup& group = groups_[index];
        group.placed = true;
        placed_.push_back({{file_, group.storage}, group.name, parent});
    }

    void placeBelow(const StorageName& parent) {
        std::vector<StorageName> open{parent};
        while (!open.empty()) {
            const StorageName current = std::move(open.back());
            open.pop_back();
            const auto children = byParent_.find(current.text);
            if (children == byParent_.end()) {
                continue;
            }
            for (const std::size_t child : children->second) {
                if (groups_[child].placed) {
                    continue;
                }
                place(child, current);
                open.push_back(groups_[child].storage);
            }
        }
    }

    // Directly below the top-level group; all of them before the first one's children, so that no
    // member of a ring counts as another's child.
    void placeWithChildren(const std::vector<std::size_t>& indexes) {
        for (const std::size_t index : indexes) {
            place(index, top_);
        }
        for (const std::size_t index : indexes) {
            placeBelow(groups_[index].storage);
        }
    }

    // What is left hangs in or below a ring of parents.
    void placeRings() {
        std::vector<std::size_t> seenFrom(groups_.size(), groups_.size());
        for (std::size_t start = 0; start < groups_.size(); ++start) {
            std::size_t at = start;
            while (!groups_[at].placed && seenFrom[at] == groups_.size()) {
                seenFrom[at] = start;
                at = parentOf(at).value_or(at);
            }
            if (groups_[at].placed || seenFrom[at] != start) {
                continue;
            }
            std::vector<std::size_t> ring{at};
            for (std::size_t next = *parentOf(at); next != at; next = *parentOf(next)) {
                ring.push_back(next);
            }
            placeWithChildren(ring);
        }
    }

    const FileName& file_;
    const StorageName& top_;
    std::vector<RawGroup> groups_;
    std::map<std::u16string, std::size_t, ByName> byStorage_;
    std::map<std::u16string, std::vector<std::size_t>, ByName> byParent_;
    std::vector<GroupEntry> placed_;
};

// The storage that a renumbered file's `Parent` text means.
std::u16string renumberedStorage(const StorageHandle& root, const std::u16string& parent) {
    const std::uint32_t number = storageNumber(parent);
    const std::u16string renumbered = numberedStorage(number, kRenumberedPrefix);
    const bool isMeant = numberedStorage(number) == parent && root.find(renumbered);
    return isMeant ? renumbered : parent;
}

} // namespace

std::vector<std::u16string> rootStorages(StorageHandle root) {
    std::vector<std::u16string> names;
    compound::ElementCursor cursor = root.elements();
    Element element;
    while (cursor.next(element)) {
        if (element.kind == ElementKind::Storage) {
            names.push_back(std::move(element.name));
        }
    }
    return names;
}

std::optional<StorageName> findTopLevelGroup(StorageHandle root, const FileName& file) {
    for (const std::u16string_view base :
         {std::u16string_view(file.text), cutAtFirstDot(file.text)}) {
        const auto info = root.find(std::u16string(base) + std::u16string(kInfoSuffix));
        if (!info) {
            continue;
        }
        const auto group = root.find(base);
        return StorageName{group ? group->name : std::u16string(base)};
    }
    return std::nullopt;
}

std::vector<GroupEntry> readGroups(StorageHandle root, const FileName& file, const StorageName& top,
                                   ParentTexts parentTexts) {
    std::vector<RawGroup> groups;
    for (const std::u16string& storage : rootStorages(root)) {
        if (sameName(storage, top.text) || endsWithIgnoringCase(storage, kInfoSuffix)) {
            continue;
        }
        if (auto group = readRawGroup(root, storage)) {
            if (parentTexts == ParentTexts::NameRenumbered) {
                group->parent = renumberedStorage(root, group->parent);
            }
            groups.push_back(std::move(*group));
        }
    }
    return TreeBuilder(file, top, std::move(groups)).build();
}

std::optional<std::u16string> readGroupText(const StorageHandle& group,
                                            std::u16string_view stream) {
    const std::optional<Element> element = group.find(stream);
    if (!element || element->kind != ElementKind::Stream) {
        return std::nullopt;
    }
    return group.OpenStream(*element).GetText();
}

void writeGroupText(StorageHandle group, std::u16string_view stream, std::u16string_view text) {
    group.CreateStream(stream).Put(text);
}

void createGroupPair(StorageHandle root, const StorageName& storage, std::u16string_view parent,
                     std::u16string_view name) {
    root.CreateStorage(infoStorageOf(storage).text);
    const StorageHandle group = root.CreateStorage(storage.text);
    writeGroupText(group, kParentStream, parent);
    writeGroupText(group, kNameStream, name);
}

std::uint32_t storageNumber(std::u16string_view name, std::u16string_view prefix) {
    constexpr std::size_t kMostDigits = 9;
    const std::u16string_view digits = name.substr(std::min(name.size(), prefix.size()));
    if (!name.starts_with(prefix) || digits.empty() || digits.size() > kMostDigits) {
        return 0;
    }
    std::uint32_t number = 0;
    for (const char16_t digit : digits) {
        if (digit < u'0' || digit > u'9') {
            return 0;
        }
        number = number * 10 + (digit - u'0');
    }
    return number;
}

std::u16string numberedStorage(std::uint32_t number, std::u16string_view prefix) {
    return std::u16string(prefix) + base::fromUtf8(std::to_string(number));
}

std::u16string parentText(const StorageHandle& root, const StorageName& parent,
                          const std::filesystem::path& file) {
    const auto spelled = root.find(parent.text);
    std::u16string text = spelled ? spelled->name : parent.text;
    if (!encodeText(text)) {
        throw Error(compound::ErrorCode::InvalidName, file,
                    "no group can be told to lie below \"" + base::toUtf8(text) +
                        "\": the name has characters outside the text code page");
    }
    return text;
}

StorageName nextSubGroup(StorageHandle root) {
    std::uint32_t greatest = 0;
    for (const std::u16string& storage : rootStorages(root)) {
        if (storage.find(kInfoSuffix) == std::u16string::npos) {
            greatest = std::max(greatest, storageNumber(storage));
        }
    }
    // A top-level group called sub5, or any other element, may stand where the next one would go.
    StorageName next{numberedStorage(++greatest)};
    while (root.find(next.text) || root.find(infoStorageOf(next).text)) {
        next.text = numberedStorage(++greatest);
    }
    return next;
}

} // namespace store
