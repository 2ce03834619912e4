// The compound reader, its check, and group files. What check() finds sound must be readable and
// changeable, and sound again afterwards, with everything in it that was not changed.
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/raw_file.h"
#include "fuzz/target.h"
#include "store/damaged_groups.h"
#include "store/picture_operations.h"

#include <optional>

namespace fuzz {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::Error;
using compound::ErrorCode;
using compound::IfExists;
using compound_tests::contentOf;
using compound_tests::damageOf;
using compound_tests::openFile;
using compound_tests::patterned;

const std::filesystem::path kPath = "/library/Group.stg";

class LibraryDisk : public MemoryDisk {
  public:
    explicit LibraryDisk(std::span<const std::byte> group) {
        makeFolder("/library");
        setContent(kPath, group);
    }
};

// What was done, or nothing when the bytes do not allow it.
template <typename Action>
auto attempted(Action action) -> std::optional<decltype(action())> {
    try {
        return action();
    } catch (const Error& error) {
        require(!std::string(error.what()).empty(), "an error without a word");
        return std::nullopt;
    }
}

bool isSound(MemoryDisk& disk) {
    return attempted([&] { return damageOf(disk, kPath).empty(); }).value_or(false);
}

void requireSound(MemoryDisk& disk, const std::filesystem::path& path) {
    const std::string damage = damageOf(disk, path);
    require(damage.empty(), "not sound any more: " + damage);
}

// The last bytes of the input also say what is changed: one step each.
constexpr std::size_t kSteps = 12;

std::span<const std::byte> stepsOf(std::span<const std::byte> input) {
    return input.last(std::min(kSteps, input.size()));
}

// A path of the content, apart into the storages above it and the last name.
compound::Storage storageAbove(CompoundFile& file, const std::u16string& path,
                               std::u16string& name) {
    compound::Storage storage = file.root();
    std::size_t from = 0;
    std::size_t slash = path.find(u'/');
    while (slash != std::u16string::npos && slash + 1 < path.size()) {
        storage = storage.openStorage(path.substr(from, slash - from));
        from = slash + 1;
        slash = path.find(u'/', from);
    }
    name = path.substr(from, path.find(u'/', from) - from);
    return storage;
}

void removeBelow(compound_tests::Content& content, const std::u16string& path) {
    if (path.back() == u'/') {
        std::erase_if(content, [&](const auto& each) { return each.first.starts_with(path); });
    }
    content.erase(path);
}

// One change to the file and to what it should hold then.
void change(CompoundFile& file, compound_tests::Content& content, unsigned step) {
    const std::size_t size = std::size_t{1} << (step % 16);
    auto chosen = content.begin();
    std::advance(chosen, content.empty() ? 0 : step / 4 % content.size());
    if (content.empty() || step % 4 == 0) {
        const std::u16string name = u"added " + std::u16string(1 + step % 24, u'x');
        if (const auto taken = file.root().find(name)) { // in another case, perhaps
            removeBelow(content, taken->name + u'/');
            content.erase(taken->name);
        }
        file.root().createStream(name, IfExists::Replace).assign(patterned(size, step));
        content[name] = patterned(size, step);
        return;
    }
    const std::u16string path = chosen->first;
    std::u16string name;
    compound::Storage above = storageAbove(file, path, name);
    if (step % 4 == 1) {
        above.destroy(name);
        removeBelow(content, path);
    } else if (path.back() != u'/' && step % 4 == 2) {
        above.openStream(name).append(patterned(size, step));
        const std::vector<std::byte> more = patterned(size, step);
        content[path].insert(content[path].end(), more.begin(), more.end());
    } else if (path.back() != u'/') {
        const std::u16string renamed = u"renamed " + std::u16string(1 + step % 20, u'y');
        if (!above.find(renamed)) {
            above.rename(name, renamed);
            content[path.substr(0, path.size() - name.size()) + renamed] = content[path];
            content.erase(path);
        }
    }
}

// Changes need not be possible in a file that is not sound, but they always end.
void changeUnsound(MemoryDisk& disk, std::span<const std::byte> steps) {
    for (const std::byte step : steps) {
        attempted([&] {
            CompoundFile file = openFile(disk, kPath);
            compound_tests::Content content = contentOf(file);
            change(file, content, static_cast<unsigned>(step));
            file.commit();
            return true;
        });
    }
    attempted([&] { return contentOf(disk, kPath).size(); });
}

void useCompound(std::span<const std::byte> input) {
    LibraryDisk disk(input);
    if (!isSound(disk)) {
        attempted([&] { return contentOf(disk, kPath).size(); });
        changeUnsound(disk, stepsOf(input));
        return;
    }
    CompoundFile file = openFile(disk, kPath);
    compound_tests::Content content = contentOf(file);
    unsigned number = 0;
    for (const std::byte step : stepsOf(input)) {
        change(file, content, static_cast<unsigned>(step));
        if (++number % 3 == 0) {
            file.commit();
            requireSound(disk, kPath);
        }
    }
    file.commit();
    require(contentOf(disk, kPath) == content, "the file holds something else");
}

void useCheck(std::span<const std::byte> input) {
    LibraryDisk disk(input);
    const bool sound = isSound(disk);
    attempted([&] {
        CompoundFile from = openFile(disk, kPath, Access::Read);
        CompoundFile to = CompoundFile::create(disk.create("/library/copy"), from.sectorSize());
        copyAll(from, to);
        to.commit();
        return true;
    });
    if (sound) { // names that are not allowed, and are told, are carried along
        requireSound(disk, "/library/copy");
        require(contentOf(disk, kPath) == contentOf(disk, "/library/copy"), "a copy is another");
    }
}

store::Library libraryOn(MemoryDisk& disk) {
    const auto measure = [](std::span<const std::byte>) { return store::TwipSize{480, 480}; };
    return {disk, "/library", measure, u'.', std::chrono::milliseconds{0}};
}

std::vector<store::GroupEntry> groupsOf(const store::Library& library) {
    return store::readGroupFile(library, {u"Group"},
                                store::LockBudget{std::chrono::milliseconds{0}})
        .groups;
}

void readAll(const store::Library& library) {
    for (const store::GroupEntry& group : groupsOf(library)) {
        attempted([&] {
            for (const store::PictureEntry& picture : store::listPictures(library, group.address)) {
                (void)store::readPicture(library, group.address, picture.name);
            }
            return true;
        });
    }
}

void changeGroup(const store::Library& library, const store::GroupAddress& group, unsigned step) {
    const auto first = store::firstPicture(library, group);
    if (step % 4 == 0) {
        store::createGroup(library, group, {u"New"});
    } else if (step % 4 == 1 || !first) {
        store::addPicture(library, group, {u"new"}, "/library/source.bmp");
    } else if (step % 4 == 2) {
        store::renamePicture(library, group, first->name, {u"renamed"});
    } else {
        store::deletePicture(library, group, first->name);
    }
}

void useGroupFile(std::span<const std::byte> input) {
    LibraryDisk disk(input);
    const bool sound = isSound(disk);
    disk.setContent("/library/source.bmp", patterned(3000, 1));
    const store::Library library = libraryOn(disk);
    readAll(library);
    for (const std::byte step : stepsOf(input)) {
        const std::vector<store::GroupEntry> groups = groupsOf(library);
        if (!groups.empty()) {
            const auto number = static_cast<unsigned>(step);
            attempted([&] {
                changeGroup(library, groups[number / 4 % groups.size()].address, number);
                return true;
            });
        }
    }
    readAll(library);
    if (sound) {
        requireSound(disk, kPath);
    }
}

Bytes compoundFile(compound::SectorSize sectorSize) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
    compound::Storage storage = file.root().createStorage(u"S");
    storage.createStream(u"long").assign(patterned(9000, 1));
    storage.createStream(u"short").assign(patterned(700, 2));
    storage.createStorage(u"Sub").createStream(u"deep").assign(patterned(90, 3));
    file.root().createStorage(u"T");
    file.commit();
    storage.destroy(u"short");
    file.commit();
    return disk.content(kPath);
}

