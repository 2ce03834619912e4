// The picture files of one folder.
#pragma once

#include <QListWidget>
#include <QString>
#include <QStringList>

namespace editing {

// The suffixes of all kinds of pictures.
QStringList pictureSuffixes();

class FileList : public QListWidget {
    Q_OBJECT

  public:
    // Lists files whose names end in one of `suffixes` (such as ".bmp"), whatever their case.
    FileList(const QStringList& suffixes, QWidget* parent);

    // Lists a folder's regular files by name, without regard to case; nothing is selected. A folder
    // that cannot be listed shows none.
    void setFolder(const QString& folder);

    const QString& folder() const { return folder_; }

    QStringList fileNames() const;

    // The selected file's name without its folder; empty for none.
    QString fileName() const;

  signals:
    // The user chose a file by mouse or keyboard; a click on the chosen one counts too.
    void fileClicked(const QString& name);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    QStringList suffixes_;
    QString folder_;
    QString nameAtPress_;
    bool isPressed_ = false;
};

} // namespace editing
