#include "compound/file_helpers.h"

#include <utility>

namespace compound_tests {

using compound::Access;
using compound::CompoundFile;
using compound::Element;
using compound::ElementKind;
using compound::Storage;

namespace {

void collect(const Storage& storage, const std::u16string& path, Content& into) {
    auto cursor = storage.elements();
    for (Element element; cursor.next(element);) {
        const std::u16string below = path + element.name;
        if (element.kind == ElementKind::Stream) {
            const base::Bytes bytes = storage.openStream(element).readAll();
            into[below].assign(bytes.begin(), bytes.end());
        } else {
            into[below + u"/"] = {};
            collect(storage.openStorage(element.name), below + u"/", into);
        }
    }
}

} // namespace

Content contentOf(CompoundFile& file) {
    Content content;
    collect(file.root(), u"", content);
    return content;
}

Content contentOf(MemoryDisk& disk, const std::filesystem::path& path) {
    CompoundFile file = openFile(disk, path, Access::Read);
    return contentOf(file);
}

namespace {

std::string asText(const std::vector<compound::Finding>& findings) {
    std::string text;
    for (const compound::Finding& finding : findings) {
        text += finding.where + ": " + finding.what + "\n";
    }
    return text;
}

} // namespace

std::string findingsOf(CompoundFile& file) {
    return asText(file.check());
}

std::string findingsOf(MemoryDisk& disk, const std::filesystem::path& path) {
    CompoundFile file = openFile(disk, path, Access::Read);
    return findingsOf(file);
}

std::string damageOf(MemoryDisk& disk, const std::filesystem::path& path) {
    CompoundFile file = openFile(disk, path, Access::Read);
    std::vector<compound::Finding> findings = file.check();
    std::erase_if(findings, [](const compound::Finding& finding) {
        return finding.severity == compound::Severity::Remark;
    });
    return asText(findings);
}

std::vector<std::byte> patterned(std::size_t size, std::uint32_t seed) {
    std::vector<std::byte> bytes(size);
    std::uint32_t state = seed * 2654435761U + 1;
    for (std::byte& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::byte>(state >> 24U);
    }
    return bytes;
}

CompoundFile openFile(MemoryDisk& disk, const std::filesystem::path& path, Access access) {
    return CompoundFile::open(disk.open(path, access), access);
}

} // namespace compound_tests
