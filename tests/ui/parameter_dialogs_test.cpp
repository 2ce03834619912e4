#include "app/number_text.h"
#include "app/patience.h"
#include "app/texts.h"
#include "editing/bitmap_editor/imaging_error.h"
#include "editing/bitmap_editor/parameter_dialogs.h"
#include "editing/picture_pane.h"
#include "imaging/operations/colour_operations.h"
#include "imaging/operations/rotation.h"
#include "ui/modal_dialog_steps.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QTest>

namespace {

using editing::ImagingError;
using editing::ParameterDialogs;
using imaging::operations::ColourProperty;

constexpr std::uint32_t kRotateFlags = 0x40000003;
constexpr QRgb kLeft = 0xFF3264C8;
constexpr QRgb kRight = 0xFFC86432;
constexpr QRgb kSeeThrough = 0x80C86432;

QImage twoColours(QSize size, QRgb right) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(kLeft);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::fill(row + size.width() / 2, row + size.width(), right);
    }
    return image;
}

class ParameterDialogsTest : public testing::Test {
  protected:
    ParameterDialogsTest() {
        app::overrideDecimalSeparator(u',');
        for (const int slot : {1, 71, 72, 73, 75, 85, 86, 91, 92, 109, 110}) {
            dialogs_.setString(slot, QStringLiteral("slot %1").arg(slot));
        }
        dialogs_.setTitle("&Title");
    }
    ~ParameterDialogsTest() override { app::overrideDecimalSeparator({}); }

    static void type(QDialog& dialog, const QString& number) {
        QTest::keyClicks(dialog.focusWidget(), number);
    }
    static void press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    }

    // What the pane shows once the picture was shrunk.
    static QImage shownIn(QDialog& dialog, const char* name) {
        auto* before = dialog.findChild<editing::PicturePane*>("picVorher");
        EXPECT_TRUE(until([&] { return !before->isBusy(); }));
        return dialog.findChild<editing::PicturePane*>(name)->image();
    }

    static QStringList textsIn(const QDialog& dialog) {
        QStringList texts{dialog.windowTitle()};
        for (const auto* frame : dialog.findChildren<QGroupBox*>()) {
            texts.append(frame->title());
        }
        texts.append(dialog.findChild<QLabel*>("lblBetrag")->text());
        for (const auto* button : dialog.findChildren<QAbstractButton*>()) {
            texts.append(button->text());
        }
        texts.removeAll("OK");
        texts.sort();
        return texts;
    }

    void expectRotateCancelled(const std::function<void(QDialog&)>& steps) {
        const auto show = [this] {
            try {
                dialogs_.showRotate(nullptr);
                ADD_FAILURE() << "not cancelled";
            } catch (const ImagingError& error) {
                EXPECT_EQ(error.number(), 20150);
            }
        };
        inModalDialog(show, steps);
    }

    ParameterDialogs dialogs_;
};

TEST_F(ParameterDialogsTest, TheRotateDialogGivesAngleSizeAndColour) {
    dialogs_.setFlags(kRotateFlags);
    dialogs_.setInitialColour(QColor(255, 0, 0));
    inModalDialog([this] { dialogs_.showRotate(nullptr); },
                  [](QDialog& dialog) {
                      EXPECT_EQ(textsIn(dialog), (QStringList{"slot 1", "slot 109", "slot 110",
                                                              "slot 91", "slot 92"}));
                      EXPECT_EQ(dialog.findChild<QDoubleSpinBox*>()->value(), 0);
                      type(dialog, "-33,25");
                      EXPECT_EQ(dialog.findChild<QSlider*>()->value(), -3325);
                      dialog.findChild<QCheckBox*>()->setChecked(false);
                      inModalDialog([&] { press(dialog, "cmdFarbe"); },
                                    [](QDialog& colours) {
                                        auto& chooser = dynamic_cast<QColorDialog&>(colours);
                                        EXPECT_EQ(chooser.currentColor(), QColor(255, 0, 0));
                                        chooser.setCurrentColor(QColor(1, 2, 3));
                                        chooser.accept();
                                    });
                      QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
                      EXPECT_FALSE(dialog.isVisible());
                  });
    EXPECT_EQ(dialogs_.angle(), -3325);
    EXPECT_FALSE(dialogs_.isResizing());
    EXPECT_EQ(dialogs_.fillColour(), QColor(1, 2, 3));
}

