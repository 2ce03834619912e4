// The dialogs that ask for an operation's parameters while they show what it would do: one for
// turning, one for colours. They are set up, shown, and asked for the answer.
//
// Texts are handed over by slot:
//     1 the button that cancels       92 resize to hold the whole picture
//     71 brightness   72 contrast     73 saturation   75 colour change   91 rotate
//     85 an amount in per cent        86 an angle, of colours      109 an angle, of turning
//     110 the background's colour
#pragma once

#include <QColor>
#include <QImage>
#include <QMap>
#include <QString>

#include <cstdint>

class QWidget;

namespace editing {

class ParameterDialogs {
  public:
    // What is asked for. The rotate dialog offers what is set of the first two; the colour dialog
    // is for the one of the others that is set.
    enum Flag : std::uint32_t {
        kOffersResize = 0x1,
        kOffersFillColour = 0x2,
        kBrightness = 0x2,
        kContrast = 0x4,
        kSaturation = 0x8,
        kHue = 0x20,
        kPreview = 0x40000000, // shows the picture before and after
    };

    // A slot without a meaning is kept and not used.
    void setString(int slot, const QString& text);

    // The colour dialog's; the rotate dialog bears the text of slot 91. Shown as it stands.
    void setTitle(const QString& title) { title_ = title; }
    void setFlags(std::uint32_t flags) { flags_ = flags; }

    // What the next dialog shows first: hundredths of a degree, clockwise, at most half a turn
    // either way; the amount in the units of imaging/operations/colour_operations.h.
    void setInitialAngle(int hundredths) { angle_ = hundredths; }
    void setInitialColour(const QColor& colour) { fillColour_ = colour; }
    void setInitialAmount(int amount) { amount_ = amount; }

    // Pixels are shared with the caller; a null image lets go of them.
    void setPreview(const QImage& picture) { preview_ = picture; }

    // Shows the dialog modally and returns once it was confirmed. Throws ImagingError(kCancelled)
    // if it was cancelled; the answers are as they were. The colour dialog throws
    // std::invalid_argument if the flags name none of the four changes.
    void showRotate(QWidget* owner);
    void showColour(QWidget* owner);

    // The answers: the dialog's, or else what was set before.
    int angle() const { return angle_; }
    bool isResizing() const { return isResizing_; }
    QColor fillColour() const { return fillColour_; }
    int amount() const { return amount_; } // fits into 16 bits

  private:
    QString string(int slot) const { return strings_.value(slot); }

    QMap<int, QString> strings_;
    QString title_;
    std::uint32_t flags_ = 0;
    QImage preview_;
    int angle_ = 0;
    bool isResizing_ = true;
    QColor fillColour_ = Qt::black;
    int amount_ = 0;
};

} // namespace editing
