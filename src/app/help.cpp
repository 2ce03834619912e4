#include "app/help.h"

#include "app/message_box.h"
#include "app/settings.h"
#include "app/texts.h"
#include "platform/paths.h"

#include <QAbstractButton>
#include <QFileInfo>
#include <QShortcut>

#include <utility>

namespace app {

namespace {

constexpr TextPair kFileMissing = {u"Die Hilfedatei fehlt:", u"The help file is missing:"};
constexpr TextPair kNoViewer = {u"Für die Hilfedatei gibt es keine Anzeige:",
                                u"There is no viewer for the help file:"};

HelpHandler& currentHandler() {
    static HelpHandler handler;
    return handler;
}

} // namespace

void showHelp(HelpTopic topic, QWidget* owner) {
    if (currentHandler()) {
        currentHandler()(topic);
        return;
    }
    const QString file = platform::nativePath(settings().helpFile());
    msgBox(text(QFileInfo::exists(file) ? kNoViewer : kFileMissing) + u'\n' + file, Buttons::Ok,
           kProgramTitle, owner);
}

void offerHelp(QWidget& window, QAbstractButton* button, HelpTopic topic) {
    const auto help = [&window, topic] { showHelp(topic, &window); };
    QObject::connect(button, &QAbstractButton::clicked, &window, help);
    auto* key = new QShortcut(QKeySequence(Qt::Key_F1), &window);
    QObject::connect(key, &QShortcut::activated, &window, help);
}

void setHelpHandler(HelpHandler handler) {
    currentHandler() = std::move(handler);
}

} // namespace app
