// What the drive lists offer: the file system's root, the home folder and every mounted volume that
// holds files. Told by the mount table alone, so that a network volume that does not answer delays
// nobody before it is chosen.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>

namespace platform {

// The drives' folders, the root first, then the home folder, then the volumes by name.
QStringList drives();

// The mount points of volumes that hold files, out of a mount table in the form of
// /proc/self/mountinfo (proc(5)); the root itself is not among them.
QStringList mountedVolumes(const QByteArray& mountTable);

// The drive among `candidates` that holds `folder`: the longest that is a prefix of it.
QString driveOf(const QString& folder, const QStringList& candidates);

// Whether the folder can be listed. A volume that does not answer within `patience` counts as
// unreadable, and the question is left to end by itself.
bool isListable(const QString& folder,
                std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

} // namespace platform
