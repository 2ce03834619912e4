// A group file that the program was started with.
#pragma once

#include <QObject>
#include <QTimer>

#include <filesystem>

namespace browser {
class frmMain;
}

namespace startup {

// Once the window has loaded it opens the import window with the file chosen; the user decides.
class ImportOffer : public QObject {
    Q_OBJECT

  public:
    // The window must outlive the object.
    ImportOffer(browser::frmMain& window, std::filesystem::path file);

  private:
    void lookAgain();

    browser::frmMain& window_;
    std::filesystem::path file_;
    QTimer timer_;
};

} // namespace startup
