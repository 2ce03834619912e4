// Groups whose file lies elsewhere, behind a link in the library, on a disk that fails.
#include "base/utf8.h"
#include "compound/error.h"
#include "store/store_fixture.h"

#include <gmock/gmock.h>
#include <map>
#include <tuple>
#include <utility>

namespace store::testing {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;
using ::testing::ElementsAre;
using Path = std::filesystem::path;

// The disk in memory with links, each to a file.
class LinkDisk final : public MemoryDisk {
  public:
    void link(const Path& path, const Path& target) { links_[path] = target; }

    Path resolved(const Path& path) override {
        const auto found = links_.find(path);
        return found == links_.end() ? path : found->second;
    }
    std::unique_ptr<compound::DiskFile> open(const Path& path, Access access) override {
        return MemoryDisk::open(resolved(path), access);
    }
    std::vector<compound::FolderEntry> list(const Path& folder) override {
        std::vector<compound::FolderEntry> entries = MemoryDisk::list(folder);
        for (const auto& [path, target] : links_) {
            if (path.parent_path() == folder) {
                entries.push_back({path.filename(), MemoryDisk::exists(target)});
            }
        }
        return entries;
    }
    bool exists(const Path& path) override {
        return links_.contains(path) || MemoryDisk::exists(path);
    }
    void linkAs(const Path&, const Path& target, const Path& path) override {
        announce(Call::Folder);
        link(path, target);
    }
    void removeTemporary(const Path& path) override {
        if (!links_.contains(path)) {
            MemoryDisk::removeTemporary(path);
            return;
        }
        announce(Call::Folder);
        links_.erase(path);
    }

  private:
    std::map<Path, Path> links_;
};

enum class Ending { OneError, Killed };

// Gives the group "Old", whose file lies elsewhere, the name "New" on a disk whose `failing`th call
// fails, or on which no further one is made. The groups afterwards, and whether the call was
// reached.
std::pair<std::vector<std::string>, bool> groupsAfterRenaming(int failing, Ending ending) {
    LinkDisk disk;
    disk.makeFolder("/library");
    disk.makeFolder("/elsewhere");
    disk.setContent("/logo.bmp", std::as_bytes(std::span(std::string_view("PIC15 15"))));
    const Library library{disk, "/library", measureText, u'.', std::chrono::milliseconds{0}};
    const GroupAddress old = createGroup(library, std::nullopt, {u"Old"});
    addPicture(library, old, {u"logo"}, "/logo.bmp");
    disk.renameReplacing("/library/Old.stg", "/elsewhere/Old.stg");
    disk.link("/library/Old.stg", "/elsewhere/Old.stg");
    int calls = 0;
    disk.setInterceptor([&](MemoryDisk::Call) {
        const int now = calls++;
        if (ending == Ending::OneError ? now == failing : now >= failing) {
            throw Error(ErrorCode::Failed, {}, "told to fail");
        }
    });
    try {
        renameGroup(library, old, {u"New"});
    } catch (const Error&) {
        EXPECT_GT(calls, failing);
    }
    disk.setInterceptor({});
    std::vector<std::string> groups;
    for (const FileName& file : groupFiles(library)) {
        const StoredPicture logo = readPicture(library, topLevelAddress(file.text), {u"logo"});
        groups.push_back(base::toUtf8(file.text) + " with " + std::to_string(logo.bytes.size()));
    }
    return {groups, calls > failing};
}

TEST(LinkedGroupTest, HasOneOfItsNamesWhateverFailsWhileItGetsAnother) {
    for (const Ending ending : {Ending::OneError, Ending::Killed}) {
        bool isReached = true;
        for (int failing = 0; isReached; ++failing) {
            std::vector<std::string> groups;
            std::tie(groups, isReached) = groupsAfterRenaming(failing, ending);
            EXPECT_THAT(groups,
                        ::testing::AnyOf(ElementsAre("Old with 8"), ElementsAre("New with 8")))
                << "call " << failing << (ending == Ending::Killed ? ", killed" : "");
        }
        EXPECT_THAT(groupsAfterRenaming(1000, ending).first, ElementsAre("New with 8"));
    }
}

} // namespace
} // namespace store::testing
