// The program's start: language, main window, event loop.

#include "app/long_operation.h"
#include "app/settings.h"
#include "app/texts.h"
#include "app/unattended.h"
#include "browser/frm_main.h"
#include "browser/window_state.h"
#include "platform/temporary_folder.h"
#include "startup/automation_server.h"
#include "startup/import_offer.h"
#include "startup/options.h"
#include "startup/screenshot.h"
#include "startup/system_requests.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QLibraryInfo>
#include <QTranslator>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr int kExitFailed = 1;
constexpr int kExitWrongUsage = 2;

std::vector<std::string> withoutProgramName(const QStringList& arguments) {
    std::vector<std::string> result;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        result.push_back(arguments[i].toStdString());
    }
    return result;
}

// Answers what needs no window; nothing when the program is to run.
std::optional<int> answerAtOnce(const startup::Options& options) {
    switch (options.task) {
    case startup::Options::Task::ShowHelp:
        std::fputs(startup::helpText().c_str(), stdout);
        return 0;
    case startup::Options::Task::ShowVersion:
        std::puts("txsgraphicslib " TXS_VERSION);
        return 0;
    case startup::Options::Task::Refuse:
        std::fprintf(stderr, "txsgraphicslib: %s\n\n%s", options.complaint.c_str(),
                     startup::helpText().c_str());
        return kExitWrongUsage;
    case startup::Options::Task::Run:
        break;
    }
    return std::nullopt;
}

// A picture of the window can be taken without any screen.
void chooseScreen(const startup::Options& options) {
    const bool hasScreen =
        qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (!options.screenshotFile.empty() && !hasScreen &&
        !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

// The toolkit's own words, such as those of a text field's menu. Without its texts they stay
// English.
void loadToolkitTexts(QTranslator& texts) {
    constexpr app::TextPair kFile{u"qtbase_de", u"qtbase_en"};
    if (texts.load(app::text(kFile), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&texts);
    }
}

void leave(browser::frmMain& window) {
    if (app::isLongOperationRunning()) { // until it has ended the window does not close
        app::afterLongOperation(&window, [&window] { leave(window); });
        return;
    }
    window.close();
    QCoreApplication::exit(); // also out of open dialogs
}

int run(const startup::Options& options) {
    // The language comes first, so that the window finds its texts.
    app::settings().chooseLanguage();
    QTranslator toolkitTexts;
    loadToolkitTexts(toolkitTexts);
    if (options.isAutomationServer) {
        return startup::runAutomationServer();
    }
    browser::frmMain window(browser::StartMode::Standalone);
    QObject::connect(&window, &browser::frmMain::unloaded, qApp, &QCoreApplication::quit);
    std::optional<startup::Screenshot> screenshot;
    if (!options.screenshotFile.empty()) {
        screenshot.emplace(window, QString::fromStdString(options.screenshotFile));
    }
    const startup::SystemRequests requests([&window] { leave(window); },
                                           [&window] { window.saveSettings(); });
    std::optional<startup::ImportOffer> offer;
    if (!options.groupFile.empty()) {
        offer.emplace(window, options.groupFile);
    }
    browser::restoreWindowState(window);
    window.show();
    const int status = QApplication::exec();
    platform::wipeTemporaryFolder(platform::CopiedPicture::Remove);
    return status;
}

} // namespace

int main(int argc, char** argv) {
    const startup::Options early =
        startup::parseOptions(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc),
                              startup::SingleDash::PassOver);
    if (const std::optional<int> status = answerAtOnce(early)) {
        return *status;
    }
    chooseScreen(early);
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("TXSGraphicsLib"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TXS_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.noravex.TXSGraphicsLib"));
    QGuiApplication::setWindowIcon(QIcon::fromTheme(QGuiApplication::desktopFileName()));
    QGuiApplication::setQuitOnLastWindowClosed(false); // hiding the window is no end
    const startup::Options options = startup::parseOptions(
        withoutProgramName(QCoreApplication::arguments()), startup::SingleDash::Refuse);
    if (const std::optional<int> status = answerAtOnce(options)) {
        return *status;
    }
    const QString groupFile = QString::fromStdString(options.groupFile);
    if (!groupFile.isEmpty() && !QFileInfo(groupFile).isFile()) {
        app::tell(groupFile + QStringLiteral(": there is no such file"));
        return kExitFailed;
    }
    return run(options);
}
