// The bitmap editor: one picture of a group, turned, mirrored and recoloured, with steps back and
// forward again, and saved under any name.
//
// Changes run beside the window's thread, one after the other: what the user chooses meanwhile
// waits. A change that fails is told in a box, and picture and history stay as they were.
#pragma once

#include "editing/bitmap_editor/bitmap_document.h"
#include "editing/bitmap_editor/editor_menus.h"
#include "editing/bitmap_editor/parameter_dialogs.h"
#include "editing/picture_in_group.h"
#include "store/library.h"

#include <QDialog>

#include <functional>
#include <memory>

class QLabel;

namespace editing {

class LeadControl;

class frmOptionenBMP : public QDialog {
    Q_OBJECT

  public:
    // Whether the pictures that the main window shows may have changed.
    enum class Outcome { Unchanged, ToBeRefreshed };

    explicit frmOptionenBMP(QWidget* owner);
    ~frmOptionenBMP() override;

    // Opens the window modally and returns when it is closed and has removed its history. The
    // picture's group is the one that the main window shows. A picture that cannot be read or
    // copied, or is faulty, is told in a box owned by the window's owner, and no window opens.
    Outcome openFor(const store::Library& library, const PictureInGroup& picture);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    using Edit = BitmapDocument::Edit;
    enum class Control { Stays, IsHidden };

    bool load();
    void setCaptions();
    void setStrings();
    void run(EditorCommand command);
    void runEdit(EditorCommand command);

    // Does a step on the document beside the window and shows what it gives.
    void doStep(const std::function<void(BitmapDocument&)>& step);
    void change(const Edit& edit, Control control = Control::Stays);
    void rotateFreely();
    void changeColours(EditorCommand command);
    bool isConfirmed(void (ParameterDialogs::*ask)(QWidget*));

    void save();
    void back();
    void startAfresh();
    void updateHistoryItems();
    void showSize();
    void showZoom(double factor);
    void tell(const std::exception& failure);
    void closeDocument();

    EditorMenus* menus_;
    QLabel* lblBildname_;
    LeadControl* LeadControl_;
    QLabel* lblGroesse_;
    QLabel* lblZoom_;
    ParameterDialogs dlgLead_;
    const store::Library* library_ = nullptr; // while it is open
    PictureInGroup picture_;
    std::unique_ptr<BitmapDocument> document_; // while it is open
    Outcome outcome_ = Outcome::Unchanged;
};

} // namespace editing
