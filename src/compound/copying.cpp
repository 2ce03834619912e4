#include "compound/compound_file.h"
#include "compound/file_state.h"
#include "compound/names.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace compound {

using format::EntryType;

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20U;

struct Copier {
    FileState& from;
    FileState& to;
    const CopiedBytes& tell;

    void copyStream(EntryId source, EntryId target) const {
        const std::uint64_t size = from.directory().size(source);
        std::vector<std::byte> chunk(
            static_cast<std::size_t>(std::min<std::uint64_t>(size, kChunk)));
        for (std::uint64_t done = 0; done < size; done += chunk.size()) {
            chunk.resize(from.content().read(source, done, chunk));
            to.content().append(target, chunk);
            if (tell) {
                tell(chunk.size());
            }
        }
    }

    EntryId copyEntry(EntryId source, EntryId into, std::u16string_view name) const {
        const EntryId target = to.directory().insert(into, name, from.directory().type(source));
        to.directory().setAttributes(target, from.directory().attributes(source));
        return target;
    }

    // A name like `name` that no element of the copied storage bears.
    std::u16string freeName(EntryId into, const std::u16string& name) const {
        for (unsigned number = 2;; ++number) {
            std::u16string tried = withNumber(name, number);
            if (!to.directory().find(into, tried)) {
                return tried;
            }
        }
    }

    // Copies a storage's elements; of those that bear one name, which only another program can have
    // written, the first by its spelling keeps it. `copied` takes each with its copy.
    template <typename Copied>
    void copyElements(EntryId source, EntryId target, Copied copied) const {
        Directory& directory = from.directory();
        std::vector<EntryId> elements = directory.elements(source);
        directory.sortByName(elements);
        std::vector<EntryId> others;
        std::u16string previous;
        for (const EntryId element : elements) {
            std::u16string name = directory.name(element);
            if (compareNames(previous, name) == 0) {
                others.push_back(element);
            } else {
                copied(element, copyEntry(element, target, name));
            }
            previous = std::move(name);
        }
        for (const EntryId element : others) {
            copied(element, copyEntry(element, target, freeName(target, directory.name(element))));
        }
    }

    void copyBelow(EntryId sourceRoot, EntryId targetRoot) const {
        std::vector<std::pair<EntryId, EntryId>> open{{sourceRoot, targetRoot}};
        std::uint64_t seen = 0;
        while (!open.empty()) {
            const auto [source, target] = open.back();
            open.pop_back();
            copyElements(source, target, [&](EntryId element, EntryId copy) {
                if (++seen > from.directory().bound()) {
                    from.file().throwDamaged("the directory runs in a ring");
                }
                if (from.directory().type(element) == EntryType::Stream) {
                    copyStream(element, copy);
                } else {
                    open.emplace_back(element, copy);
                }
            });
        }
    }
};

} // namespace

void copyElement(const Storage& from, const Element& element, Storage into,
                 std::u16string_view name, const CopiedBytes& copied) {
    FileState& target = *into.file_;
    if (name != element.name && !isLegalName(name)) {
        throw Error(ErrorCode::InvalidName, target.file().disk().path(),
                    "\"" + shownName(name) + "\" cannot name a storage or stream");
    }
    if (target.directory().find(into.id_, name)) {
        throw Error(ErrorCode::Exists, target.file().disk().path(),
                    "there is a \"" + shownName(name) + "\" in the file already");
    }
    const FileState::Change change(target);
    const Copier copier{*from.file_, target, copied};
    const EntryId copy = copier.copyEntry(element.id, into.id_, name);
    if (element.kind == ElementKind::Stream) {
        copier.copyStream(element.id, copy);
    } else {
        copier.copyBelow(element.id, copy);
    }
}

void copyAll(CompoundFile& from, CompoundFile& to, const CopiedBytes& copied) {
    const FileState::Change change(*to.state_);
    const Copier copier{*from.state_, *to.state_, copied};
    constexpr EntryId kRoot = DirectoryEntries::kRoot;
    copier.to.directory().setAttributes(kRoot, copier.from.directory().attributes(kRoot));
    copier.copyBelow(kRoot, kRoot);
}

} // namespace compound
