// A throw-away folder that stands for the user's home while a test runs: TXSGRAPHICSLIB_HOME points
// into it.
#pragma once

#include "platform/paths.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

class OwnHome {
  public:
    OwnHome() { qputenv(platform::kHomeVariable, folder_.path().toUtf8()); }
    ~OwnHome() { qunsetenv(platform::kHomeVariable); }
    OwnHome(const OwnHome&) = delete;
    OwnHome& operator=(const OwnHome&) = delete;

    QString root() const { return folder_.path(); }

    // The path of `name` in the folder.
    QString at(const QString& name) const { return folder_.filePath(name); }

    // Writes a file, and the folders above it.
    void write(const QString& name, const QByteArray& bytes) const {
        QDir().mkpath(QFileInfo(at(name)).path());
        QFile file(at(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            qFatal("cannot write %s", qUtf8Printable(at(name)));
        }
    }

    QByteArray read(const QString& name) const {
        QFile file(at(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

  private:
    QTemporaryDir folder_;
};
