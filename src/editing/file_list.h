// The picture files of one folder.
#pragma once

#include "app/job.h"

#include <QListWidget>
#include <QString>
#include <QStringList>

#include <functional>

namespace editing {

// The suffixes of all kinds of pictures.
QStringList pictureSuffixes();

class FileList : public QListWidget {
    Q_OBJECT

  public:
    // Lists files whose names end in one of `suffixes` (such as ".bmp"), whatever their case.
    FileList(const QStringList& suffixes, QWidget* parent);

    // Lists a folder's regular files by name, without regard to case. The list is empty until the
    // folder has been read beside the window; then the file of that name is selected, if there is
    // one. A folder that cannot be listed shows none.
    void setFolder(const QString& folder, const QString& fileToSelect = {});

    const QString& folder() const { return folder_; }

    // Whether the folder is still being read.
    bool isBusy() const { return names_.isBusy(); }

    // Calls `action` once the folder has been read, at once if it has been. Choosing a folder or
    // another action meanwhile makes it void, and so does the end of the window.
    void afterReading(std::function<void()> action);

    QStringList fileNames() const;

    // The selected file's name without its folder; of several that of the current one, or of the
    // first; empty for none.
    QString fileName() const;

    // Lets the user select several files, which only their window can make something of.
    void allowSeveral() { setSelectionMode(QAbstractItemView::ExtendedSelection); }
    QStringList selectedFileNames() const; // from the top

  signals:
    // The user chose a file by mouse or keyboard; a click on the chosen one counts too.
    void fileClicked(const QString& name);

  protected:
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void showNames();

    QStringList suffixes_;
    QString folder_;
    QString fileToSelect_;
    app::JobFor<QStringList> names_;
    std::function<void()> afterReading_;
    QString nameAtPress_;
    bool isPressed_ = false;
};

} // namespace editing
