// An amount that is set with a slider or typed as a number: two controls for one value.
#pragma once

#include <QWidget>

class QDoubleSpinBox;
class QLabel;
class QSlider;

namespace editing {

class AmountField : public QWidget {
    Q_OBJECT

  public:
    // Values are whole numbers from -most to most; the user reads them divided by `perUnit`, a
    // power of ten.
    struct Scale {
        int most;
        int perUnit;
        int step; // of an arrow key, in values
    };

    // Thousandths, shown in per cent.
    static constexpr Scale kPercent{1000, 10, 10};
    // Hundredths of a degree within half a turn either way, shown in degrees.
    static constexpr Scale kDegrees{18'000, 100, 100};

    AmountField(const Scale& scale, const QString& caption, QWidget* parent);

    int value() const { return value_; }
    void setValue(int value); // the nearest one that the scale has
    void startTyping();       // gives the number the focus, selected

  signals:
    void valueChanged(int value);

  private:
    void takeTyped(double number);

    Scale scale_;
    int value_ = 0;
    QLabel* caption_;
    QSlider* slider_;
    QDoubleSpinBox* number_;
};

} // namespace editing
