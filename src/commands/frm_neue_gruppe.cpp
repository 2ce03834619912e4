#include "commands/frm_neue_gruppe.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/texts.h"
#include "commands/failure_report.h"
#include "commands/group_name.h"
#include "commands/group_target_box.h"
#include "commands/library_view.h"
#include "store/group_operations.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace commands {
namespace {

constexpr int kCaption = 800;
constexpr int kPrompt = 801;
constexpr int kAbort = 802;
constexpr int kNameMissing = 850;
constexpr int kGroupExists = 851;
constexpr int kNameInvalid = 852;
constexpr int kTargetPrompt = 904;
constexpr app::TextPair kCreating{u"Die Gruppe wird angelegt", u"The group is being created"};

QLabel* plainLabel(const QString& text, QWidget* buddy, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    buddy->setAccessibleName(text);
    return label;
}

} // namespace

frmNeueGruppe::frmNeueGruppe(LibraryView& view, QWidget* owner)
    : QDialog(owner),
      view_(view),
      txtNeu_(new QLineEdit(this)),
      cmdOK_(new QPushButton(QStringLiteral("OK"), this)),
      cmdAbbruch_(new QPushButton(app::text(kAbort), this)),
      target_(new GroupTargetBox(this)) {
    setObjectName(QStringLiteral("frmNeueGruppe"));
    setWindowTitle(app::text(kCaption));
    app::offerHelp(*this, app::HelpTopic::MainWindow);
    prompt_ = plainLabel(app::text(kPrompt), txtNeu_, this);
    targetPrompt_ = plainLabel(app::text(kTargetPrompt), target_, this);
    txtNeu_->setObjectName(QStringLiteral("txtNeu"));
    txtNeu_->installEventFilter(this);
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setDefault(true);
    cmdAbbruch_->setObjectName(QStringLiteral("cmdAbbruch"));
    connect(cmdOK_, &QPushButton::clicked, this, &frmNeueGruppe::create);
    connect(cmdAbbruch_, &QPushButton::clicked, this, &QDialog::reject);
    arrange();
}

void frmNeueGruppe::arrange() {
    auto* fields = new QGridLayout;
    fields->setHorizontalSpacing(12);
    fields->setVerticalSpacing(10);
    fields->addWidget(prompt_, 0, 0);
    fields->addWidget(txtNeu_, 0, 1);
    fields->addWidget(targetPrompt_, 1, 0);
    fields->addWidget(target_, 1, 1);
    fields->setColumnStretch(1, 1);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdAbbruch_);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(16);
    all->addLayout(fields);
    all->addLayout(buttons);
    all->setSizeConstraint(QLayout::SetFixedSize);
    txtNeu_->setMinimumWidth(260);

    setTabOrder(txtNeu_, target_);
    setTabOrder(target_, cmdOK_);
    setTabOrder(cmdOK_, cmdAbbruch_);
}

void frmNeueGruppe::openFor(const SelectionContext& context) {
    context_ = context;
    target_->offer(context, defaultTarget(context));
    txtNeu_->clear();
    txtNeu_->setFocus();
    app::execModally(*this);
}

bool frmNeueGruppe::eventFilter(QObject* watched, QEvent* event) {
    // A full stop would end the base name of the group's file.
    if (watched == txtNeu_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->text() == QLatin1String(".")) {
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frmNeueGruppe::refuse(int textId) {
    app::msgBox(app::text(textId), app::Buttons::Ok, app::text(kCaption), this);
    txtNeu_->setFocus();
}

bool frmNeueGruppe::isAcceptable(const std::optional<store::GroupAddress>& parent,
                                 const store::GroupName& name) {
    if (name.text.empty()) {
        refuse(kNameMissing);
        return false;
    }
    switch (app::resultOfReading(this,
                                 [&] { return stateOfGroupName(view_.library(), parent, name); })) {
    case GroupNameState::Taken:
        refuse(kGroupExists);
        return false;
    case GroupNameState::Invalid:
        refuse(kNameInvalid);
        return false;
    case GroupNameState::Free:
        break;
    }
    return true;
}

// A group beside the selected one has nothing to do with it. A parent that has vanished is offered
// no longer.
void frmNeueGruppe::tellFailure(const std::exception& failure) {
    const bool isBelow = target_->target() == GroupTarget::BelowSelected;
    reportFailure(view_, isBelow ? context_ : SelectionContext{}, failure, app::text(kCaption),
                  this);
    if (isBelow && hasVanished(view_, context_)) {
        target_->offer({}, GroupTarget::TopLevel);
    }
    txtNeu_->setFocus();
}

void frmNeueGruppe::create() {
    const std::optional<store::GroupAddress> parent = target_->parentGroup();
    const store::GroupName name{txtNeu_->text().toStdU16String()};
    store::GroupAddress created;
    try {
        if (!isAcceptable(parent, name)) {
            return;
        }
        created = app::resultOfLong<store::GroupAddress>(
            {app::text(kCreating)}, this,
            [&](store::Progress&) { return store::createGroup(view_.library(), parent, name); });
    } catch (const std::exception& error) {
        tellFailure(error);
        return;
    }
    showInLibrary(created);
    accept();
}

void frmNeueGruppe::showInLibrary(const store::GroupAddress& group) {
    view_.SetCurrentGroup(group);
    view_.FillTreeView();
    view_.Aktualisieren();
    view_.TreeViewSelectNode(group);
    view_.ClearVorschau();
    view_.ShowNoPicture();
    view_.MiniVorschau(0);
}

} // namespace commands
