#include "catalogue/contents.h"

#include "compound/error.h"
#include "store/group_operations.h"

#include <algorithm>
#include <optional>

namespace catalogue {
namespace {

const QString kBelow = QStringLiteral(" / ");

using Groups = std::vector<store::GroupEntry>;

const store::GroupEntry* entryOf(const Groups& groups, const store::StorageName& storage) {
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const auto& entry) {
        return store::sameName(entry.address.storage.text, storage.text);
    });
    return found == groups.end() ? nullptr : &*found;
}

QString pathOf(const Groups& groups, const store::GroupEntry& group) {
    QString path = QString::fromStdU16String(group.name.text);
    const store::GroupEntry* above = &group;
    while (!above->parent.text.empty() && (above = entryOf(groups, above->parent)) != nullptr) {
        path.prepend(QString::fromStdU16String(above->name.text) + kBelow);
    }
    return path;
}

Section sectionOf(const store::Library& library, const Groups& groups,
                  const store::GroupEntry& group, const QString& above) {
    const QString name = QString::fromStdU16String(group.name.text);
    return {group.address, name, pathOf(groups, group), above + name,
            store::listPictures(library, group.address)};
}

} // namespace

std::vector<Section> readContents(const store::Library& library, const store::GroupAddress& group,
                                  SubGroups subGroups) {
    const store::GroupFileReading reading =
        store::readGroupFile(library, group.file, store::LockBudget(library.lockWait));
    if (reading.failure) {
        throw *reading.failure;
    }
    const store::GroupEntry* top = entryOf(reading.groups, group.storage);
    if (top == nullptr) {
        throw compound::Error(compound::ErrorCode::NotFound, store::pathOf(library, group.file),
                              "the group is not there");
    }
    struct Waiting {
        const store::GroupEntry* group;
        QString above; // the names between the catalogue's own group and this one
    };
    std::vector<Section> contents;
    std::vector<Waiting> waiting{{top, {}}};
    while (!waiting.empty()) {
        const Waiting next = waiting.back();
        waiting.pop_back();
        contents.push_back(sectionOf(library, reading.groups, *next.group, next.above));
        const QString above = next.group == top ? QString() : contents.back().below + kBelow;
        if (subGroups == SubGroups::LeftOut) {
            break;
        }
        // The last one is taken first.
        for (auto entry = reading.groups.rbegin(); entry != reading.groups.rend(); ++entry) {
            if (entry->parent == next.group->address.storage) {
                waiting.push_back({&*entry, above});
            }
        }
    }
    return contents;
}

std::uint64_t bytesOf(const std::vector<Section>& contents) {
    std::uint64_t bytes = 0;
    for (const Section& section : contents) {
        for (const store::PictureEntry& picture : section.pictures) {
            bytes += picture.bytes;
        }
    }
    return bytes;
}

} // namespace catalogue
