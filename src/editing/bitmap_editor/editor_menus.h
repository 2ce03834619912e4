// The menus of the bitmap editor.
#pragma once

#include <QMap>
#include <QObject>
#include <QString>

#include <functional>

class QAction;
class QMenu;
class QMenuBar;

namespace editing {

enum class EditorCommand {
    Save,
    Back,
    Undo,
    Redo,
    ZoomIn,
    ZoomOut,
    FlipVertical,
    FlipHorizontal,
    RotateLeft,
    RotateRight,
    RotateFreely,
    Saturation,
    Contrast,
    Brightness,
    ChangeColours,
    Invert,
    Help,
};

struct EditorMenu; // what stands in one of them

class EditorMenus : public QObject {
    Q_OBJECT

  public:
    // Fills the bar, without captions. `run` is called for what the user chooses.
    EditorMenus(QMenuBar* bar, std::function<void(EditorCommand)> run);

    void setCaptions();                             // in the program's language
    QString captionOf(EditorCommand command) const; // as it stands, with its "&"
    void setEnabled(EditorCommand command, bool enabled);

  private:
    struct Captioned {
        QAction* action;
        int textId;
    };

    QMenu* addMenu(QWidget* parent, const EditorMenu& menu);

    std::function<void(EditorCommand)> run_;
    QMap<EditorCommand, QAction*> actions_;
    QList<Captioned> captions_;
};

} // namespace editing
