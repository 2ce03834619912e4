#include "commands/name_conflicts.h"

#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/texts.h"

#include <QCheckBox>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace commands {
namespace {

using store::IfNameTaken;

constexpr app::TextPair kQuestion{u"In der Gruppe \"%2\" gibt es schon ein Bild \"%1\".",
                                  u"There is a picture \"%1\" in group \"%2\" already."};
constexpr app::TextPair kReplace{u"&Ersetzen", u"&Replace"};
constexpr app::TextPair kKeepBoth{u"&Beide behalten", u"&Keep both"};
constexpr app::TextPair kSkip{u"Über&springen", u"&Skip"};
constexpr app::TextPair kCancel{u"Abbrechen", u"Cancel"};
constexpr app::TextPair kForAll{u"Für &alle %1 Bilder", u"For &all %1 pictures"};

struct Answer {
    IfNameTaken what;
    bool isForAll;
};

QString textOf(const store::PictureName& name) {
    return QString::fromStdU16String(name.text);
}

class TakenNameDialog : public QDialog {
  public:
    TakenNameDialog(const QString& question, std::size_t left, QWidget* owner) : QDialog(owner) {
        setObjectName(QStringLiteral("frmVorhanden"));
        setWindowTitle(app::kProgramTitle);
        auto* lblFrage = app::makePlainLabel("lblFrage", this);
        lblFrage->setText(question);
        lblFrage->setWordWrap(true);
        chkAlle_ = app::makeNamed<QCheckBox>("chkAlle", this);
        chkAlle_->setText(app::text(kForAll).arg(left));
        chkAlle_->setVisible(left > 1);
        auto* buttons = new QHBoxLayout;
        addButton(*buttons, "cmdErsetzen", kReplace, IfNameTaken::Replace);
        QPushButton* safe = addButton(*buttons, "cmdBeide", kKeepBoth, IfNameTaken::KeepBoth);
        safe->setDefault(true);
        safe->setFocus(); // whichever button has it is the default
        addButton(*buttons, "cmdUeberspringen", kSkip, IfNameTaken::Skip);
        auto* cancel = app::makeNamed<QPushButton>("cmdAbbruch", this);
        cancel->setText(app::text(kCancel));
        connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
        buttons->addWidget(cancel);
        auto* all = new QVBoxLayout(this);
        all->setContentsMargins(16, 14, 16, 14);
        all->setSpacing(10);
        all->addWidget(lblFrage);
        all->addWidget(chkAlle_);
        all->addLayout(buttons);
    }

    std::optional<Answer> answer() const { return answer_; }

  private:
    QPushButton* addButton(QHBoxLayout& row, const char* name, const app::TextPair& caption,
                           IfNameTaken what) {
        auto* button = app::makeNamed<QPushButton>(name, this);
        button->setText(app::text(caption));
        connect(button, &QPushButton::clicked, this, [this, what] {
            answer_ = Answer{what, chkAlle_->isChecked()};
            accept();
        });
        row.addWidget(button);
        return button;
    }

    QCheckBox* chkAlle_;
    std::optional<Answer> answer_;
};

} // namespace

std::optional<std::vector<IfNameTaken>> askForTakenNames(std::span<const store::PictureName> names,
                                                         const QString& groupName, QWidget* owner) {
    std::vector<IfNameTaken> answers;
    while (answers.size() < names.size()) {
        const std::size_t left = names.size() - answers.size();
        TakenNameDialog dialog(app::text(kQuestion).arg(textOf(names[answers.size()]), groupName),
                               left, owner);
        app::execModally(dialog);
        const auto answer = dialog.answer();
        if (!answer) {
            return std::nullopt;
        }
        answers.insert(answers.end(), answer->isForAll ? left : 1, answer->what);
    }
    return answers;
}

} // namespace commands
