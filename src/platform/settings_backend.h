// Where settings are kept between two runs: the registry, or on a system without one text files.
//
// Files (UTF-8, at most kMaximumSettingsBytes):
//   LocalMachine  TXSGraphicsLib/machine.conf in the system's configuration folders, then in the
//                 user's; read only, never created.
//   CurrentUser   TXSGraphicsLib/user.conf in the user's configuration folder.
// Under TXSGRAPHICSLIB_HOME both lie in its folder "settings" and nowhere else.
//
//   [Software\NORAVEX GmbH\GraphicsLib]     section: the whole key
//   Drive=C:                                value: the text as it stands, without outer blanks
//   Path=" /srv/my pictures"                quotes around it keep outer blanks
//   CurrentGroup=hex(1):004e0031            UTF-16 units, for what a line cannot hold
//   # or ; begins a comment line
//
// Keys and names are compared without regard to case, as the registry does. A file that is no text,
// too large or not a regular file counts as empty; that, and every line that makes no sense, is
// told on stderr with the file's name, once a process.
#pragma once

#include <QString>

#include <vector>

namespace platform {

enum class Hive { LocalMachine, CurrentUser };

struct Setting {
    QString key;
    QString name;
    QString value;
};

inline constexpr qint64 kMaximumSettingsBytes = qint64{1} << 20;

class SettingsBackend {
  public:
    virtual ~SettingsBackend() = default;

    // The value's text, or `fallback` when key or value are missing or cannot be read.
    virtual QString read(Hive hive, const QString& key, const QString& name,
                         const QString& fallback) = 0;

    // Writes texts of the current user, durably and all or nothing; everything else that the file
    // holds, comments too, stays, also what another program of this machine writes at the same
    // time, unless that takes ten seconds. A file that cannot be understood is moved to the trash
    // first. Throws compound::Error naming the file.
    virtual void write(const std::vector<Setting>& settings) = 0;

    void write(const QString& key, const QString& name, const QString& value) {
        write({{key, name, value}});
    }
};

SettingsBackend& nativeSettings();

} // namespace platform
