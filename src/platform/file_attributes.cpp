#include "platform/file_attributes.h"

#include "compound/error.h"

#include <cerrno>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace platform {

namespace {

using compound::systemError;
using std::filesystem::path;

constexpr mode_t kPermissionBits = 07777;
constexpr char kAccessList[] = "system.posix_acl_access";

// Asks for the size, and for the text of that size; it may have grown in between.
template <typename Ask>
bool askText(Ask ask, std::string& text) {
    for (;;) {
        const ssize_t size = ask(nullptr, 0);
        if (size < 0) {
            return false;
        }
        text.resize(static_cast<std::size_t>(size));
        const ssize_t length = size == 0 ? 0 : ask(text.data(), text.size());
        if (length >= 0) {
            text.resize(static_cast<std::size_t>(length));
            return true;
        }
        if (errno != ERANGE) {
            return false;
        }
    }
}

bool isMissing(int cause) {
    return cause == EOPNOTSUPP || cause == ENODATA || cause == ENOSYS;
}

// The user's own attributes must come along; others only as far as the system lets us.
bool mayStayBehind(std::string_view name, int cause) {
    return !name.starts_with("user.") || cause == EOPNOTSUPP || cause == EPERM || cause == EACCES;
}

void copyExtendedAttributes(int from, const path& fromPath, int to, const path& toPath) {
    std::string names;
    const auto askNames = [&](char* into, std::size_t size) {
        return ::flistxattr(from, into, size);
    };
    if (!askText(askNames, names)) {
        if (isMissing(errno)) {
            return;
        }
        throw systemError(errno, fromPath, "read attributes");
    }
    for (std::size_t at = 0; at < names.size();) {
        const std::string name = names.c_str() + at;
        at += name.size() + 1;
        std::string value;
        const auto ask = [&](char* into, std::size_t size) {
            return ::fgetxattr(from, name.c_str(), into, size);
        };
        if (name == kAccessList || !askText(ask, value)) {
            continue; // the list comes later; what cannot be read, or is just gone, is not ours
        }
        if (::fsetxattr(to, name.c_str(), value.data(), value.size(), 0) != 0 &&
            !mayStayBehind(name, errno)) {
            throw systemError(errno, toPath, "write attributes");
        }
    }
}

// The new file may have inherited a list from its folder.
void copyAccessList(int from, const path& fromPath, int to, const path& toPath) {
    std::string list;
    const auto ask = [&](char* into, std::size_t size) {
        return ::fgetxattr(from, kAccessList, into, size);
    };
    if (!askText(ask, list)) {
        if (!isMissing(errno)) {
            throw systemError(errno, fromPath, "read access list");
        }
        (void)::fremovexattr(to, kAccessList);
    } else if (::fsetxattr(to, kAccessList, list.data(), list.size(), 0) != 0 && errno != EPERM) {
        throw systemError(errno, toPath, "write access list");
    }
}

// Only an administrator may give files away; everybody else keeps what the system lets them keep,
// the group at best. Tells whether the group is kept.
bool copyOwner(const struct stat& owner, int to) {
    if (::fchown(to, owner.st_uid, owner.st_gid) == 0 ||
        ::fchown(to, static_cast<uid_t>(-1), owner.st_gid) == 0) {
        return true;
    }
    struct stat status {};
    return ::fstat(to, &status) == 0 && status.st_gid == owner.st_gid;
}

} // namespace

void copyFileAttributes(int from, const path& fromPath, int to, const path& toPath) {
    struct stat status {};
    if (::fstat(from, &status) != 0) {
        throw systemError(errno, fromPath, "get attributes");
    }
    copyExtendedAttributes(from, fromPath, to, toPath);
    // The mode comes last because a change of owner resets parts of it.
    mode_t mode = status.st_mode & kPermissionBits;
    if (copyOwner(status, to)) {
        copyAccessList(from, fromPath, to, toPath);
    } else {
        const mode_t everybodys = mode & S_IRWXO;
        mode &= ~static_cast<mode_t>(S_IRWXG) | (everybodys << 3U);
    }
    if (::fchmod(to, mode) != 0 && errno != EPERM) {
        throw systemError(errno, toPath, "set permissions");
    }
}

} // namespace platform
