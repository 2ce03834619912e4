#include "app/help.h"

#include "app/help_window.h"
#include "app/message_box.h"
#include "app/settings.h"
#include "app/texts.h"
#include "compound/error.h"
#include "platform/paths.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QShortcut>

#include <utility>

namespace app {

namespace {

constexpr TextPair kFileMissing = {u"Die Hilfedatei fehlt:", u"The help file is missing:"};
constexpr TextPair kTopicMissing = {u"Das Thema fehlt in der Hilfedatei:",
                                    u"The help file lacks the topic:"};
constexpr TextPair kLanguageFolder = {u"de", u"en"};

const QString kOwnFileName = QStringLiteral("TXSGraphicsLib.chm");

HelpHandler& currentHandler() {
    static HelpHandler handler;
    return handler;
}

QString& chosenFolder() {
    static QString folder;
    return folder;
}

QPointer<HelpWindow>& openWindow() {
    static QPointer<HelpWindow> window;
    return window;
}

// Where the program's own help lies: as installed, or in the build folder. Both are told from the
// program's place, so that an installation may be moved.
QStringList ownFolders() {
    if (!chosenFolder().isEmpty()) {
        return {chosenFolder()};
    }
    const QString program = QCoreApplication::applicationDirPath();
    return {program + QStringLiteral("/../share/txsgraphicslib/help"),
            program + QStringLiteral("/../help")};
}

// The studio's file, else our own; the studio's name when there is neither.
QString helpFile() {
    QString studios = platform::nativePath(settings().helpFile());
    if (QFileInfo::exists(studios)) {
        return studios;
    }
    for (const QString& folder : ownFolders()) {
        QString own = QFileInfo(folder + u'/' + text(kLanguageFolder) + u'/' + kOwnFileName)
                          .canonicalFilePath(); // empty for none
        if (!own.isEmpty()) {
            return own;
        }
    }
    return studios;
}

void showPage(std::unique_ptr<HelpFile> file, const QString& page, QWidget* owner) {
    if (!openWindow()) {
        openWindow() = new HelpWindow;
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, openWindow(), &closeHelp);
    }
    openWindow()->showPage(std::move(file), page, owner);
}

} // namespace

void showHelp(HelpTopic topic, QWidget* owner) {
    if (currentHandler()) {
        currentHandler()({settings().helpFile(), HelpCall::kShowTopic, topic});
        return;
    }
    const QString path = helpFile();
    const auto tell = [&](const QString& words) {
        msgBox(words, Buttons::Ok, kProgramTitle, owner);
    };
    if (!QFileInfo::exists(path)) {
        tell(text(kFileMissing) + u'\n' + path);
        return;
    }
    try {
        auto file = std::make_unique<HelpFile>(path);
        const auto page = file->topicPage(static_cast<std::uint32_t>(topic));
        if (!page) {
            tell(text(kTopicMissing) + u'\n' + path);
            return;
        }
        showPage(std::move(file), *page, owner);
    } catch (const compound::Error& error) {
        tell(errorText(error));
    }
}

void closeHelp() {
    delete openWindow().data();
}

void offerHelp(QWidget& window, HelpTopic topic) {
    auto* key = new QShortcut(QKeySequence(Qt::Key_F1), &window);
    QObject::connect(key, &QShortcut::activated, &window,
                     [&window, topic] { showHelp(topic, &window); });
}

void offerHelp(QWidget& window, QAbstractButton* button, HelpTopic topic) {
    QObject::connect(button, &QAbstractButton::clicked, &window,
                     [&window, topic] { showHelp(topic, &window); });
    offerHelp(window, topic);
}

void setHelpHandler(HelpHandler handler) {
    currentHandler() = std::move(handler);
}

void setOwnHelpFolder(const QString& folder) {
    chosenFolder() = folder;
}

} // namespace app