TEST_F(ParameterDialogsTest, ACancelledDialogChangesNoAnswer) {
    dialogs_.setFlags(kRotateFlags);
    dialogs_.setInitialAngle(700);
    dialogs_.setInitialColour(Qt::red);
    expectRotateCancelled([](QDialog& dialog) {
        type(dialog, "90");
        press(dialog, "cmdAbbruch");
        EXPECT_FALSE(dialog.isVisible());
    });
    expectRotateCancelled([](QDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QSlider*>()->value(), 700);
        QTest::keyClick(dialog.findChild<QSlider*>(), Qt::Key_End);
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(dialogs_.angle(), 700);
    EXPECT_EQ(dialogs_.fillColour(), QColor(Qt::red));
}

TEST_F(ParameterDialogsTest, TheFlagsSayWhatTheRotateDialogAsksFor) {
    dialogs_.setFlags(0x40000000);
    dialogs_.setInitialColour(Qt::green);
    inModalDialog([this] { dialogs_.showRotate(nullptr); },
                  [](QDialog& dialog) {
                      EXPECT_FALSE(dialog.findChild<QCheckBox*>()->isVisible());
                      EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdFarbe")->isVisible());
                      QTest::keyClick(&dialog, Qt::Key_Return);
                  });
    EXPECT_TRUE(dialogs_.isResizing());
    EXPECT_EQ(dialogs_.fillColour(), QColor(Qt::green));
    EXPECT_THROW(dialogs_.showColour(nullptr), std::invalid_argument);
}

struct ColourCase {
    std::uint32_t flags;
    ColourProperty property;
    const char* name;
    const char* unit;
    const char* typed;
    int amount;
    int most;
};

class ColourDialogTest : public ParameterDialogsTest,
                         public testing::WithParamInterface<ColourCase> {};

INSTANTIATE_TEST_SUITE_P(Properties, ColourDialogTest,
                         testing::Values(ColourCase{0x40000008, ColourProperty::Saturation,
                                                    "slot 73", "slot 85", "-40,5", -405, 1000},
                                         ColourCase{0x40000004, ColourProperty::Contrast, "slot 72",
                                                    "slot 85", "25", 250, 1000},
                                         ColourCase{0x40000002, ColourProperty::Intensity,
                                                    "slot 71", "slot 85", "12,3", 123, 1000},
                                         ColourCase{0x40000020, ColourProperty::Hue, "slot 75",
                                                    "slot 86", "-120,25", -12025, 18000}));

TEST_P(ColourDialogTest, ShowsWhatTheAmountWillDoToThePicture) {
    const ColourCase& expected = GetParam();
    const QImage picture = twoColours({3000, 1000}, kRight);
    QImage changed = picture;
    imaging::operations::apply({expected.property, expected.amount}, changed);
    dialogs_.setFlags(expected.flags);
    dialogs_.setPreview(picture);
    inModalDialog([this] { dialogs_.showColour(nullptr); },
                  [&](QDialog& dialog) {
                      EXPECT_EQ(textsIn(dialog),
                                (QStringList{"&Title", "slot 1", expected.name, expected.unit}));
                      auto* slider = dialog.findChild<QSlider*>();
                      EXPECT_EQ(slider->minimum(), -expected.most);
                      EXPECT_EQ(slider->maximum(), expected.most);
                      EXPECT_EQ(slider->value(), 0);
                      type(dialog, expected.typed);
                      const QImage after = shownIn(dialog, "picNachher");
                      ASSERT_FALSE(after.isNull());
                      EXPECT_LE(after.width(), 500);
                      for (const int quarter : {1, 3}) {
                          EXPECT_EQ(after.pixel(quarter * after.width() / 4, after.height() / 2),
                                    changed.pixel(quarter * 750, 500));
                      }
                      QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
                  });
    EXPECT_EQ(dialogs_.amount(), expected.amount);
}

TEST_F(ParameterDialogsTest, TheRotatePreviewFollowsSizeAndColour) {
    const QImage picture = twoColours({60, 20}, kSeeThrough);
    dialogs_.setFlags(kRotateFlags);
    dialogs_.setInitialColour(QColor(0, 255, 0));
    dialogs_.setPreview(picture);
    expectRotateCancelled([&](QDialog& dialog) {
        using imaging::operations::Canvas;
        using imaging::operations::rotated;
        EXPECT_EQ(shownIn(dialog, "picVorher"), picture);
        dialog.findChild<QSlider*>()->setValue(4500);
        EXPECT_EQ(shownIn(dialog, "picNachher"),
                  rotated(picture, {4500, Canvas::Grow, 0xFF00FF00}));
        QTest::mouseClick(dialog.findChild<QCheckBox*>(), Qt::LeftButton, {}, QPoint(8, 8));
        EXPECT_EQ(shownIn(dialog, "picNachher"),
                  rotated(picture, {4500, Canvas::Keep, 0xFF00FF00}));
    });
    dialogs_.setPreview({});
    expectRotateCancelled(
        [&](QDialog& dialog) { EXPECT_TRUE(shownIn(dialog, "picNachher").isNull()); });
}

} // namespace
