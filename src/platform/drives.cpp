#include "platform/drives.h"

#include "platform/paths.h"

#include <QDir>
#include <QFile>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <dirent.h>
#include <memory>
#include <mutex>
#include <thread>

namespace platform {

namespace {

// File systems of the kernel's own, and images that packages are mounted from.
constexpr std::array kKernelFileSystems = {
    "autofs",        "binfmt_misc", "bpf",         "cgroup",
    "cgroup2",       "configfs",    "debugfs",     "devpts",
    "devtmpfs",      "efivarfs",    "fusectl",     "hugetlbfs",
    "mqueue",        "nsfs",        "overlay",     "proc",
    "pstore",        "ramfs",       "rpc_pipefs",  "rootfs",
    "securityfs",    "selinuxfs",   "squashfs",    "sysfs",
    "tmpfs",         "tracefs",     "fuse.portal", "fuse.gvfsd-fuse",
    "fuse.snapfuse", "fuse.lxcfs",
};

// Mounts below these serve the system and not its users.
constexpr std::array kSystemFolders = {
    "/boot", "/dev", "/etc", "/proc", "/snap", "/sys", "/usr", "/var",
};

constexpr int kMountPointField = 4;
constexpr int kFirstOptionalField = 6;

bool isBelow(const QString& path, const QString& folder) {
    return path == folder ||
           (path.startsWith(folder) && (folder.endsWith(u'/') || path.at(folder.size()) == u'/'));
}

bool isSystemMount(const QString& point) {
    for (const char* folder : kSystemFolders) {
        if (isBelow(point, QString::fromLatin1(folder))) {
            return true;
        }
    }
    return isBelow(point, QStringLiteral("/run")) && !isBelow(point, QStringLiteral("/run/media"));
}

bool isKernelFileSystem(const QByteArray& type) {
    for (const char* name : kKernelFileSystems) {
        if (type == name) {
            return true;
        }
    }
    return false;
}

// The table writes blanks and backslashes as a backslash and three octal digits.
QByteArray unescaped(const QByteArray& field) {
    constexpr int kDigits = 3;
    constexpr int kOctal = 8;
    QByteArray result;
    for (qsizetype index = 0; index < field.size(); ++index) {
        bool isNumber = false;
        const uint code =
            field.at(index) == '\\' ? field.mid(index + 1, kDigits).toUInt(&isNumber, kOctal) : 0;
        result += isNumber ? static_cast<char>(code) : field.at(index);
        index += isNumber ? kDigits : 0;
    }
    return result;
}

struct Answer {
    std::mutex mutex;
    std::condition_variable isKnown;
    bool isDone = false;
    bool isListable = false;
};

void tryListing(const std::filesystem::path& folder, Answer& answer) {
    DIR* stream = ::opendir(folder.c_str());
    if (stream != nullptr) {
        errno = 0;
        (void)::readdir(stream);
    }
    const std::lock_guard guard(answer.mutex);
    answer.isListable = stream != nullptr && errno == 0;
    answer.isDone = true;
    answer.isKnown.notify_one();
    if (stream != nullptr) {
        ::closedir(stream);
    }
}

} // namespace

QStringList mountedVolumes(const QByteArray& mountTable) {
    QStringList volumes;
    for (const QByteArray& line : mountTable.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        const qsizetype separator = fields.indexOf("-", kFirstOptionalField);
        if (separator < 0 || separator + 1 >= fields.size()) {
            continue;
        }
        const QString point = fromFilePath(unescaped(fields.at(kMountPointField)).toStdString());
        if (point.startsWith(u'/') && point.size() > 1 &&
            !isKernelFileSystem(fields.at(separator + 1)) && !isSystemMount(point) &&
            !volumes.contains(point)) {
            volumes += point;
        }
    }
    volumes.sort(Qt::CaseInsensitive);
    return volumes;
}

QStringList drives() {
    QStringList result{QStringLiteral("/")};
    const QString home = QDir::homePath();
    if (!result.contains(home)) {
        result += home;
    }
    QFile table(QStringLiteral("/proc/self/mountinfo"));
    if (table.open(QIODevice::ReadOnly)) {
        for (const QString& volume : mountedVolumes(table.readAll())) {
            if (!result.contains(volume)) {
                result += volume;
            }
        }
    }
    return result;
}

QString driveOf(const QString& folder, const QStringList& candidates) {
    QString best;
    for (const QString& candidate : candidates) {
        if (isBelow(folder, candidate) && candidate.size() > best.size()) {
            best = candidate;
        }
    }
    return best;
}

bool isListable(const QString& folder, std::chrono::milliseconds patience) {
    // A thread that is left behind: a call into a dead network volume cannot be given up.
    const auto answer = std::make_shared<Answer>();
    std::thread([answer, path = toFilePath(folder)] { tryListing(path, *answer); }).detach();
    std::unique_lock lock(answer->mutex);
    answer->isKnown.wait_for(lock, patience, [&] { return answer->isDone; });
    return answer->isDone && answer->isListable;
}

} // namespace platform
