#include "commands/vector_size.h"

#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/texts.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace commands {
namespace {

constexpr int kLargestSide = 6000; // a square of them is as many pixels as a picture may have
constexpr app::TextPair kQuestion{
    u"Eine SVG-Zeichnung hat keine eigene Größe. Wie viele Pixel soll die längere Seite haben?",
    u"An SVG drawing has no size of its own. How many pixels is its longer side to have?"};
constexpr app::TextPair kPixels{u" Pixel", u" pixels"};
constexpr app::TextPair kCancel{u"Abbrechen", u"Cancel"};

} // namespace

std::optional<int> askForLongerSide(int suggested, QWidget* owner) {
    QDialog dialog(owner);
    dialog.setObjectName(QStringLiteral("frmGroesse"));
    dialog.setWindowTitle(app::kProgramTitle);
    auto* lblFrage = app::makePlainLabel("lblFrage", &dialog);
    lblFrage->setText(app::text(kQuestion));
    lblFrage->setWordWrap(true);
    auto* spnSeite = app::makeNamed<QSpinBox>("spnSeite", &dialog);
    spnSeite->setRange(1, kLargestSide);
    spnSeite->setValue(suggested);
    spnSeite->setSuffix(app::text(kPixels));
    spnSeite->setAccessibleName(app::text(kQuestion));
    auto* cmdOK = app::makeNamed<QPushButton>("cmdOK", &dialog);
    cmdOK->setText(QStringLiteral("OK"));
    cmdOK->setDefault(true);
    auto* cmdAbbruch = app::makeNamed<QPushButton>("cmdAbbruch", &dialog);
    cmdAbbruch->setText(app::text(kCancel));
    QObject::connect(cmdOK, &QPushButton::clicked, &dialog, &QDialog::accept);
    QObject::connect(cmdAbbruch, &QPushButton::clicked, &dialog, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdAbbruch);
    auto* all = new QVBoxLayout(&dialog);
    all->setContentsMargins(16, 14, 16, 14);
    all->setSpacing(10);
    all->addWidget(lblFrage);
    all->addWidget(spnSeite, 0, Qt::AlignLeft);
    all->addLayout(buttons);
    spnSeite->selectAll(); // what is typed takes its place
    app::execModally(dialog);
    return dialog.result() == QDialog::Accepted ? std::optional(spnSeite->value()) : std::nullopt;
}

} // namespace commands
