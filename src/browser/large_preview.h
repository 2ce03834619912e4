// The large preview of the chosen picture, `imgVorschau`: the picture fitted into a quiet frame,
// its proportions kept, small pictures at their own size. Reading, decoding and scaling are done on
// worker threads.
#pragma once

#include "app/job.h"
#include "base/bytes.h"
#include "picture/picture.h"

#include <QFrame>
#include <QTimer>

#include <cstddef>
#include <functional>
#include <optional>

namespace browser {

class LargePreview : public QFrame {
    Q_OBJECT

  public:
    explicit LargePreview(QWidget* parent = nullptr);

    // Shows the picture of these bytes as soon as they are read (on a worker; what `read` throws,
    // like what cannot be decoded, is shown as a torn picture). The picture before stays a moment,
    // then the frame is empty. Of a picture larger than the frame only as much is kept as a screen
    // can show.
    void load(std::function<base::Bytes()> read);

    // For a picture that cannot be read.
    void showUndecodable();

    void showNothing();

    bool isEmpty() const { return content_ == Content::Nothing; }

    // Whether a picture is being read, decoded or scaled.
    bool isBusy() const { return job_.isBusy(); }

  signals:
    void activated(); // double click

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    enum class Content { Nothing, Picture, Undecodable };

    // The picture in the frame of one size and screen.
    struct Fit {
        QSize area; // device-independent pixels
        double screenRatio = 1;
        bool operator==(const Fit&) const = default;
    };
    struct Fitted {
        std::optional<picture::Picture> picture; // nothing if it cannot be decoded
        QImage image;
        Fit fit;
    };

    Fit presentFit() const;
    void fitAnew();
    void takeFitted();
    void show(Content content);

    Content content_ = Content::Nothing;
    Fitted shown_;
    app::JobFor<Fitted> job_;
    QTimer patience_; // runs while the picture before is still shown
};

} // namespace browser
