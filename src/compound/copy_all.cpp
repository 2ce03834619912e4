#include "compound/compound_file.h"
#include "compound/file_state.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace compound {

using format::EntryType;

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20U;

struct Copier {
    FileState& from;
    FileState& to;

    void copyStream(EntryId source, EntryId target) const {
        const std::uint64_t size = from.directory().size(source);
        std::vector<std::byte> chunk(
            static_cast<std::size_t>(std::min<std::uint64_t>(size, kChunk)));
        for (std::uint64_t done = 0; done < size; done += chunk.size()) {
            chunk.resize(from.content().read(source, done, chunk));
            to.content().append(target, chunk);
        }
    }

    EntryId copyElement(EntryId source, EntryId into) const {
        const EntryId target = to.directory().insert(into, from.directory().name(source),
                                                     from.directory().type(source));
        to.directory().setAttributes(target, from.directory().attributes(source));
        return target;
    }

    void copyBelow(EntryId sourceRoot, EntryId targetRoot) const {
        std::vector<std::pair<EntryId, EntryId>> open{{sourceRoot, targetRoot}};
        std::uint64_t seen = 0;
        while (!open.empty()) {
            const auto [source, target] = open.back();
            open.pop_back();
            for (const EntryId element : from.directory().elements(source)) {
                if (++seen > from.directory().bound())
                    from.file().throwDamaged("the directory runs in a ring");
                const EntryId copy = copyElement(element, target);
                if (from.directory().type(element) == EntryType::Stream)
                    copyStream(element, copy);
                else
                    open.emplace_back(element, copy);
            }
        }
    }
};

} // namespace

void copyAll(CompoundFile& from, CompoundFile& to) {
    const FileState::Change change(*to.state_);
    const Copier copier{*from.state_, *to.state_};
    constexpr EntryId kRoot = DirectoryEntries::kRoot;
    copier.to.directory().setAttributes(kRoot, copier.from.directory().attributes(kRoot));
    copier.copyBelow(kRoot, kRoot);
}

} // namespace compound
