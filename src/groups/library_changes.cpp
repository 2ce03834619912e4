#include "groups/library_changes.h"

#include "app/message_box.h"
#include "compound/error.h"
#include "store/damaged_groups.h"
#include "store/names.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace groups {
namespace {

constexpr std::size_t kMostAtOnce = 50; // files read by one look
constexpr std::chrono::milliseconds kLockWait{300};

using State = std::optional<compound::FileIdentity>;
using Next = LibraryChanges::Next;

bool isToBeRead(const KnownFile& known, const State& now) {
    if (!known.state || !now || !known.state->isSameStateAs(*now)) {
        return true;
    }
    return !known.isSettled && now->settled;
}

void nextNotBefore(LibraryChanges& changes, Next next) {
    changes.next = std::max(changes.next, next);
}

class Look {
  public:
    Look(const store::Library& library, const LookAtLibrary& look)
        : library_(library), look_(look), budget_(kLockWait) {
        changes_.known = look.known;
    }

    LibraryChanges take() {
        try {
            changes_.files = store::groupFilesAsTheyAre(library_);
        } catch (const compound::Error&) {
            changes_.next = Next::Later;
            return std::move(changes_); // what is shown may come back
        }
        changes_.isReachable = true;
        KnownFiles& all = changes_.known;
        KnownFiles before = std::exchange(all, {});
        for (const store::FileName& file : changes_.files) {
            auto known = before.extract(file.text);
            lookAt(file, known ? all.insert(std::move(known)).position->second : all[file.text]);
        }
        followShown();
        for (const store::FileName& file : setAside_) {
            all.erase(file.text);
            std::erase(changes_.files, file);
        }
        changes_.setAside = setAside_.size();
        return std::move(changes_);
    }

  private:
    void lookAt(const store::FileName& file, KnownFile& known) {
        const State now = library_.disk.glance(store::pathOf(library_, file));
        if (!isToBeRead(known, now)) {
            if (!known.isSettled) {
                nextNotBefore(changes_, Next::Later);
            }
        } else if (changes_.read.size() >= kMostAtOnce) {
            nextNotBefore(changes_, Next::AtOnce);
        } else if (std::optional<GroupFile> group = read(file, known)) {
            readContent(*group, known);
            if (!known.isSettled) {
                nextNotBefore(changes_, Next::Later);
            }
            if (std::exchange(known.isNew, false)) {
                new_.push_back(group->file);
            }
            changes_.read.push_back(std::move(*group));
        }
    }

    // Nothing for a file that is not to be shown as it is.
    std::optional<GroupFile> read(const store::FileName& file, KnownFile& known) {
        GroupFile group = readAsItIs(library_, file, budget_);
        const State& now = group.state;
        if (!now || isInUse(group.reading)) {
            known.state.reset();
            nextNotBefore(changes_, Next::Later);
            return std::nullopt;
        }
        const bool isDamaged = group.reading.state == store::GroupFileState::Damaged;
        if (isDamaged && !isToBeShown(group, *now, known)) {
            return std::nullopt;
        }
        known = {now, now->settled, isDamaged, known.isNew};
        return group;
    }

    // Somebody holds it, or has taken it away since it was listed.
    static bool isInUse(const store::GroupFileReading& reading) {
        return reading.state == store::GroupFileState::Locked || reading.isGone();
    }

    // A damaged file is set aside, or will be. One that cannot be stays and is shown.
    bool isToBeShown(GroupFile& group, const compound::FileIdentity& now, KnownFile& known) {
        const bool isAsBefore = known.wasDamaged && known.state && known.state->isSameStateAs(now);
        known = {now, false, true, known.isNew};
        if (!isAsBefore || !now.settled || !look_.maySetAside) {
            nextNotBefore(changes_, Next::Later);
            return false;
        }
        try {
            if (store::setAside(library_, group.file)) {
                setAside_.push_back(group.file);
            } else {
                known.state.reset(); // somebody has mended it just now
                nextNotBefore(changes_, Next::AtOnce);
            }
            return false;
        } catch (const std::exception& error) {
            group.trouble += u'\n' + app::errorText(error);
            return true;
        }
    }

    void readContent(const GroupFile& group, KnownFile& known) {
        if (!look_.shown || look_.shown->group.file != group.file ||
            group.reading.state != store::GroupFileState::Sound) {
            return;
        }
        try {
            changes_.content = groups::readContent(library_, *look_.shown);
        } catch (const compound::Error& error) {
            if (error.code() != compound::ErrorCode::NotFound) { // the group may have gone
                known.state.reset();
                nextNotBefore(changes_, Next::Later);
            }
        }
    }

    void followShown() {
        if (!look_.shown || new_.empty()) {
            return;
        }
        forgetIfGone(look_.shown->group.file);
        if (changes_.known.contains(look_.shown->group.file.text)) {
            return;
        }
        for (const store::FileName& file : new_) {
            const store::GroupAddress& shown = look_.shown->group;
            const MovedGroup moved{shown, store::inRenamedFile(shown, file)};
            if (holdsShown(moved.to) && std::exchange(changes_.moved, moved)) {
                changes_.moved.reset(); // either of the two may be it
                return;
            }
        }
    }

    // A file that gets another name is listed under both for a moment.
    void forgetIfGone(const store::FileName& file) {
        if (!library_.disk.glance(store::pathOf(library_, file))) {
            std::erase(changes_.files, file);
            std::erase_if(changes_.read, [&](const GroupFile& read) { return read.file == file; });
            changes_.known.erase(file.text);
        }
    }

    bool holdsShown(const store::GroupAddress& group) const {
        try {
            ShownPictures there = *look_.shown;
            there.group = group;
            there.want = ShownPictures::Want::Names;
            const GroupContent content = groups::readContent(library_, there);
            return content.names.names.size() == there.count &&
                   (!there.picture ||
                    (content.selected && content.selected->name == *there.picture));
        } catch (const compound::Error&) {
            return false; // it has no such group, or is gone as well
        }
    }

    const store::Library& library_;
    const LookAtLibrary& look_;
    store::LockBudget budget_;
    LibraryChanges changes_;
    std::vector<store::FileName> setAside_;
    std::vector<store::FileName> new_; // files that were read for the first time
};

} // namespace

KnownFiles knownFrom(const std::vector<GroupFile>& files) {
    KnownFiles known;
    for (const GroupFile& file : files) {
        const bool isRead = file.reading.state != store::GroupFileState::Locked && file.state;
        known[file.file.text] = {isRead ? file.state : std::nullopt, isRead && file.state->settled,
                                 file.reading.state == store::GroupFileState::Damaged, false};
    }
    return known;
}

GroupContent readContent(const store::Library& library, const ShownPictures& shown) {
    GroupContent content{shown, store::listPictureNames(library, shown.group), {}, {}};
    if (shown.want == ShownPictures::Want::Entries) {
        content.entries = store::listPictures(library, shown.group);
    }
    const std::vector<store::PictureName>& names = content.names.names;
    if (!names.empty()) {
        const auto isSelected = [&](const store::PictureName& name) {
            return shown.picture && store::sameName(name.text, shown.picture->text);
        };
        const auto found = std::find_if(names.begin(), names.end(), isSelected);
        content.selected = store::describePicture(
            library, shown.group,
            found == names.end() ? names[std::min(shown.position, names.size() - 1)] : *found);
    }
    return content;
}

LibraryChanges lookForChanges(const store::Library& library, const LookAtLibrary& look) {
    return Look(library, look).take();
}

} // namespace groups
