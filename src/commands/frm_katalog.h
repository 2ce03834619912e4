// The window that prints a group's pictures on paper, or writes them as PDF.
#pragma once

#include "catalogue/catalogue.h"
#include "commands/selection_context.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QLabel;
class QPrinter;
class QPushButton;
class QRadioButton;

namespace commands {

class LibraryView;

class frmKatalog : public QDialog {
    Q_OBJECT

  public:
    // The view must outlive the window.
    frmKatalog(LibraryView& view, QWidget* owner);

    // Shows the window for the selected group, of which there must be one, and returns when it is
    // closed: by the user, or after a catalogue. What keeps one from being made is told in a box;
    // then the window stays open.
    void openFor(const SelectionContext& context);

  private:
    QWidget* makePaper();
    void arrange();
    void connectControls();

    catalogue::Paper paper() const;
    void print();
    void savePdf();
    void writePdf(const QString& file);
    // `work` gets what the catalogue is to hold; the result is told when it is done.
    void make(const std::function<catalogue::Printed(const std::vector<catalogue::Section>&,
                                                     store::Progress&)>& work,
              const QString& result);

    LibraryView& view_;
    SelectionContext context_;
    QLabel* lblGruppe_;
    QCheckBox* chkUntergruppen_ = nullptr;
    QRadioButton* optA4_ = nullptr;
    QRadioButton* optLetter_ = nullptr;
    QPushButton* cmdDrucken_ = nullptr;
    QPushButton* cmdPdf_ = nullptr;
    QPushButton* cmdZur_ck_ = nullptr;
};

} // namespace commands
