// The field of the menu bar's free corner in which the user types what is to be found.
#pragma once

#include <QLineEdit>

class QMenuBar;

namespace browser {

class FindField : public QLineEdit {
    Q_OBJECT

  public:
    // Stands in the bar's corner, as far from the window's edge as everything below it. The bar
    // stays as high as it was.
    explicit FindField(QMenuBar* bar);

    void setCaptions();

    // Takes as much of a bar of that width (pixels) as its menus leave free, within bounds.
    void fit(int barWidth);

    QSize sizeHint() const override { return size_; }
    QSize minimumSizeHint() const override { return size_; }

  signals:
    void resultsWanted(); // the user goes down to what was found
    void chosen();        // Enter
    void left();          // Escape

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void colourHint();

    QMenuBar* bar_;
    QWidget* corner_; // the field, and the window's margin beside it
    QSize size_;
};

} // namespace browser
