#include "store/group_passage.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "compound/names.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace store {
namespace {

using compound::Element;
using compound::ElementKind;
using compound::Error;
using compound::ErrorCode;

constexpr std::uint32_t kGreatestNumber = 999'999'999;

std::vector<Element> rootElements(const StorageHandle& root) {
    std::vector<Element> elements;
    compound::ElementCursor cursor = root.elements();
    Element element;
    while (cursor.next(element)) {
        elements.push_back(std::move(element));
    }
    return elements;
}

bool isInfoOf(const Element& element, const std::u16string& group) {
    return sameName(element.name, infoStorageOf({group}).text);
}

// The name without "Info" behind it.
std::u16string_view pairName(std::u16string_view name) {
    const bool isInfo = endsWithIgnoringCase(name, kInfoSuffix);
    return name.substr(0, name.size() - (isInfo ? kInfoSuffix.size() : 0));
}

// The top-level group of a renumbered file: "Sib" and a number, with an info storage, below none.
std::optional<StorageName> renumberedTop(const StorageHandle& root) {
    std::optional<StorageName> top;
    for (const std::u16string& storage : rootStorages(root)) {
        if (storageNumber(storage, kRenumberedPrefix) == 0 ||
            !root.find(infoStorageOf({storage}).text)) {
            continue;
        }
        const auto parent = readGroupText(root.OpenStorage(storage), kParentStream);
        if (parent && sameName(*parent, kNoParent)) {
            if (top) {
                return std::nullopt; // no merge leaves two
            }
            top = StorageName{storage};
        }
    }
    return top;
}

// The number of the pair that a storage belongs to, in the file before it was renumbered; 0 for
// every storage that is not called so.
std::uint32_t numberIn(const PassingGroups& groups, const Element& element) {
    if (element.kind != ElementKind::Storage) {
        return 0;
    }
    const std::u16string_view prefix =
        groups.renumberedBy > 0 ? kRenumberedPrefix : kSubGroupPrefix;
    const std::u16string_view name = pairName(element.name);
    const std::uint32_t number = storageNumber(name, prefix);
    const bool isOurs = number > groups.renumberedBy && numberedStorage(number, prefix) == name;
    return isOurs ? number - groups.renumberedBy : 0;
}

bool isOfTop(const PassingGroups& groups, const Element& element) {
    return element.kind == ElementKind::Storage &&
           (sameName(element.name, groups.top.text) || isInfoOf(element, groups.top.text));
}

class Planner {
  public:
    Planner(const PassingGroups& groups, const StorageHandle& target,
            const Destination& destination)
        : groups_(groups),
          target_(target),
          destination_(destination),
          lastNumber_(destination.shift) {}

    std::vector<Passage> plan() {
        for (const Element& element : groups_.elements) {
            passages_.push_back({element, {}, {}});
        }
        // The top group's names are given first, whatever else bears them.
        for (Passage& passage : passages_) {
            if (isOfTop(groups_, passage.element)) {
                nameByNumber(passage, destination_.top);
            }
        }
        for (Passage& passage : passages_) {
            const std::uint32_t number = numberIn(groups_, passage.element);
            if (passage.name.empty() && number > 0 &&
                number <= kGreatestNumber - destination_.shift) {
                lastNumber_ = std::max(lastNumber_, number + destination_.shift);
                nameByNumber(passage, numberedStorage(number + destination_.shift));
            }
        }
        for (const GroupEntry& group : groups_.groups) {
            nameOtherGroup(group);
        }
        for (Passage& passage : passages_) {
            if (passage.name.empty()) {
                passage.name = freeName(passage.element.name);
            }
        }
        tellParents();
        return std::move(passages_);
    }

  private:
    bool isFree(const std::u16string& name) const {
        return !taken_.contains(name) && !target_.find(name);
    }

    // Of two elements of one name, which another program may have written, one gets the new name.
    bool take(Passage& passage, std::u16string name) {
        if (!isFree(name)) {
            return false;
        }
        taken_.insert(name);
        passage.name = std::move(name);
        passageOf_.emplace(passage.element.name, &passage);
        return true;
    }

    void nameByNumber(Passage& passage, const std::u16string& group) {
        const std::u16string& name = passage.element.name;
        const bool isInfo =
            !sameName(name, groups_.top.text) && pairName(name).size() < name.size();
        passage.isNumbered = take(passage, isInfo ? infoStorageOf({group}).text : group);
    }

    // A group that another program has called as it liked keeps its name, or gets a number.
    void nameOtherGroup(const GroupEntry& group) {
        const std::u16string& storage = group.address.storage.text;
        if (passageOf_.contains(storage)) {
            return;
        }
        std::u16string name = storage;
        while (!isFree(name) || !isFree(infoStorageOf({name}).text)) {
            name = numberedStorage(++lastNumber_);
        }
        for (Passage& passage : passages_) {
            if (passage.element.kind != ElementKind::Storage) {
                continue;
            }
            if (passage.name.empty() && sameName(passage.element.name, storage)) {
                take(passage, name);
            } else if (passage.name.empty() && isInfoOf(passage.element, storage)) {
                take(passage, infoStorageOf({name}).text);
            }
        }
        taken_.insert(infoStorageOf({name}).text);
    }

    std::u16string freeName(const std::u16string& name) {
        std::u16string free = name;
        for (unsigned number = 2; !isFree(free); ++number) {
            free = compound::withNumber(name, number);
        }
        taken_.insert(free);
        return free;
    }

