#include "commands/frm_editor_optionen.h"

#include "app/help.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/texts.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>

namespace commands {
namespace {

constexpr int kSave = 1104;
constexpr app::TextPair kCaption{u"Editoroptionen", u"Editor options"};
constexpr app::TextPair kGraphics{u"&Grafik anzeigen", u"Show &graphics"};
constexpr app::TextPair kGroup{u"G&ruppe speichern", u"Save g&roup"};

} // namespace

frmEditorOptionen::frmEditorOptionen(QWidget* owner)
    : QDialog(owner),
      chkGrafik_(new QCheckBox(app::text(kGraphics), this)),
      chkGruppe_(new QCheckBox(app::text(kGroup), this)),
      cmdSpeichern_(new QPushButton(app::text(kSave), this)) {
    setObjectName(QStringLiteral("frmEditorOptionen"));
    setWindowTitle(app::text(kCaption));
    app::offerHelp(*this, app::HelpTopic::MainWindow);
    chkGrafik_->setObjectName(QStringLiteral("chkGrafik"));
    chkGruppe_->setObjectName(QStringLiteral("chkGruppe"));
    cmdSpeichern_->setObjectName(QStringLiteral("cmdSpeichern"));
    cmdSpeichern_->setDefault(true);
    connect(cmdSpeichern_, &QPushButton::clicked, this, &frmEditorOptionen::save);

    auto* button = new QHBoxLayout;
    button->addStretch();
    button->addWidget(cmdSpeichern_);

    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(16, 16, 16, 14);
    all->setSpacing(10);
    all->addWidget(chkGrafik_);
    all->addWidget(chkGruppe_);
    all->addSpacing(6);
    all->addLayout(button);
    all->setSizeConstraint(QLayout::SetFixedSize);
    chkGrafik_->setMinimumWidth(240);
}

void frmEditorOptionen::openAfresh() {
    chkGrafik_->setChecked(false);
    chkGruppe_->setChecked(false);
    chkGrafik_->setFocus();
    app::execModally(*this);
}

// The sentences are German in both languages.
void frmEditorOptionen::save() {
    const auto tell = [this](const QString& sentence) {
        app::msgBox(sentence, app::Buttons::Ok, app::kProgramTitle, this);
    };
    if (chkGrafik_->isChecked()) {
        tell(QStringLiteral("Grafik an!"));
    }
    if (chkGruppe_->isChecked()) {
        tell(QStringLiteral("Gruppe speichern!"));
    }
    accept();
}

} // namespace commands
