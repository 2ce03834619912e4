#include "commands/frm_edit_gruppe.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/texts.h"
#include "commands/dialog_layout.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "commands/undo_steps.h"
#include "store/group_operations.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace commands {
namespace {

constexpr int kNameMissing = 50;
constexpr int kNameInvalid = 52;
constexpr int kCaption = 100;
constexpr int kPrompt = 102;
constexpr int kAbort = 103;
constexpr int kHelp = 104;
constexpr int kNoGroup = 150;
constexpr int kTheGroup = 151;
constexpr int kExists = 152;
constexpr int kWasRenamed = 153;
constexpr int kRenamedAfter = 154;
constexpr app::TextPair kRenaming{u"Die Gruppe wird umbenannt", u"The group is being renamed"};

} // namespace

frmEditGruppe::frmEditGruppe(LibraryView& view, QWidget* owner)
    : QDialog(owner),
      view_(view),
      prompt_(new QLabel(app::text(kPrompt), this)),
      txtNeu_(new QLineEdit(this)),
      cmdOK_(new QPushButton(QStringLiteral("OK"), this)),
      cmdAbbruch_(new QPushButton(app::text(kAbort), this)),
      cmdHilfe_(new QPushButton(app::text(kHelp), this)) {
    setObjectName(QStringLiteral("frmEditGruppe"));
    setWindowTitle(app::text(kCaption));
    prompt_->setTextFormat(Qt::PlainText);
    txtNeu_->setObjectName(QStringLiteral("txtNeu"));
    txtNeu_->setAccessibleName(app::text(kPrompt));
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setDefault(true);
    cmdAbbruch_->setObjectName(QStringLiteral("cmdAbbruch"));
    cmdHilfe_->setObjectName(QStringLiteral("cmdHilfe"));
    layOutNameDialog(*this, prompt_, txtNeu_, {cmdOK_, cmdAbbruch_, cmdHilfe_});
    connectControls();
}

void frmEditGruppe::connectControls() {
    connect(cmdOK_, &QPushButton::clicked, this, &frmEditGruppe::rename);
    connect(cmdAbbruch_, &QPushButton::clicked, this, &QDialog::reject);
    app::offerHelp(*this, cmdHilfe_, app::HelpTopic::EditGroup);
}

void frmEditGruppe::openFor(const SelectionContext& context) {
    context_ = context;
    txtNeu_->setText(context.groupName);
    txtNeu_->selectAll();
    txtNeu_->setFocus();
    app::execModally(*this);
}

// Among the groups that hang where the renamed one does; case counts.
bool frmEditGruppe::isTaken(const store::GroupName& name) const {
    if (context_.TopLevelSelected) {
        return store::groupExists(view_.library(), name);
    }
    return store::subGroupExists(view_.library(), {context_.CurrentGroup, context_.CurrentParent},
                                 name);
}

bool frmEditGruppe::isValid(const store::GroupName& name) const {
    const store::Library& library = view_.library();
    if (!context_.TopLevelSelected) {
        return store::testGroupName(library, name, store::GroupLevel::SubGroup);
    }
    return store::testGroupName(library, name, store::GroupLevel::TopLevel) &&
           !store::groupExistsIgnoringCase(library, name, context_.CurrentGroup);
}

// What the box says; empty when the group may have the name. The order of the questions decides
// what the user is told of a name with several faults.
QString frmEditGruppe::refusalOf(const store::GroupName& name) {
    const auto [taken, valid] =
        app::resultOfReading(this, [&] { return std::pair(isTaken(name), isValid(name)); });
    if (taken) {
        return app::text(kTheGroup) + txtNeu_->text() + app::text(kExists);
    }
    if (!valid) {
        return app::text(kNameInvalid);
    }
    if (!context_.hasGroup()) {
        return app::text(kNoGroup);
    }
    return name.text.empty() ? app::text(kNameMissing) : QString();
}

void frmEditGruppe::rename() {
    store::GroupName name{txtNeu_->text().toStdU16String()};
    try {
        const QString refusal = refusalOf(name);
        if (!refusal.isEmpty()) {
            app::msgBox(refusal, app::Buttons::Ok, app::text(kCaption), this);
            txtNeu_->setFocus();
            return;
        }
        // A top-level group moves to another file: all its pictures are copied.
        name = app::resultOfLong<store::GroupName>(
            {app::text(kRenaming), app::LongOperation::Stopping::Offered}, this,
            [this, &name](store::Progress& progress) {
                return store::renameGroup(view_.library(),
                                          {context_.CurrentGroup, context_.CurrentStorage}, name,
                                          progress);
            });
    } catch (const std::exception& error) {
        reportFailure(view_, context_, error, app::text(kCaption), this);
        closeIfGroupIsGone();
        return;
    }
    view_.history().add(groupRenamed({context_.CurrentGroup, context_.CurrentStorage},
                                     {context_.groupName.toStdU16String()}, renamedTo(name), name));
    app::msgBox(app::text(kTheGroup) + context_.groupName + app::text(kWasRenamed) +
                    QString::fromStdU16String(name.text) + app::text(kRenamedAfter),
                app::Buttons::Ok, app::text(kCaption), this);
    showInLibrary(name);
    accept();
}

// Nothing is left to be renamed when the report has found the group vanished.
void frmEditGruppe::closeIfGroupIsGone() {
    if (hasVanished(view_, context_)) {
        reject();
    } else {
        txtNeu_->setFocus();
    }
}

// A sub-group keeps its address; a top-level group has moved to another file.
store::GroupAddress frmEditGruppe::renamedTo(const store::GroupName& name) const {
    return context_.TopLevelSelected
               ? store::topLevelAddress(name.text)
               : store::GroupAddress{context_.CurrentGroup, context_.CurrentStorage};
}

void frmEditGruppe::showInLibrary(const store::GroupName& name) {
    const store::GroupAddress group = renamedTo(name);
    view_.SetCurrentGroup(group);
    view_.FillTreeView();
    view_.Aktualisieren();
    view_.TreeViewSelectNode(group);
    view_.MiniVorschau(0);
}

} // namespace commands
