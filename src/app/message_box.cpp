#include "app/message_box.h"

#include "app/texts.h"
#include "base/utf8.h"
#include "compound/error.h"
#include "store/address.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>

#include <array>
#include <utility>
#include <vector>

namespace app {

namespace {

struct ButtonKind {
    Answer answer;
    QMessageBox::StandardButton standard;
    TextPair caption;
};

constexpr std::array<ButtonKind, 5> kButtonKinds = {{
    {kAnswerOk, QMessageBox::Ok, {u"OK", u"OK"}},
    {kAnswerCancel, QMessageBox::Cancel, {u"Abbrechen", u"Cancel"}},
    {kAnswerRetry, QMessageBox::Retry, {u"&Wiederholen", u"&Retry"}},
    {kAnswerYes, QMessageBox::Yes, {u"&Ja", u"&Yes"}},
    {kAnswerNo, QMessageBox::No, {u"&Nein", u"&No"}},
}};

// The last answer is Escape's, the first one Enter's unless care is wanted.
std::vector<Answer> answersOf(Buttons buttons) {
    switch (buttons) {
    case Buttons::OkCancel:
        return {kAnswerOk, kAnswerCancel};
    case Buttons::YesNo:
    case Buttons::YesNoWithCare:
        return {kAnswerYes, kAnswerNo};
    case Buttons::RetryCancel:
        return {kAnswerRetry, kAnswerCancel};
    case Buttons::Ok:
        break;
    }
    return {kAnswerOk};
}

const ButtonKind& kindOf(Answer answer) {
    for (const ButtonKind& kind : kButtonKinds) {
        if (kind.answer == answer) {
            return kind;
        }
    }
    return kButtonKinds.front();
}

// Window managers cut the title of a box that is only as wide as a short text.
void leaveRoomForTitle(QMessageBox& box) {
    constexpr int kWidth = 280;
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
        grid->addItem(new QSpacerItem(kWidth, 0), grid->rowCount(), 0, 1, grid->columnCount());
    }
}

int showBox(const QString& text, Buttons buttons, const QString& title, QWidget* owner) {
    QMessageBox box(owner);
    box.setObjectName(QStringLiteral("msgBox"));
    box.setWindowTitle(title);
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setIcon(QMessageBox::NoIcon);
    const std::vector<Answer> answers = answersOf(buttons);
    for (const Answer answer : answers) {
        const ButtonKind& kind = kindOf(answer);
        QPushButton* button = box.addButton(kind.standard);
        button->setText(app::text(kind.caption));
        button->setIcon({}); // as in the dialogs
    }
    const bool isCareful = buttons == Buttons::YesNoWithCare;
    box.setDefaultButton(kindOf(isCareful ? answers.back() : answers.front()).standard);
    box.setEscapeButton(kindOf(answers.back()).standard);
    leaveRoomForTitle(box);
    box.exec();
    if (box.clickedButton() == nullptr) { // closed by the program's end: nobody has answered
        return kAnswerNo;
    }
    const QMessageBox::StandardButton pressed = box.standardButton(box.clickedButton());
    for (const Answer answer : answers) {
        if (kindOf(answer).standard == pressed) {
            return answer;
        }
    }
    return answers.back();
}

MsgBoxHandler& currentHandler() {
    static MsgBoxHandler handler;
    return handler;
}

TextPair failureText(compound::ErrorCode code) {
    using compound::ErrorCode;
    switch (code) {
    case ErrorCode::NotFound:
        return {u"Nicht gefunden.", u"Not found."};
    case ErrorCode::Exists:
        return {u"Der Name ist schon vergeben.", u"The name is already taken."};
    case ErrorCode::SameFile:
        return {u"Quelle und Ziel sind dieselbe Datei.", u"Source and target are the same file."};
    case ErrorCode::Locked:
        return {u"Die Datei wird von einem anderen Programm benutzt.",
                u"Another program is using the file."};
    case ErrorCode::Damaged:
        return {u"Die Datei ist beschädigt.", u"The file is damaged."};
    case ErrorCode::NotCompoundFile:
        return {u"Die Datei ist keine Gruppendatei.", u"The file is no group file."};
    case ErrorCode::NoSpace:
        return {u"Der Datenträger ist voll.", u"The disk is full."};
    case ErrorCode::TooLarge:
        return {u"Die Datei ist zu groß.", u"The file is too large."};
    case ErrorCode::Denied:
        return {u"Keine Berechtigung.", u"Permission denied."};
    case ErrorCode::InvalidName:
        return {u"Der Name ist ungültig.", u"The name is not valid."};
    case ErrorCode::InvalidPicture:
        return {u"Die Datei ist kein lesbares Bild.", u"The file is no readable picture."};
    case ErrorCode::OutcomeUnknown:
        return {u"Es ist unklar, ob die Änderung gespeichert wurde.",
                u"It is unknown whether the change was saved."};
    case ErrorCode::Cancelled:
        return {u"Der Vorgang wurde abgebrochen.", u"The operation was stopped."};
    case ErrorCode::Failed:
        break;
    }
    return {u"Der Vorgang ist fehlgeschlagen.", u"The operation failed."};
}

// Whether the cause, which is not in the user's language, would only repeat the kind of failure.
bool saysItAll(compound::ErrorCode code) {
    using compound::ErrorCode;
    return code == ErrorCode::Locked || code == ErrorCode::NotCompoundFile ||
           code == ErrorCode::SameFile;
}

} // namespace

int msgBox(const QString& text, Buttons buttons, const QString& title, QWidget* owner) {
    if (currentHandler()) {
        return currentHandler()(text, buttons, title, owner);
    }
    return showBox(text, buttons, title, owner);
}

QString errorText(const compound::Error& error) {
    QString result;
    if (!error.file().empty()) {
        result = QString::fromStdU16String(base::fromPath(error.file())) + u'\n';
    }
    result += text(failureText(error.code()));
    if (!error.cause().empty() && !saysItAll(error.code())) {
        result += QStringLiteral(" (%1)").arg(QString::fromStdString(error.cause()));
    }
    return result;
}

QString errorText(const std::exception& error) {
    if (const auto* known = dynamic_cast<const compound::Error*>(&error)) {
        return errorText(*known);
    }
    return text(failureText(compound::ErrorCode::Failed)) +
           QStringLiteral(" (%1)").arg(QString::fromLocal8Bit(error.what()));
}

QString groupFailureText(const QString& groupPath, const std::exception& error) {
    constexpr int kGroupPrompt = 904;
    const QString cause = errorText(error);
    return groupPath.isEmpty() ? cause : text(kGroupPrompt) + u' ' + groupPath + u'\n' + cause;
}

MsgBoxHandler setMsgBoxHandler(MsgBoxHandler handler) {
    return std::exchange(currentHandler(), std::move(handler));
}

} // namespace app
