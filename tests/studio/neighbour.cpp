// Another program on the desktop: it has pictures to give and takes some. What it is to do comes in
// lines on standard input, what happens to it goes in lines to standard output:
//   offer files A|B   offer image   offer death     what it gives from now on
//   copy   paste                                     the clipboard
// Pressing the mouse on its window begins to drag what it offers; the window takes what is dropped.
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QDragEnterEvent>
#include <QImage>
#include <QMimeData>
#include <QSocketNotifier>
#include <QTextStream>
#include <QUrl>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

void say(const QString& line) {
    QTextStream(stdout) << line << Qt::endl;
}

// Dies when it is asked for what it has promised.
class DeadlyData : public QMimeData {
  public:
    QStringList formats() const override { return {QStringLiteral("text/uri-list")}; }

  protected:
    QVariant retrieveData(const QString&, QMetaType) const override { std::_Exit(1); }
};

QMimeData* dataFor(const QString& offer) {
    if (offer == QLatin1String("death")) {
        return new DeadlyData;
    }
    auto* data = new QMimeData;
    if (offer == QLatin1String("image")) {
        QImage image(8, 6, QImage::Format_ARGB32);
        image.fill(QColor(10, 20, 30, 40));
        data->setImageData(image);
        return data;
    }
    QList<QUrl> files;
    for (const QString& file : offer.section(u' ', 1).split(u'|')) {
        files.append(QUrl::fromLocalFile(file));
    }
    data->setUrls(files);
    return data;
}

QString described(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls()) {
        files.append(url.toLocalFile());
    }
    const auto image = data.imageData().value<QImage>();
    return files.join(u'|') +
           (image.isNull() ? QString()
                           : QStringLiteral(" and %1x%2").arg(image.width()).arg(image.height()));
}

class Neighbour : public QWidget {
  public:
    Neighbour() : input_(fileno(stdin), QSocketNotifier::Read) {
        setWindowTitle(QStringLiteral("Neighbour"));
        setAcceptDrops(true);
        connect(&input_, &QSocketNotifier::activated, this, [this] { obey(); });
    }

  protected:
    void mousePressEvent(QMouseEvent*) override {
        auto* drag = new QDrag(this);
        drag->setMimeData(dataFor(offer_));
        const Qt::DropAction done = drag->exec(Qt::CopyAction);
        say(QStringLiteral("drag ended ") + QString::number(done));
    }
    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }
    void dragMoveEvent(QDragMoveEvent* event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent* event) override {
        event->acceptProposedAction();
        say(QStringLiteral("dropped ") + described(*event->mimeData()));
    }

  private:
    void obey() {
        std::string text;
        if (!std::getline(std::cin, text)) {
            QCoreApplication::quit();
            return;
        }
        const QString line = QString::fromStdString(text);
        if (line == QLatin1String("copy")) {
            QGuiApplication::clipboard()->setMimeData(dataFor(offer_));
            say(QStringLiteral("copied"));
        } else if (line == QLatin1String("paste")) {
            say(QStringLiteral("pasted ") + described(*QGuiApplication::clipboard()->mimeData()));
        } else {
            offer_ = line.section(u' ', 1);
            say(QStringLiteral("ready"));
        }
    }

    QSocketNotifier input_;
    QString offer_;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    Neighbour neighbour;
    neighbour.setGeometry(1000, 700, 300, 200);
    neighbour.show();
    return QApplication::exec();
}
