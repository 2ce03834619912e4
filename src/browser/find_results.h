// What was found, in the place of the group's pictures: thumbnails with name and group below them,
// and a line that says how much it is and how far the library was read.
#pragma once

#include "finding/name_index.h"

#include <QFrame>
#include <QTimer>

#include <cstddef>
#include <memory>
#include <optional>

class QLabel;
class QListView;

namespace store {
struct Library;
}

namespace browser {

class FoundThumbnails;

struct ReadingProgress {
    bool isReading = false;
    std::size_t read = 0; // group files
    std::size_t all = 0;
};

class FindResults : public QFrame {
    Q_OBJECT

  public:
    explicit FindResults(QWidget* parent);
    ~FindResults() override;

    void setLibrary(const store::Library& library);
    void setCaptions();

    // What is still found keeps its selection and its place.
    void showResult(const finding::NameIndex::Result& result);
    void showProgress(const ReadingProgress& progress);
    void forget();

    // Gives the keyboard to what was found, whose first one is selected if none is.
    void enter();

    // Chooses the selected one, or the first.
    void chooseCurrent();

    // The selected one.
    std::optional<finding::Match> current() const;

  signals:
    void chosen(const finding::Match& match);
    void left();           // Escape
    void currentChanged(); // another one is selected, or none any more

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    class Model;
    void choose(int row);
    void bringThumbnails();
    void updateStatus();

    FoundThumbnails* thumbnails_;
    Model* model_;
    QLabel* status_;
    QListView* list_;
    QTimer soon_;
    ReadingProgress progress_;
};

} // namespace browser
