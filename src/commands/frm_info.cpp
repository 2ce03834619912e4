#include "commands/frm_info.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/number_text.h"
#include "app/texts.h"
#include "editing/screen_place.h"
#include "store/library_count.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace commands {
namespace {

constexpr int kMenuCaption = 232;
constexpr int kBack = 404;
constexpr int kGroups = 1300;
constexpr int kPictures = 1301;
constexpr std::chrono::milliseconds kLockWait{1000}; // for all locked files together
constexpr std::uint64_t kElementsOfAPicture = 2;

} // namespace

frmInfo::frmInfo(QWidget* owner)
    : QDialog(owner),
      Label1_(app::makePlainLabel("Label1", this)),
      Label2_(app::makePlainLabel("Label2", this)),
      Label3_(app::makePlainLabel("Label3", this)),
      cmdZur_ck_(new QPushButton(app::text(kBack), this)) {
    setObjectName(QStringLiteral("frmInfo"));
    setWindowTitle(app::text(kMenuCaption).remove(u'&'));
    app::offerHelp(*this, app::HelpTopic::MainWindow);
    Label1_->setText(app::kProgramTitle);
    QFont heading = Label1_->font();
    heading.setBold(true);
    Label1_->setFont(heading);
    cmdZur_ck_->setObjectName(QStringLiteral("cmdZur_ck"));
    cmdZur_ck_->setDefault(true);
    connect(cmdZur_ck_, &QPushButton::clicked, this, &QDialog::reject);

    auto* button = new QHBoxLayout;
    button->addStretch();
    button->addWidget(cmdZur_ck_);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(8);
    all->addWidget(Label1_);
    all->addSpacing(4);
    all->addWidget(Label2_);
    all->addWidget(Label3_);
    all->addSpacing(8);
    all->addLayout(button);
    all->setSizeConstraint(QLayout::SetFixedSize);
    Label1_->setMinimumWidth(240);
}

void frmInfo::openFor(const store::Library& library) {
    count(library);
    ensurePolished();
    adjustSize();
    editing::centreOnScreen(*this);
    cmdZur_ck_->setFocus();
    app::execModally(*this);
}

// A picture without its record shows as a half: better than a count that hides it.
void frmInfo::count(const store::Library& library) {
    const auto found = app::resultOfReading(
        parentWidget(), [&] { return store::countLibrary(library, store::LockBudget(kLockWait)); });
    const double pictures =
        static_cast<double>(found.elements) / static_cast<double>(kElementsOfAPicture);
    Label2_->setText(app::text(kGroups) + QString::number(found.groupFiles));
    Label3_->setText(app::text(kPictures) + app::numberText(pictures));
}

} // namespace commands
