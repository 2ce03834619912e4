#include "editing/bitmap_editor/parameter_dialogs.h"

#include "app/modal_dialog.h"
#include "editing/bitmap_editor/amount_dialog.h"
#include "editing/bitmap_editor/imaging_error.h"
#include "editing/bitmap_editor/rotate_dialog.h"

#include <array>
#include <stdexcept>

namespace editing {
namespace {

using imaging::operations::ColourProperty;

enum Slot : int {
    kCancelSlot = 1,
    kBrightnessSlot = 71,
    kContrastSlot = 72,
    kSaturationSlot = 73,
    kHueSlot = 75,
    kPercentSlot = 85,
    kHueAngleSlot = 86,
    kRotateSlot = 91,
    kResizeSlot = 92,
    kAngleSlot = 109,
    kFillColourSlot = 110,
};

struct Change {
    std::uint32_t flag;
    ColourProperty property;
    int nameSlot;
    int unitSlot;
};

constexpr std::array kChanges{
    Change{ParameterDialogs::kBrightness, ColourProperty::Intensity, kBrightnessSlot, kPercentSlot},
    Change{ParameterDialogs::kContrast, ColourProperty::Contrast, kContrastSlot, kPercentSlot},
    Change{ParameterDialogs::kSaturation, ColourProperty::Saturation, kSaturationSlot,
           kPercentSlot},
    Change{ParameterDialogs::kHue, ColourProperty::Hue, kHueSlot, kHueAngleSlot},
};

Change changeOf(std::uint32_t flags) {
    for (const Change& change : kChanges) {
        if ((flags & change.flag) != 0) {
            return change;
        }
    }
    throw std::invalid_argument("the colour dialog's flags name no change");
}

void askModally(QDialog& dialog) {
    app::execModally(dialog);
    if (dialog.result() != QDialog::Accepted) {
        throw ImagingError(ImagingError::kCancelled, "the dialog was cancelled");
    }
}

} // namespace

void ParameterDialogs::setString(int slot, const QString& text) {
    strings_.insert(slot, text);
}

void ParameterDialogs::showRotate(QWidget* owner) {
    const RotateDialog::Texts texts{string(kRotateSlot), string(kAngleSlot), string(kResizeSlot),
                                    string(kFillColourSlot), string(kCancelSlot)};
    RotateDialog dialog(texts, owner);
    dialog.offer((flags_ & kOffersResize) != 0, (flags_ & kOffersFillColour) != 0);
    dialog.setAnswer({angle_, isResizing_, fillColour_});
    if ((flags_ & kPreview) != 0) {
        dialog.showPreview(preview_);
    }
    askModally(dialog);
    const RotateDialog::Answer answer = dialog.answer();
    angle_ = answer.angle;
    isResizing_ = answer.isResizing;
    fillColour_ = answer.fillColour;
}

void ParameterDialogs::showColour(QWidget* owner) {
    const Change change = changeOf(flags_);
    const AmountDialog::Texts texts{title_, string(change.nameSlot), string(change.unitSlot),
                                    string(kCancelSlot)};
    AmountDialog dialog(change.property, texts, owner);
    dialog.setAmount(amount_);
    if ((flags_ & kPreview) != 0) {
        dialog.showPreview(preview_);
    }
    askModally(dialog);
    amount_ = dialog.amount();
}

} // namespace editing
