#include "platform/settings_backend.h"

#include "compound/error.h"
#include "platform/file_descriptor.h"
#include "platform/native_disk.h"
#include "platform/output_file.h"
#include "platform/paths.h"
#include "platform/settings_file.h"
#include "platform/trash.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <iostream>
#include <span>
#include <sys/file.h>
#include <thread>

namespace platform {

namespace {

using compound::Error;
using compound::ErrorCode;

constexpr std::chrono::milliseconds kLongestWait{10'000};
constexpr std::chrono::milliseconds kLookAgain{1};

QString machineFile(const QString& folder) {
    return joinPath(folder, QStringLiteral("machine.conf"));
}

QString userFile() {
    return joinPath(userSettingsFolder(), QStringLiteral("user.conf"));
}

// A start reads several values from one file and shall not repeat itself.
void reportOnce(const std::string& message) {
    static QSet<QString> reported;
    const QString text = QString::fromStdString(message);
    if (reported.contains(text)) {
        return;
    }
    reported.insert(text);
    std::cerr << message << '\n';
}

// Throws compound::Error when the file cannot be reached, and Damaged when its content is no
// settings file.
SettingsFile load(const QString& path) {
    const std::filesystem::path file = toFilePath(path);
    const auto disk = nativeDisk().open(file, compound::Access::Read);
    const std::uint64_t size = disk->size();
    if (size > static_cast<std::uint64_t>(kMaximumSettingsBytes)) {
        throw Error(ErrorCode::Damaged, file, "too large for a settings file");
    }
    QByteArray bytes(static_cast<qsizetype>(size), '\0');
    const std::size_t count = disk->read(
        0, std::as_writable_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size()))));
    bytes.truncate(static_cast<qsizetype>(count));
    std::optional<SettingsFile> settings = SettingsFile::parse(bytes);
    if (!settings) {
        throw Error(ErrorCode::Damaged, file, "not a settings file");
    }
    for (const int line : settings->oddLines()) {
        reportOnce(file.string() + ": line " + std::to_string(line) + " is not understood");
    }
    return *std::move(settings);
}

// The value in one file. Settings that cannot be read must not keep anybody from the library, so
// what is wrong with them is told and the next source asked.
std::optional<QString> valueIn(const QString& path, const QString& key, const QString& name) {
    try {
        return load(path).value(key, name);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NotFound) {
            reportOnce(std::string(error.what()) + "; defaults are used");
        }
        return std::nullopt;
    }
}

SettingsFile loadForWriting(const QString& path) {
    try {
        return load(path);
    } catch (const Error& error) {
        if (error.code() == ErrorCode::Damaged) {
            moveToTrash(toFilePath(path));
        } else if (error.code() != ErrorCode::NotFound) {
            throw;
        }
        return {};
    }
}

// Programs that write settings take turns: each changes a few lines of the whole file, and would
// take back what another one writes meanwhile. The file is replaced by each of them, so it is their
// folder that is locked. Whoever hangs with the lock, or a folder without locks, keeps nobody from
// saving for good.
FileDescriptor turnAt(const std::filesystem::path& folder) {
    FileDescriptor held(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    static std::atomic<bool> isHeldForGood = false; // what was waited for in vain once
    const auto end = std::chrono::steady_clock::now() + (isHeldForGood ? kLookAgain : kLongestWait);
    while (held.isOpen() && ::flock(held.get(), LOCK_EX | LOCK_NB) != 0 &&
           (errno == EWOULDBLOCK || errno == EINTR)) {
        if (std::chrono::steady_clock::now() >= end) {
            isHeldForGood = true;
            return held;
        }
        std::this_thread::sleep_for(kLookAgain);
    }
    isHeldForGood = false;
    return held;
}

// The file is replaced, which only its folder could refuse.
void refuseReadOnly(const QString& path) {
    const QFileInfo file(path);
    if (file.exists() && !file.isWritable()) {
        throw Error(ErrorCode::Denied, toFilePath(path), "the file is read-only");
    }
}

class FileSettings final : public SettingsBackend {
  public:
    QString read(Hive hive, const QString& key, const QString& name,
                 const QString& fallback) override {
        QStringList files;
        if (hive == Hive::CurrentUser) {
            files += userFile();
        } else {
            for (const QString& folder : systemSettingsFolders()) {
                files += machineFile(folder);
            }
            files += machineFile(userSettingsFolder());
        }
        for (const QString& file : files) {
            if (const std::optional<QString> value = valueIn(file, key, name)) {
                return *value;
            }
        }
        return fallback;
    }

    using SettingsBackend::write;

    void write(const std::vector<Setting>& settings) override {
        if (!QDir().mkpath(userSettingsFolder())) {
            throw Error(ErrorCode::Denied, toFilePath(userSettingsFolder()),
                        "the folder cannot be created");
        }
        const FileDescriptor turn = turnAt(toFilePath(userSettingsFolder()));
        const QString path = userFile();
        SettingsFile content = loadForWriting(path);
        for (const Setting& setting : settings) {
            content.setValue(setting.key, setting.name, setting.value);
        }
        refuseReadOnly(path);
        const QByteArray bytes = content.toBytes();
        // Not the toolkit's file for saving: what it could not write, on a full disk, took the
        // place of the settings all the same.
        writeOutputFile(
            toFilePath(path), IfFileExists::Replace,
            std::as_bytes(std::span(bytes.data(), static_cast<std::size_t>(bytes.size()))));
    }
};

} // namespace

SettingsBackend& nativeSettings() {
    static FileSettings files;
    return files;
}

} // namespace platform
