#include "app/help.h"

#include "app/message_box.h"
#include "app/settings.h"
#include "app/texts.h"
#include "platform/help.h"
#include "platform/paths.h"

namespace app {

namespace {

constexpr TextPair kFileMissing = {u"Die Hilfedatei fehlt:", u"The help file is missing:"};
constexpr TextPair kNoViewer = {u"Für die Hilfedatei gibt es keine Anzeige:",
                                u"There is no viewer for the help file:"};

} // namespace

void showHelp(HelpTopic topic, QWidget* owner) {
    const QString file = platform::nativePath(settings().helpFile());
    const platform::HelpOutcome outcome = platform::displayHelp(file, static_cast<int>(topic));
    if (outcome == platform::HelpOutcome::Shown)
        return;
    const bool isMissing = outcome == platform::HelpOutcome::FileMissing;
    msgBox(text(isMissing ? kFileMissing : kNoViewer) + u'\n' + file, Buttons::Ok, kProgramTitle,
           owner);
}

} // namespace app
