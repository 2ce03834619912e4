#include "crash/library_dump.h"

#include "base/utf8.h"
#include "compound/compound_file.h"
#include "compound/memory_disk.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

namespace crash {
namespace {

std::string_view textOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string fingerprint(std::span<const std::byte> bytes) {
    return std::to_string(bytes.size()) + " bytes " +
           std::to_string(std::hash<std::string_view>{}(textOf(bytes)));
}

void dumpPictures(const store::Library& library, const store::GroupAddress& group,
                  std::ostringstream& out) {
    store::walkPictures(library, group, 0, [&](const store::StoredPicture& picture) {
        out << "  " << base::toUtf8(picture.name.text) << ' ' << fingerprint(picture.bytes) << ' '
            << store::formatRecord(picture.record, u'.') << '\n';
        return store::TakePicture::Continue;
    });
}

void dumpElements(const compound::Storage& storage, std::ostringstream& out) {
    compound::ElementCursor cursor = storage.elements();
    compound::Element element;
    while (cursor.next(element)) {
        out << "  " << base::toUtf8(element.name) << ' ';
        if (element.kind == compound::ElementKind::Storage) {
            out << "with\n";
            dumpElements(storage.openStorage(element.name), out);
        } else {
            out << fingerprint(storage.openStream(element).readAll()) << '\n';
        }
    }
}

std::string dumpGroupFile(const store::Library& library, const store::FileName& file) {
    std::ostringstream out;
    const store::LockBudget budget(std::chrono::milliseconds{0});
    const store::GroupFileReading reading = store::readGroupFile(library, file, budget);
    for (const store::GroupEntry& group : reading.groups) {
        out << base::toUtf8(store::keyOf(group.address)) << ' ' << base::toUtf8(group.name.text)
            << " below " << base::toUtf8(group.parent.text) << '\n';
        dumpPictures(library, group.address, out);
    }
    auto compound = compound::CompoundFile::open(
        library.disk.open(store::pathOf(library, file), compound::Access::Read),
        compound::Access::Read);
    if (reading.failure) {
        out << reading.failure->what() << '\n';
        dumpElements(compound.root(), out);
    }
    for (const compound::Finding& finding : compound.check()) {
        // Unused sectors behind the end are all that a power cut may leave.
        if (finding.severity == compound::Severity::Remark) {
            continue;
        }
        out << "finding: " << finding.where << ": " << finding.what << '\n';
    }
    return out.str();
}

// The same bytes come up again and again, in one state after the other.
std::string dumpBytes(const std::filesystem::path& path, const std::vector<std::byte>& bytes) {
    static std::unordered_map<std::string, std::string> known;
    const std::string key = path.string() + fingerprint(bytes);
    const auto found = known.find(key);
    if (found != known.end()) {
        return found->second;
    }
    if (known.size() == 20000) {
        known.clear();
    }
    MemoryDisk disk;
    fill(disk, {{{path, bytes}}, {}});
    std::string dump;
    try {
        store::Library library = libraryOn(disk);
        library.folder = path.parent_path();
        dump = dumpGroupFile(library, {base::fromPath(path.stem())});
    } catch (const std::exception& error) {
        dump = error.what();
    }
    return known.emplace(key, dump).first->second;
}

} // namespace

store::TwipSize measureSource(std::span<const std::byte> bytes) {
    if (textOf(bytes).starts_with("broken")) {
        throw std::runtime_error("no picture");
    }
    return {480, static_cast<double>(bytes.size())};
}

store::Library libraryOn(compound::Disk& disk) {
    return {disk, kLibraryFolder, measureSource, u'.', std::chrono::milliseconds{0}};
}

std::vector<std::filesystem::path> recordedFolders() {
    return {kLibraryFolder, kElsewhereFolder};
}

LibraryDump dumpOf(const Medium& medium) {
    LibraryDump dump;
    for (const auto& [path, bytes] : medium.files) {
        const bool isInLibrary = path.parent_path() == kLibraryFolder;
        const std::string name = isInLibrary ? path.filename().string() : path.string();
        if (path.extension() == ".stg") {
            dump.emplace(name, dumpBytes(path, bytes));
        } else if (path.extension() == ".err" || path.extension() == ".bak") {
            dump.emplace(name, fingerprint(bytes));
        }
    }
    return dump;
}

Medium mediumOf(compound::Disk& disk) {
    const RecordingDisk snapshot(disk, recordedFolders());
    Medium medium;
    for (const auto& [path, id] : snapshot.beginning().names) {
        medium.files.emplace(path, snapshot.beginning().contents.at(id));
    }
    return medium;
}

void fill(compound::Disk& disk, const Medium& medium) {
    for (const std::filesystem::path& folder : recordedFolders()) {
        dynamic_cast<MemoryDisk&>(disk).makeFolder(folder);
    }
    for (const auto& [path, bytes] : medium.files) {
        disk.create(path)->write(0, bytes);
    }
}

std::string difference(const LibraryDump& expected, const LibraryDump& actual) {
    std::ostringstream out;
    const auto missing = [&](const LibraryDump& from, const LibraryDump& in, char mark) {
        for (const auto& [file, dump] : from) {
            const auto other = in.find(file);
            if (other == in.end() || other->second != dump) {
                out << mark << ' ' << file << '\n' << dump << '\n';
            }
        }
    };
    missing(expected, actual, '-');
    missing(actual, expected, '+');
    return out.str();
}

} // namespace crash
