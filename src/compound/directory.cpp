#include "compound/directory.h"

#include "compound/names.h"
#include "compound/red_black_tree.h"

#include <algorithm>
#include <bit>
#include <string>
#include <unordered_set>
#include <utility>

namespace compound {

using namespace format;

namespace {

bool isFree(const std::byte* raw) {
    return raw[entry::kTypeAt] == static_cast<std::byte>(EntryType::Free);
}

} // namespace

void Directory::createRoot() {
    const EntryId id = takeFreeEntry();
    setName(id, u"Root Entry");
    std::byte* const at = change(id);
    at[entry::kTypeAt] = static_cast<std::byte>(EntryType::Root);
    at[entry::kColourAt] = static_cast<std::byte>(Colour::Black);
    setContent(id, kEndOfChain, 0);
    sound_.insert(id);
}

std::optional<EntryId> Directory::freeEntryOn(std::uint32_t page) {
    const std::byte* const bytes = chain_.read(page);
    for (std::uint32_t i = 0; i < perPage_; ++i) {
        if (isFree(bytes + kEntrySize * i)) {
            return page * perPage_ + i;
        }
    }
    return std::nullopt;
}

// Looks at what this transaction freed, at the last page and at a few others, so that taking an
// entry costs the same in a large directory; then the directory grows.
EntryId Directory::takeFreeEntry() {
    constexpr std::uint32_t kLooks = 6;
    std::optional<EntryId> id;
    if (!freed_.empty()) {
        id = freed_.back();
        freed_.pop_back();
    }
    const std::uint32_t pages = chain_.count();
    if (!id && pages > 0) {
        id = freeEntryOn(pages - 1);
    }
    for (std::uint32_t look = 0; !id && look < std::min(kLooks, pages); ++look) {
        id = freeEntryOn((file_.count() * kLooks + look) % pages);
    }
    if (!id) {
        id = chain_.append(std::byte{0}) * perPage_;
    }
    std::byte* const page = chain_.write(*id / perPage_);
    for (std::uint32_t i = 0; i < perPage_; ++i) {
        std::byte* const at = page + kEntrySize * i;
        if (isFree(at)) {
            clear(at);
        }
    }
    return *id;
}

// --- the trees ----------------------------------------------------------------------------------

std::optional<EntryId> Directory::find(EntryId storage, std::u16string_view name, EntryId near) {
    for (const EntryId id : {near + 1, near - 1}) {
        if (id < storageOf_.size() && storageOf_[id] == storage && compare(name, id) == 0) {
            return id;
        }
    }
    return search(storage, name);
}

std::optional<EntryId> Directory::search(EntryId storage, std::u16string_view name) {
    EntryId at = child(storage);
    for (std::uint64_t steps = 0; at != kNoEntry; ++steps) {
        if (steps > bound()) {
            file_.throwDamaged("the directory runs in a ring");
        }
        const int order = compare(name, at);
        if (order == 0) {
            reach(storage, at);
            return at;
        }
        at = order < 0 ? left(at) : right(at);
    }
    return sound_.contains(storage) ? std::nullopt : findAnywhere(storage, name);
}

// A tree is walked once. When it is sound the search was right; otherwise its names in our order
// serve every further search.
std::optional<EntryId> Directory::findAnywhere(EntryId storage, std::u16string_view name) {
    auto walked = walked_.find(storage);
    if (walked == walked_.end()) {
        std::vector<EntryId> all = elements(storage);
        if (isSound(storage, all)) {
            sound_.insert(storage);
            return std::nullopt;
        }
        sortByName(all);
        walked = walked_.emplace(storage, std::move(all)).first;
    }
    const std::vector<EntryId>& ids = walked->second;
    const auto found = std::partition_point(ids.begin(), ids.end(),
                                            [&](EntryId id) { return compare(name, id) > 0; });
    return found != ids.end() && compare(name, *found) == 0 ? std::optional(*found) : std::nullopt;
}

void Directory::reach(EntryId storage, EntryId id) {
    if (storageOf_.size() <= id) {
        storageOf_.resize(std::max<std::size_t>(std::size_t{id} + 1, 2 * storageOf_.size()),
                          kNoEntry);
    }
    EntryId& known = storageOf_[id];
    if (known != kNoEntry && known != storage) {
        file_.throwDamaged("directory entry " + std::to_string(id) + " lies in two storages");
    }
    known = storage;
}

EntryId Directory::insert(EntryId storage, std::u16string_view name, EntryType type) {
    requireSound(storage);
    const EntryId id = takeFreeEntry();
    setName(id, name);
    change(id)[entry::kTypeAt] = static_cast<std::byte>(type);
    setContent(id, type == EntryType::Stream ? kEndOfChain : 0, 0);
    if (type == EntryType::Storage) {
        sound_.insert(id);
    }
    link(storage, id);
    reach(storage, id);
    ++inserted_[storage];
    return id;
}

void Directory::link(EntryId storage, EntryId id) {
    walked_.erase(storage);
    if (RedBlackTree(*this, storage).insert(id)) {
        return;
    }
    std::vector<EntryId> all = elements(storage);
    if (std::find(all.begin(), all.end(), id) == all.end()) {
        all.push_back(id);
    }
    rebuild(storage, std::move(all));
}

// A tree that turns out not to be sound on the way still holds all its elements: it is rebuilt.
void Directory::unlink(EntryId storage, EntryId id) {
    walked_.erase(storage);
    if (RedBlackTree(*this, storage).remove(id)) {
        return;
    }
    std::vector<EntryId> rest = elements(storage);
    rest.erase(std::remove(rest.begin(), rest.end(), id), rest.end());
    rebuild(storage, std::move(rest));
}

void Directory::remove(EntryId storage, EntryId id) {
    unlink(storage, id);
    sound_.erase(id);
    walked_.erase(id);
    clear(change(id));
    if (id < storageOf_.size()) {
        storageOf_[id] = kNoEntry;
    }
    freed_.push_back(id);
}

void Directory::rename(EntryId storage, EntryId id, std::u16string_view name) {
    requireSound(storage);
    unlink(storage, id);
    setName(id, name);
    link(storage, id);
}

std::vector<EntryId> Directory::elements(EntryId storage) {
    std::vector<EntryId> ordered;
    std::vector<EntryId> open;
    std::uint64_t seen = 0;
    const auto descend = [&](EntryId id) {
        for (; id != kNoEntry; id = left(id)) {
            if (++seen > bound()) {
                file_.throwDamaged("the directory runs in a ring");
            }
            open.push_back(id);
        }
    };
    descend(child(storage));
    while (!open.empty()) {
        const EntryId id = open.back();
        open.pop_back();
        reach(storage, id);
        ordered.push_back(id);
        descend(right(id));
    }
    return ordered;
}

// Order, no two reds in a row, a black root, and equal numbers of blacks on every way down.
// Elements that bear one name, which only another program can have written, may stand side by side.
bool Directory::isSound(EntryId storage, const std::vector<EntryId>& walked) {
    for (std::size_t i = 1; i < walked.size(); ++i) {
        if (compare(name(walked[i - 1]), walked[i]) > 0) {
            return false;
        }
    }
    return RedBlackTree(*this, storage).hasSoundColours();
}

void Directory::makeSound(EntryId storage, std::vector<EntryId> walked) {
    if (isSound(storage, walked)) {
        sound_.insert(storage);
    } else {
        rebuild(storage, std::move(walked));
    }
}

void Directory::requireSound(EntryId storage) {
    if (!sound_.contains(storage)) {
        makeSound(storage, elements(storage));
    }
}

void Directory::makeSound() {
    std::unordered_set<EntryId> seen{kRoot};
    std::vector<EntryId> open{kRoot};
    while (!open.empty()) {
        const EntryId storage = open.back();
        open.pop_back();
        std::vector<EntryId> walked = elements(storage);
        for (const EntryId id : walked) {
            if (!seen.insert(id).second) {
                file_.throwDamaged("the directory's trees cross at entry " + std::to_string(id));
            }
            if (type(id) == EntryType::Storage) {
                open.push_back(id);
            }
        }
        makeSound(storage, std::move(walked));
    }
}

void Directory::sortByName(std::vector<EntryId>& ids) {
    std::vector<std::pair<std::u16string, std::size_t>> named; // with their places in `ids`
    named.reserve(ids.size());
    for (const EntryId id : ids) {
        named.emplace_back(name(id), named.size());
    }
    std::sort(named.begin(), named.end(), [](const auto& one, const auto& other) {
        const int order = compareNames(one.first, other.first);
        return order != 0 ? order < 0 : one < other;
    });
    const std::vector<EntryId> before = ids;
    std::transform(named.begin(), named.end(), ids.begin(),
                   [&](const auto& entry) { return before[entry.second]; });
}

void Directory::rebuild(EntryId storage, std::vector<EntryId> all) {
    sortByName(all);
    arrange(storage, all);
}

// A tree of the least height: all levels but the lowest are full. The lowest is red, and so is one
// two above it, so that no part is all black: what is taken out there is mended nearby.
void Directory::arrange(EntryId storage, const std::vector<EntryId>& ordered) {
    struct Part {
        std::size_t from, to;
        unsigned depth;
        EntryId parent;
        std::size_t side;
    };
    const unsigned fullLevels = static_cast<unsigned>(std::bit_width(ordered.size() + 1)) - 1;
    std::vector<Part> open{{0, ordered.size(), 0, storage, entry::kChildAt}};
    while (!open.empty()) {
        const Part part = open.back();
        open.pop_back();
        if (part.from == part.to) {
            setLink(part.parent, part.side, kNoEntry);
            continue;
        }
        const std::size_t middle = part.from + (part.to - part.from) / 2;
        const EntryId id = ordered[middle];
        setLink(part.parent, part.side, id);
        const bool isRed =
            part.depth >= fullLevels || (part.depth > 0 && part.depth + 2 == fullLevels);
        setColour(id, isRed ? Colour::Red : Colour::Black);
        open.push_back({part.from, middle, part.depth + 1, id, entry::kLeftAt});
        open.push_back({middle + 1, part.to, part.depth + 1, id, entry::kRightAt});
    }
    sound_.insert(storage);
    walked_.erase(storage);
}

bool Directory::hasGrownMuch(EntryId storage, std::uint32_t inserted) {
    constexpr std::uint32_t kMany = 64;
    constexpr std::uint64_t kPart = 4; // of the whole directory, which is walked at the most
    return inserted >= kMany && inserted * kPart >= count() && sound_.contains(storage);
}

bool Directory::isToBalance() {
    return std::any_of(inserted_.begin(), inserted_.end(),
                       [&](const auto& tree) { return hasGrownMuch(tree.first, tree.second); });
}

void Directory::balance() {
    for (const auto& [storage, inserted] : inserted_) {
        if (hasGrownMuch(storage, inserted)) {
            arrange(storage, elements(storage));
        }
    }
}

} // namespace compound
