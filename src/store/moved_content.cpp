#include "store/moved_content.h"

#include "store/group_layout.h"
#include "store/names.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace store {
namespace {

using compound::Element;
using compound::ElementKind;
using compound::Storage;
using compound::Stream;

bool hasSameBytes(const Stream& one, const Stream& other) {
    constexpr std::size_t kChunk = std::size_t{1} << 20U;
    if (one.size() != other.size()) {
        return false;
    }
    std::vector<std::byte> mine(
        static_cast<std::size_t>(std::min<std::uint64_t>(one.size(), kChunk)));
    std::vector<std::byte> others(mine.size());
    for (std::uint64_t done = 0; done < one.size(); done += mine.size()) {
        mine.resize(one.read(done, mine));
        others.resize(mine.size());
        if (mine.empty() || other.read(done, others) != mine.size() || mine != others) {
            return false;
        }
    }
    return true;
}

class Comparison {
  public:
    Comparison(const StorageName& oldTop, const StorageName& movedTop)
        : oldTop_(oldTop), movedTop_(movedTop) {}

    bool holdsAll(const Storage& old, const Storage& moved) {
        open_.push_back({old, moved, 0});
        while (!open_.empty()) {
            const Pair pair = open_.back();
            open_.pop_back();
            if (!holdsElements(pair)) {
                return false;
            }
        }
        return true;
    }

  private:
    struct Pair {
        Storage old;
        Storage moved;
        int depth;
    };

    bool holdsElements(const Pair& pair) {
        compound::ElementCursor cursor = pair.old.elements();
        Element element;
        while (cursor.next(element)) {
            const auto found =
                pair.moved.find(pair.depth == 0 ? movedName(element.name) : element.name);
            if (!found || found->kind != element.kind) {
                return false;
            }
            if (element.kind == ElementKind::Storage) {
                open_.push_back({pair.old.openStorage(element), pair.moved.openStorage(*found),
                                 pair.depth + 1});
                continue;
            }
            const bool isRewritten = pair.depth == 1 && isGroupText(element.name);
            if (!isRewritten &&
                !hasSameBytes(pair.old.openStream(element), pair.moved.openStream(*found))) {
                return false;
            }
        }
        return true;
    }

    std::u16string movedName(const std::u16string& name) const {
        if (sameName(name, oldTop_.text)) {
            return movedTop_.text;
        }
        return sameName(name, infoStorageOf(oldTop_).text) ? infoStorageOf(movedTop_).text : name;
    }

    const StorageName& oldTop_;
    const StorageName& movedTop_;
    std::vector<Pair> open_;
};

} // namespace

bool holdsAllOf(compound::CompoundFile& old, const FileName& oldFile, compound::CompoundFile& moved,
                const FileName& movedFile) {
    const auto oldTop = findTopLevelGroup(StorageHandle(old.root()), oldFile);
    const auto movedTop = findTopLevelGroup(StorageHandle(moved.root()), movedFile);
    return oldTop && movedTop && Comparison(*oldTop, *movedTop).holdsAll(old.root(), moved.root());
}

} // namespace store
