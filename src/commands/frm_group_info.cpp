#include "commands/frm_group_info.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/modal_dialog.h"
#include "app/number_text.h"
#include "app/texts.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "store/group_operations.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace commands {
namespace {

constexpr int kCaption = 500;
constexpr int kName = 501;
constexpr int kPictures = 502;
constexpr int kSize = 503;
constexpr int kHelp = 504;

constexpr double kUnit = 1024;
constexpr qsizetype kDigitsAfterComma = 2;
constexpr int kFactWidth = 280;
constexpr int kWidestName = 520;

QString sizeText(std::uint64_t bytes) {
    double size = static_cast<double>(bytes) / kUnit;
    const bool isLarge = size > kUnit;
    if (isLarge) {
        size /= kUnit;
    }
    return app::cutBehindComma(app::numberText(size), kDigitsAfterComma) +
           QLatin1String(isLarge ? " MB" : " KB");
}

} // namespace

frmGroupInfo::frmGroupInfo(LibraryView& view, QWidget* owner)
    : QDialog(owner),
      view_(view),
      cmdOK_(new QPushButton(QStringLiteral("OK"), this)),
      cmdHelp_(new QPushButton(app::text(kHelp), this)) {
    setObjectName(QStringLiteral("frmGroupInfo"));
    setWindowTitle(app::text(kCaption));
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setDefault(true);
    cmdHelp_->setObjectName(QStringLiteral("cmdHelp"));
    arrange();
    connectControls();
}

QLabel* frmGroupInfo::addFact(QVBoxLayout* facts, const char* frameName, const char* valueName,
                              int captionId) {
    auto* frame = new QGroupBox(app::text(captionId), this);
    frame->setObjectName(QString::fromLatin1(frameName));
    auto* value = new QLabel(frame);
    value->setObjectName(QString::fromLatin1(valueName));
    value->setTextFormat(Qt::PlainText);
    value->setAccessibleDescription(app::text(captionId));
    value->setMinimumWidth(kFactWidth);
    auto* inner = new QVBoxLayout(frame);
    inner->addWidget(value);
    facts->addWidget(frame);
    return value;
}

void frmGroupInfo::arrange() {
    auto* facts = new QVBoxLayout;
    facts->setSpacing(10);
    lblName2_ = addFact(facts, "fraName", "lblName2", kName);
    lblBilder2_ = addFact(facts, "fraBilder", "lblBilder2", kPictures);
    lblGr_e2_ = addFact(facts, "fraGr_e", "lblGr_e2", kSize);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdHelp_);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(16);
    all->addLayout(facts);
    all->addLayout(buttons);
    all->setSizeConstraint(QLayout::SetFixedSize);
}

void frmGroupInfo::connectControls() {
    connect(cmdOK_, &QPushButton::clicked, this, &QDialog::accept);
    app::offerHelp(*this, cmdHelp_, app::HelpTopic::GroupInformation);
}

void frmGroupInfo::openFor(const SelectionContext& context) {
    if (!read(context)) {
        return;
    }
    cmdOK_->setFocus();
    app::execModally(*this);
}

bool frmGroupInfo::read(const SelectionContext& context) {
    const store::GroupAddress group{context.CurrentGroup, context.CurrentStorage};
    try {
        const auto [name, size] = app::resultOfReading(view_.owner(), [&] {
            return std::pair(store::readGroupName(view_.library(), group),
                             store::readGroupSize(view_.library(), group));
        });
        // Another program may have written names of any length.
        lblName2_->setText(lblName2_->fontMetrics().elidedText(QString::fromStdU16String(name.text),
                                                               Qt::ElideMiddle, kWidestName));
        lblBilder2_->setText(QString::number(size.pictures));
        lblGr_e2_->setText(sizeText(size.bytes));
    } catch (const std::exception& error) {
        reportFailure(view_, context, error, app::text(kCaption), view_.owner());
        return false;
    }
    return true;
}

} // namespace commands