std::map<std::string, Bytes> compoundSeeds() {
    std::map<std::string, Bytes> seeds;
    for (const compound::SectorSize size : compound_tests::kBothSectorSizes) {
        const std::string name = std::to_string(static_cast<unsigned>(size));
        seeds["own-" + name] = compoundFile(size);
        compound_tests::RawFile foreign(compoundFile(size));
        foreign.makeForeign();
        seeds["foreign-" + name] = foreign.bytes();
    }
    return seeds;
}

std::map<std::string, Bytes> groupSeeds() {
    MemoryDisk disk;
    disk.makeFolder("/library");
    disk.setContent("/library/source.bmp", patterned(3000, 1));
    const store::Library library = libraryOn(disk);
    const store::GroupAddress top = store::createGroup(library, std::nullopt, {u"Group"});
    const store::GroupAddress sub = store::createGroup(library, top, {u"Pumps"});
    store::createGroup(library, sub, {u"Steel"});
    store::addPicture(library, top, {u"logo"}, "/library/source.bmp");
    store::addPicture(library, sub, {u"valve"}, "/library/source.bmp");
    return {{"group", disk.content(kPath)}};
}

const std::vector<std::string> kStorageWords = {{"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8},
                                                {"\xFE\xFF\xFF\xFF", 4},
                                                {"\xFD\xFF\xFF\xFF", 4},
                                                {"\xFC\xFF\xFF\xFF", 4},
                                                {"\xFF\xFF\xFF\xFF", 4},
                                                {"\3\0\x3E\0\3\0", 6},
                                                {"R\0o\0o\0t\0", 8},
                                                {"I\0n\0f\0o\0", 8},
                                                {"S\0u\0b\0", 6},
                                                {"N\0a\0m\0e\0", 8},
                                                {"P\0a\0r\0e\0n\0t\0", 12}};

} // namespace

std::vector<Target> storageTargets() {
    return {{"compound", useCompound, compoundSeeds, kStorageWords},
            {"check", useCheck, compoundSeeds, kStorageWords},
            {"group-file", useGroupFile, groupSeeds, kStorageWords}};
}

} // namespace fuzz
