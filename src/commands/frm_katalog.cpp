#include "commands/frm_katalog.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/texts.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "commands/skipped_files.h"
#include "platform/paths.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>

namespace commands {
namespace {

constexpr int kBack = 404;
constexpr app::TextPair kTitle{u"Katalog drucken", u"Print catalogue"};
constexpr app::TextPair kSubGroups{u"&Mit Untergruppen", u"&With sub-groups"};
constexpr app::TextPair kPaper{u"Papier:", u"Paper:"};
constexpr app::TextPair kLetter{u"&Letter", u"&Letter"};
constexpr app::TextPair kPrint{u"&Drucken...", u"&Print..."};
constexpr app::TextPair kSave{u"Als &PDF speichern...", u"&Save as PDF..."};
constexpr app::TextPair kPdfFiles{u"PDF-Dateien (*.pdf)", u"PDF files (*.pdf)"};
constexpr app::TextPair kWorking{u"Der Katalog wird erstellt", u"The catalogue is being made"};
constexpr app::TextPair kUnshown{u"Nicht alle Bilder konnten gezeigt werden:",
                                 u"Not all pictures could be shown:"};
constexpr app::TextPair kSaved{u"Katalog gespeichert: %1", u"Catalogue saved: %1"};
constexpr app::TextPair kPrinted{u"Katalog an den Drucker %1 übergeben",
                                 u"Catalogue sent to the printer %1"};
constexpr int kWidestPath = 420;

const QString kSuffix = QStringLiteral(".pdf");

// A file's name has no room for what a group's name may hold on another system.
QString fittingFileName(QString name) {
    for (QChar& character : name) {
        if (character.unicode() < 0x20 || QStringLiteral("/\\:*?\"<>|").contains(character)) {
            character = u'_';
        }
    }
    return name;
}

QStringList textsOf(const std::vector<catalogue::Unshown>& unshown) {
    QStringList texts;
    for (const catalogue::Unshown& picture : unshown) {
        texts.append(picture.groupPath + QStringLiteral(" / ") + picture.picture + u'\n' +
                     app::errorText(picture.failure));
    }
    return texts;
}

} // namespace

frmKatalog::frmKatalog(LibraryView& view, QWidget* owner)
    : QDialog(owner), view_(view), lblGruppe_(app::makePlainLabel("lblGruppe", this)) {
    setObjectName(QStringLiteral("frmKatalog"));
    setWindowTitle(app::text(kTitle));
    app::offerHelp(*this, app::HelpTopic::MainWindow);
    arrange();
    connectControls();
}

QWidget* frmKatalog::makePaper() {
    auto* fraPapier = app::makeNamed<QGroupBox>("fraPapier", app::text(kPaper), this);
    optA4_ = app::makeNamed<QRadioButton>("optA4", QStringLiteral("&A4"), fraPapier);
    optLetter_ = app::makeNamed<QRadioButton>("optLetter", app::text(kLetter), fraPapier);
    (catalogue::usualPaper() == catalogue::Paper::A4 ? optA4_ : optLetter_)->setChecked(true);
    auto* row = new QHBoxLayout(fraPapier);
    row->setSpacing(16);
    row->addWidget(optA4_);
    row->addWidget(optLetter_);
    row->addStretch();
    return fraPapier;
}

void frmKatalog::arrange() {
    QFont heading = lblGruppe_->font();
    heading.setBold(true);
    lblGruppe_->setFont(heading);
    chkUntergruppen_ = app::makeNamed<QCheckBox>("chkUntergruppen", app::text(kSubGroups), this);
    chkUntergruppen_->setChecked(true);
    QWidget* paper = makePaper();
    cmdDrucken_ = app::makeNamed<QPushButton>("cmdDrucken", app::text(kPrint), this);
    cmdPdf_ = app::makeNamed<QPushButton>("cmdPdf", app::text(kSave), this);
    cmdZur_ck_ = app::makeNamed<QPushButton>("cmdZur_ck", app::text(kBack), this);
    cmdDrucken_->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    for (QPushButton* button : {cmdDrucken_, cmdPdf_, cmdZur_ck_}) {
        buttons->addWidget(button);
    }
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(12);
    all->addWidget(lblGruppe_);
    all->addWidget(chkUntergruppen_);
    all->addWidget(paper);
    all->addSpacing(4);
    all->addLayout(buttons);
    all->setSizeConstraint(QLayout::SetFixedSize);
}

void frmKatalog::connectControls() {
    connect(cmdDrucken_, &QPushButton::clicked, this, &frmKatalog::print);
    connect(cmdPdf_, &QPushButton::clicked, this, &frmKatalog::savePdf);
    connect(cmdZur_ck_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmKatalog::openFor(const SelectionContext& context) {
    context_ = context;
    lblGruppe_->setText(
        lblGruppe_->fontMetrics().elidedText(context.groupPath, Qt::ElideMiddle, kWidestPath));
    cmdDrucken_->setFocus();
    app::execModally(*this);
}

catalogue::Paper frmKatalog::paper() const {
    return optA4_->isChecked() ? catalogue::Paper::A4 : catalogue::Paper::Letter;
}

void frmKatalog::make(const std::function<catalogue::Printed(const std::vector<catalogue::Section>&,
                                                             store::Progress&)>& work,
                      const QString& result) {
    const auto subGroups = chkUntergruppen_->isChecked() ? catalogue::SubGroups::Included
                                                         : catalogue::SubGroups::LeftOut;
    try {
        const auto printed = app::resultOfLong<catalogue::Printed>(
            {app::text(kWorking), app::LongOperation::Stopping::Offered}, this,
            [&](store::Progress& progress) {
                return work(catalogue::readContents(view_.library(), *context_.group(), subGroups),
                            progress);
            });
        showSummary(app::text(kUnshown), textsOf(printed.unshown), this);
        accept();
        view_.TellResult(result);
    } catch (const std::exception& failure) {
        reportFailure(view_, context_, failure, app::text(kTitle), this);
    }
}

void frmKatalog::print() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setFullPage(true);
    printer.setDocName(
        fittingFileName(context_.groupName)); // a file that is printed to is called so
    printer.setPageSize(
        QPageSize(paper() == catalogue::Paper::A4 ? QPageSize::A4 : QPageSize::Letter));
    QPrintDialog dialog(&printer, this);
    dialog.setObjectName(QStringLiteral("dlgDrucker"));
    dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintCollateCopies);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    if (!printer.outputFileName().isEmpty()) { // whole or not at all, which the printer is not
        writePdf(printer.outputFileName());
        return;
    }
    make(
        [&](const std::vector<catalogue::Section>& contents, store::Progress& progress) {
            return catalogue::print(view_.library(), contents, printer,
                                    platform::toFilePath(printer.printerName()), progress);
        },
        app::text(kPrinted).arg(printer.printerName()));
}

void frmKatalog::savePdf() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QFileDialog dialog(this, app::text(kTitle), folder, app::text(kPdfFiles));
    dialog.setObjectName(QStringLiteral("dlgPdf"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(kSuffix.mid(1));
    dialog.selectFile(fittingFileName(context_.groupName) + kSuffix);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        writePdf(dialog.selectedFiles().first());
    }
}

// A file that is there the dialog has asked about; one that comes while the catalogue is made it
// has not.
void frmKatalog::writePdf(const QString& file) {
    const auto ifExists =
        QFileInfo::exists(file) ? platform::IfFileExists::Replace : platform::IfFileExists::Refuse;
    make(
        [&](const std::vector<catalogue::Section>& contents, store::Progress& progress) {
            return catalogue::writePdf(view_.library(), contents, paper(),
                                       platform::toFilePath(file), ifExists, progress);
        },
        app::text(kSaved).arg(QFileInfo(file).fileName()));
}

} // namespace commands
