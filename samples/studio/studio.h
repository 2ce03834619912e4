// A drawing studio in small: it starts the picture library through the session bus, shows it inside
// its own window, takes pictures over and ends it. It uses nothing of the library but the bus.
#pragma once

#include <QDBusConnection>
#include <QMainWindow>

class QDBusMessage;
class QLabel;
class QLineEdit;
class QPushButton;

namespace studio {

class Studio : public QMainWindow {
    Q_OBJECT

  public:
    Studio();

  protected:
    // The library ends with its studio.
    void closeEvent(QCloseEvent* event) override;

  private slots:
    void showLibrary();
    void endLibrary();
    void takePictureOver(const QString& path);

  private:
    QDBusMessage callOf(const QString& method) const;
    void tell(const QString& line);
    void showPicture(const QString& fileName, const QByteArray& bytes);

    QDBusConnection bus_;
    QWidget* host_;
    QLabel* picture_;
    QLabel* status_;
    QLineEdit* notes_;
    QPushButton* show_;
    QPushButton* end_;
};

} // namespace studio
