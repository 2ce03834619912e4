// The folders of one drive as a tree that is read level by level when it is opened. A level is read
// beside the window; its rows come when that is done.
#pragma once

#include <QObject>
#include <QString>
#include <QTreeWidget>

#include <memory>

namespace editing {

class FolderList : public QTreeWidget {
    Q_OBJECT

  public:
    explicit FolderList(QWidget* parent);

    // The chosen folder, a path of this system; empty before the first one is set.
    const QString& folder() const { return folder_; }

    // Shows the tree of `drive` (a folder) with the drive itself chosen. False, with nothing
    // changed, when it cannot be listed.
    bool setDrive(const QString& drive);

    // Chooses a folder, opening the tree down to it; a folder outside the drive brings its own
    // drive along. False, with nothing changed, when it cannot be listed.
    bool setFolder(const QString& folder);

    // Whether a level is still being read.
    bool isBusy() const;

    // Brings the folder's name into sight as well, however deep it lies.
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

  signals:
    // Another folder is chosen, by the user or by a call.
    void folderChanged();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void updateGeometries() override;
    int sizeHintForColumn(int column) const override;

  private:
    void showDrive(const QString& drive);
    void choose(const QString& folder);
    void fill(QTreeWidgetItem* item);
    void addRows(QTreeWidgetItem* item, const QStringList& names);
    QTreeWidgetItem* openDownTo(const QString& folder);

    std::unique_ptr<QObject> reading_; // owns the jobs of this drive

    QString folder_;
    QString drive_;
};

} // namespace editing
