// A picture before and after a change, side by side. The change is done on a copy that is no larger
// than what is shown, so that it can follow a slider however large the picture is.
#pragma once

#include <QImage>
#include <QWidget>

#include <functional>

namespace editing {

class PicturePane;

class ChangePreview : public QWidget {
    Q_OBJECT

  public:
    using Change = std::function<QImage(const QImage& before)>;

    explicit ChangePreview(QWidget* parent);

    // Shrinks the picture on a worker; both sides appear when that is done.
    void setPicture(const QImage& picture);

    // Shows what the change gives. It is called in the window's thread, with few pixels.
    void setChange(Change change);

  private:
    void showAfter();

    PicturePane* before_;
    PicturePane* after_;
    Change change_;
};

} // namespace editing
