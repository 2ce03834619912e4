#include "store/store_fixture.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "store/text_codec.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace store::testing {
namespace {

std::span<const std::byte> bytesIn(const std::string& text) {
    return std::as_bytes(std::span(text));
}

} // namespace

TwipSize measureText(std::span<const std::byte> bytes) {
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    TwipSize size;
    if (std::sscanf(text.c_str(), "PIC%lf %lf", &size.height, &size.width) != 2) {
        throw std::runtime_error("no picture");
    }
    return size;
}

std::filesystem::path MemoryTrash::moveThere(const std::filesystem::path& file) {
    const std::filesystem::path place =
        "/trash/" + std::to_string(thrown_++) + "/" + file.filename().string();
    disk_.makeFolder(place.parent_path());
    disk_.renameWithoutReplacing(file, place);
    files_.push_back(place);
    return place;
}

void MemoryTrash::takeBack(const std::filesystem::path& trashed, const std::filesystem::path& to) {
    disk_.renameWithoutReplacing(trashed, to);
    files_.erase(std::remove(files_.begin(), files_.end(), trashed), files_.end());
}

std::vector<std::string> MemoryTrash::fileNames() const {
    std::vector<std::string> names;
    for (const std::filesystem::path& file : files_) {
        names.push_back(file.filename().string());
    }
    return names;
}

StoreTest::StoreTest() {
    disk.makeFolder("/library");
    disk.makeFolder("/sources");
}

std::filesystem::path StoreTest::fileOf(const std::string& name, const std::string& bytes) {
    const std::filesystem::path path = std::filesystem::path("/sources") / name;
    disk.removeTemporary(path);
    disk.create(path)->write(0, bytesIn(bytes));
    return path;
}

std::filesystem::path StoreTest::source(const std::string& fileName, int heightTwips,
                                        int widthTwips, const std::string& rest) {
    return fileOf(fileName, "PIC" + std::to_string(heightTwips) + " " + std::to_string(widthTwips) +
                                " " + rest);
}

GroupAddress StoreTest::topGroup(std::u16string_view name) {
    return createGroup(library, std::nullopt, {std::u16string(name)});
}

GroupAddress StoreTest::subGroup(const GroupAddress& parent, std::u16string_view name) {
    return createGroup(library, parent, {std::u16string(name)});
}

void StoreTest::add(const GroupAddress& group, std::u16string_view name, const std::string& rest) {
    addPicture(library, group, {std::u16string(name)}, source("any.bmp", 480, 480, rest));
}

compound::CompoundFile StoreTest::openRaw(std::u16string_view file) {
    return compound::CompoundFile::open(
        disk.open(pathOf(library, {std::u16string(file)}), compound::Access::ReadWrite),
        compound::Access::ReadWrite);
}

void StoreTest::makeForeignGroup(std::u16string_view file, std::u16string_view storage,
                                 std::u16string_view name, std::u16string_view parent) {
    compound::CompoundFile raw = openRaw(file);
    raw.root().createStorage(std::u16string(storage) + u"Info");
    compound::Storage group = raw.root().createStorage(storage);
    group.createStream(u"Parent").assign(*encodeText(parent));
    group.createStream(u"Name").assign(*encodeText(name));
    raw.commit();
}

std::vector<std::u16string> StoreTest::rootOf(std::u16string_view file) {
    compound::CompoundFile raw = openRaw(file);
    std::vector<std::u16string> names;
    compound::ElementCursor cursor = raw.root().elements();
    compound::Element element;
    while (cursor.next(element)) {
        names.push_back(element.name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> StoreTest::treeOf(std::u16string_view file) {
    const GroupFileReading reading =
        readGroupFile(library, {std::u16string(file)}, LockBudget{std::chrono::milliseconds{0}});
    EXPECT_EQ(reading.state, GroupFileState::Sound)
        << (reading.failure ? reading.failure->what() : "");
    std::vector<std::string> tree;
    for (std::size_t i = 1; i < reading.groups.size(); ++i) {
        const GroupEntry& group = reading.groups[i];
        tree.push_back(base::toUtf8(group.parent.text) + ">" +
                       base::toUtf8(group.address.storage.text) + ":" +
                       base::toUtf8(group.name.text));
    }
    return tree;
}

std::vector<std::string> StoreTest::pictureNames(const GroupAddress& group) {
    std::vector<std::string> names;
    for (const PictureEntry& picture : listPictures(library, group)) {
        names.push_back(base::toUtf8(picture.name.text));
    }
    return names;
}

std::string StoreTest::bytesOf(const GroupAddress& group, std::u16string_view name) {
    const base::Bytes bytes = readPicture(library, group, {std::u16string(name)}).bytes;
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void StoreTest::expectSound(std::u16string_view file) {
    for (const compound::Finding& finding : openRaw(file).check()) {
        ADD_FAILURE() << finding.where << ": " << finding.what;
    }
}

} // namespace store::testing