    void tellParents() {
        for (const GroupEntry& group : groups_.groups) {
            const auto own = passageOf_.find(group.address.storage.text);
            const auto parent = passageOf_.find(group.parent.text);
            if (own == passageOf_.end()) {
                continue;
            }
            const bool isTop = sameName(group.address.storage.text, groups_.top.text);
            if (isTop) {
                own->second->parent = destination_.parent;
            } else if (parent != passageOf_.end()) {
                own->second->parent = parent->second->name;
                own->second->isParentNumbered = parent->second->isNumbered;
            }
        }
    }

    const PassingGroups& groups_;
    const StorageHandle& target_;
    const Destination& destination_;
    std::vector<Passage> passages_;
    std::map<std::u16string, Passage*, ByName> passageOf_; // the source's names, groups at least
    std::set<std::u16string, ByName> taken_;               // names at the target
    std::uint32_t lastNumber_;                             // given so far
};

bool isPairFree(const StorageHandle& root, const std::u16string& name) {
    return !root.find(name) && !root.find(infoStorageOf({name}).text);
}

} // namespace

PassingGroups passingGroups(StorageHandle root, const std::filesystem::path& path) {
    const FileName file = fileNameOf(path);
    PassingGroups passing;
    auto top = findTopLevelGroup(root, file);
    if (!top) {
        top = renumberedTop(root);
        passing.renumberedBy = top ? storageNumber(top->text, kRenumberedPrefix) : 0;
    }
    const auto storage = top ? root.find(top->text) : std::nullopt;
    if (!storage || storage->kind != ElementKind::Storage) {
        throw Error(ErrorCode::Damaged, path,
                    "it holds no group of its own name (the file may have been renamed)");
    }
    passing.top = *top;
    passing.groups = readGroups(root, file, *top,
                                passing.renumberedBy > 0 ? ParentTexts::NameRenumbered
                                                         : ParentTexts::NameStorages);
    passing.elements = rootElements(root);
    return passing;
}

PassingGroups passingGroups(StorageHandle root, const FileName& file, const StorageName& top) {
    PassingGroups passing;
    passing.top = top;
    const auto fileTop = findTopLevelGroup(root, file);
    std::vector<GroupEntry> groups =
        readGroups(root, file, fileTop.value_or(StorageName{file.text}));
    if (isTopLevel({file, top})) {
        passing.groups = std::move(groups);
        passing.elements = rootElements(root);
        return passing;
    }
    std::set<std::u16string, ByName> below{top.text};
    for (GroupEntry& group : groups) {
        const std::u16string& storage = group.address.storage.text;
        if (below.contains(group.parent.text)) {
            below.insert(storage);
        }
        if (below.contains(storage)) {
            passing.groups.push_back(std::move(group));
        }
    }
    std::set<std::u16string, ByName> wanted = below;
    for (const std::u16string& storage : below) {
        wanted.insert(infoStorageOf({storage}).text);
    }
    for (Element& element : rootElements(root)) {
        if (element.kind == ElementKind::Storage && wanted.contains(element.name)) {
            passing.elements.push_back(std::move(element));
        }
    }
    return passing;
}

std::uint32_t freeShift(const PassingGroups& groups, const StorageHandle& source,
                        const StorageHandle& target, const std::filesystem::path& file) {
    std::vector<std::uint32_t> numbers{0};
    for (const Element& element : groups.elements) {
        numbers.push_back(numberIn(groups, element));
    }
    const std::u16string next = nextSubGroup(target).text;
    for (std::uint32_t shift = storageNumber(next); shift > 0 && shift <= kGreatestNumber;
         ++shift) {
        const bool isFree = std::all_of(numbers.begin(), numbers.end(), [&](std::uint32_t number) {
            return number > kGreatestNumber - shift ||
                   (isPairFree(target, numberedStorage(number + shift)) &&
                    (groups.renumberedBy > 0 ||
                     isPairFree(source, numberedStorage(number + shift, kRenumberedPrefix))));
        });
        if (isFree) {
            return shift;
        }
    }
    throw Error(ErrorCode::TooLarge, file, "there is no number left for a group");
}

std::vector<Passage> planPassages(const PassingGroups& groups, const StorageHandle& target,
                                  const Destination& destination) {
    return Planner(groups, target, destination).plan();
}

void copyPassages(const std::vector<Passage>& passages, compound::CompoundFile& source,
                  compound::CompoundFile& target, const compound::CopiedBytes& copied) {
    for (const Passage& passage : passages) {
        compound::copyElement(source.root(), passage.element, target.root(), passage.name, copied);
        if (passage.parent) {
            writeGroupText(StorageHandle(target.root().openStorage(passage.name)), kParentStream,
                           *passage.parent);
        }
    }
}

void renumberSource(const std::vector<Passage>& passages, StorageHandle source) {
    for (const Passage& passage : passages) {
        if (passage.parent && passage.isParentNumbered) {
            writeGroupText(source.OpenStorage(passage.element.name), kParentStream,
                           *passage.parent);
        }
    }
    for (const Passage& passage : passages) {
        if (passage.isNumbered) {
            source.RenameElement(passage.element.name,
                                 std::u16string(kRenumberedPrefix) +
                                     passage.name.substr(kSubGroupPrefix.size()));
        }
    }
}

} // namespace store
