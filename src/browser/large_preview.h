// The large preview of the chosen picture, `imgVorschau`: the picture fitted into a quiet frame,
// its proportions kept, small pictures at their own size.
#pragma once

#include "picture/picture.h"

#include <QFrame>

#include <optional>

namespace browser {

class LargePreview : public QFrame {
    Q_OBJECT

  public:
    explicit LargePreview(QWidget* parent = nullptr);

    // Of a picture larger than the frame only as much is kept as a screen can show.
    void showPicture(picture::Picture picture);

    // For a picture whose bytes cannot be decoded.
    void showUndecodable();

    void showNothing();

    bool isEmpty() const { return content_ == Content::Nothing; }

  signals:
    void activated(); // double click

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    enum class Content { Nothing, Picture, Undecodable };

    Content content_ = Content::Nothing;
    std::optional<picture::Picture> picture_;
    QImage fitted_; // the picture at the frame's size; null until painted
    double fittedRatio_ = 1;
};

} // namespace browser
