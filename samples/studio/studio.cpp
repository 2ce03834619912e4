#include "studio.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPixmap>
#include <QPushButton>

#include <cstdio>

namespace studio {
namespace {

const QString kService = QStringLiteral("com.noravex.TXSGraphicsLib");
const QString kObject = QStringLiteral("/com/noravex/TXSGraphicsLib/Connect");
const QString kInterface = QStringLiteral("com.noravex.TXSGraphicsLib.Connect");
constexpr QSize kPictureSize(220, 220);
constexpr int kStartTimeout = 60'000; // milliseconds; the first call starts the library

QString inLanguage(const char16_t* german, const char16_t* english) {
    const bool isGerman = QLocale::system().language() == QLocale::German;
    return QString::fromUtf16(isGerman ? german : english);
}

} // namespace

Studio::Studio()
    : bus_(QDBusConnection::sessionBus()),
      host_(new QWidget),
      picture_(new QLabel),
      status_(new QLabel),
      notes_(new QLineEdit),
      show_(new QPushButton(inLanguage(u"Bibliothek &zeigen", u"&Show library"))),
      end_(new QPushButton(inLanguage(u"Bibliothek &beenden", u"&End library"))) {
    setWindowTitle(inLanguage(u"Studio-Beispiel", u"Sample studio"));
    host_->setAttribute(Qt::WA_NativeWindow); // the library needs a window of the display's own
    host_->setObjectName(QStringLiteral("host"));
    notes_->setPlaceholderText(inLanguage(u"Notiz zum Bild", u"Note on the picture"));
    picture_->setFixedSize(kPictureSize);
    picture_->setAlignment(Qt::AlignCenter);
    picture_->setFrameShape(QFrame::StyledPanel);
    status_->setWordWrap(true);
    status_->setFixedWidth(kPictureSize.width());
    auto* centre = new QWidget;
    auto* row = new QHBoxLayout(centre);
    auto* column = new QVBoxLayout;
    for (QWidget* control :
         std::initializer_list<QWidget*>{show_, end_, picture_, notes_, status_}) {
        column->addWidget(control);
    }
    column->addStretch();
    row->addWidget(host_, 1);
    row->addLayout(column);
    setCentralWidget(centre);
    resize(1240, 760);
    connect(show_, &QPushButton::clicked, this, &Studio::showLibrary);
    connect(end_, &QPushButton::clicked, this, &Studio::endLibrary);
    connect(notes_, &QLineEdit::returnPressed, this, [this] {
        tell(inLanguage(u"Notiz: %1", u"Note: %1").arg(notes_->text()));
        notes_->clear();
    });
    bus_.connect(kService, kObject, kInterface, QStringLiteral("PictureSelected"), this,
                 SLOT(takePictureOver(QString)));
}

QDBusMessage Studio::callOf(const QString& method) const {
    return QDBusMessage::createMethodCall(kService, kObject, kInterface, method);
}

// The bus starts the library when it is not running. This window must stay alive meanwhile: the
// library becomes a part of it.
void Studio::showLibrary() {
    QDBusMessage call = callOf(QStringLiteral("ShowGraficsLib"));
    call << static_cast<uint>(host_->winId());
    auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call, kStartTimeout), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<> reply = *answer;
        tell(reply.isError() ? reply.error().message()
                             : inLanguage(u"Die Bibliothek ist da.", u"The library is here."));
        answer->deleteLater();
    });
}

// Without a running library there is nothing to end; the bus shall not start one for it.
void Studio::endLibrary() {
    QDBusMessage call = callOf(QStringLiteral("Terminate"));
    call.setAutoStartService(false);
    bus_.asyncCall(call);
    tell(inLanguage(u"Die Bibliothek ist beendet.", u"The library has ended."));
}

// The file is the library's: it is read at once, because the next picture takes its place.
void Studio::takePictureOver(const QString& path) {
    QFile file(path);
    if (!file.open(QFile::ReadOnly)) {
        tell(path + QStringLiteral(": ") + file.errorString());
        return;
    }
    showPicture(QFileInfo(path).fileName(), file.readAll());
}

void Studio::showPicture(const QString& fileName, const QByteArray& bytes) {
    QPixmap pixmap;
    pixmap.loadFromData(bytes);
    if (pixmap.isNull()) {
        picture_->setText(fileName); // a drawing; showing it is beyond this sample
    } else {
        picture_->setPixmap(pixmap.scaled(picture_->contentsRect().size().boundedTo(pixmap.size()),
                                          Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
    tell(inLanguage(u"Übernommen: %1, %2 Bytes", u"Taken over: %1, %2 bytes")
             .arg(fileName, QLocale::system().toString(bytes.size())));
}

// Also on stdout, for whoever follows the traffic.
void Studio::tell(const QString& line) {
    status_->setText(line);
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void Studio::closeEvent(QCloseEvent* event) {
    endLibrary();
    event->accept();
}

} // namespace studio
