// The line below the main window's parts: on its left what the last command has done, on its right
// how many pictures the group has and which page of them is shown.
#pragma once

#include <QLabel>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>

namespace browser {

struct ShownPages {
    std::size_t pictures = 0;
    int page = 1;
    int pages = 1;
};

QString kilobytesRoundedUp(std::uint64_t bytes); // "12 KB"

class StatusLine : public QWidget {
    Q_OBJECT

  public:
    explicit StatusLine(QWidget* parent);

    // Stays until something else is told. What does not fit is cut; the tool tip, which Tab brings
    // up as well, has all of it and the first of the `details`. Enter or a click on it shows all.
    void tell(const QString& result, const QStringList& details = {});

    void showPages(const ShownPages& pages);
    // Of what is selected: sizes; empty for nothing.
    void showSelection(const QString& text);
    void showNoGroup();

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    class ResultLabel;

    void cut();
    void showNumbers();

    ResultLabel* lblErgebnis_;
    QLabel* lblSeiten_;
    QString result_;
    QStringList details_;
    QString pages_;
    QString selection_;
};

} // namespace browser
