#include "commands/skipped_files.h"

#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/texts.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace commands {
namespace {

constexpr app::TextPair kClose{u"Schließen", u"Close"};
constexpr app::TextPair kOne{u"Eine Datei wurde ausgelassen:", u"One file was left out:"};
constexpr app::TextPair kMany{u"%1 Dateien wurden ausgelassen:", u"%1 files were left out:"};
constexpr QSize kListSize{440, 220};

QString captionFor(std::size_t count) {
    return count == 1 ? app::text(kOne) : app::text(kMany).arg(count);
}

} // namespace

void showSkippedFiles(std::span<const store::SkippedFile> files, QWidget* owner) {
    QStringList entries;
    for (const store::SkippedFile& file : files) {
        entries.append(app::errorText(file.failure));
    }
    showSummary(captionFor(files.size()), entries, owner);
}

void showFailures(std::span<const compound::Error> failures, QWidget* owner) {
    QStringList entries;
    for (const compound::Error& failure : failures) {
        entries.append(app::errorText(failure));
    }
    showSummary(captionFor(failures.size()), entries, owner);
}

void showSummary(const QString& text, const QStringList& entries, QWidget* owner) {
    if (entries.empty()) {
        return;
    }
    QDialog dialog(owner);
    dialog.setObjectName(QStringLiteral("frmAusgelassen"));
    dialog.setWindowTitle(app::kProgramTitle);
    auto* caption = app::makePlainLabel("lblAnzahl", &dialog);
    caption->setText(text);
    auto* list = app::makeNamed<QPlainTextEdit>("txtDateien", &dialog);
    list->setReadOnly(true);
    list->setTabChangesFocus(true);
    list->setMinimumSize(kListSize);
    list->setPlainText(entries.join(QStringLiteral("\n\n")));
    list->setAccessibleName(caption->text());
    caption->setBuddy(list);
    auto* close = app::makeNamed<QPushButton>("cmdSchliessen", &dialog);
    close->setText(app::text(kClose));
    close->setDefault(true);
    QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::accept);
    auto* all = new QVBoxLayout(&dialog);
    all->setContentsMargins(16, 14, 16, 14);
    all->setSpacing(10);
    all->addWidget(caption);
    all->addWidget(list, 1);
    all->addWidget(close, 0, Qt::AlignRight);
    close->setFocus();
    app::execModally(dialog);
}

} // namespace commands
