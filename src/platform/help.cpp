#include "platform/help.h"

#include <QFileInfo>

#ifdef Q_OS_WIN
#include <QProcess>
#endif

namespace platform {

HelpOutcome displayHelp(const QString& nativeFile, [[maybe_unused]] int contextId) {
    if (!QFileInfo::exists(nativeFile))
        return HelpOutcome::FileMissing;
#ifdef Q_OS_WIN
    const QStringList arguments{QStringLiteral("-mapid"), QString::number(contextId), nativeFile};
    if (QProcess::startDetached(QStringLiteral("hh.exe"), arguments))
        return HelpOutcome::Shown;
#endif
    return HelpOutcome::NoViewer;
}

} // namespace platform
