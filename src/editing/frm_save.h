// The dialog that stores a picture file in a group of the user's choice, under a name of the user's
// choice. A picture that has the name already is overwritten only after a question.
#pragma once

#include "store/library.h"

#include <QDialog>
#include <QImage>
#include <QString>

#include <filesystem>
#include <optional>

namespace groups {
class GroupTree;
}

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace editing {

class PicturePane;

class frmSave : public QDialog {
    Q_OBJECT

  public:
    struct Request {
        std::filesystem::path file;     // stored as it is
        store::GroupAddress shownGroup; // whose pictures the main window shows; selected at first
        QString name;                   // proposed
        QString kind;                   // the type code, for reading
        QImage preview;                 // pixels are shared
    };

    // Whether the pictures that the main window shows have changed.
    enum class Outcome { ShownGroupUnchanged, ShownGroupChanged };

    explicit frmSave(QWidget* owner);
    ~frmSave() override;

    // Opens the dialog modally and returns when the picture is stored or the user gives up. What
    // the store throws is told in a box with the group and its file, and the dialog stays open; a
    // library that cannot be listed is told, too, and no dialog opens. The library is copied.
    Outcome openFor(const store::Library& library, const Request& request);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    struct Target {
        store::GroupAddress address;
        QString path;
    };
    enum class NameState { Free, Taken, Invalid };

    void makeControls();
    void setCaptions();
    void arrange();
    void fillTree(const store::GroupAddress& selected);
    std::optional<Target> target() const;

    void save();
    void addToGroup(const Target& target);
    NameState stateOfName(const Target& target, const store::PictureName& name);
    void tell(int textId);

    std::optional<store::Library> library_;
    Request request_;
    Outcome outcome_ = Outcome::ShownGroupUnchanged;

    QGroupBox* fraOptionen_ = nullptr;
    QLabel* lblGruppe_ = nullptr;
    groups::GroupTree* tvwGruppen_ = nullptr;
    QLabel* lblName_ = nullptr;
    QLineEdit* txtName_ = nullptr;
    QLabel* lblDateityp_ = nullptr;
    QLabel* lblTyp_ = nullptr;
    QGroupBox* fraVorschau_ = nullptr;
    PicturePane* picVorschau_ = nullptr;
    QPushButton* cmdSave_ = nullptr;
    QPushButton* cmdEnde_ = nullptr;
    QPushButton* cmdHelp_ = nullptr;
};

} // namespace editing
