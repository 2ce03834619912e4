#include "browser/first_steps.h"

#include "app/texts.h"
#include "commands/sample_library.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>

namespace browser {
namespace {

using commands::Command;

constexpr int kNewGroup = 204;
constexpr int kGroupFromFolder = 205;
constexpr int kImportGroup = 206;
constexpr app::TextPair kHeading{u"Die Bibliothek ist noch leer. Womit soll sie beginnen?",
                                 u"The library is still empty. What shall it begin with?"};
constexpr app::TextPair kSamples{u"Bei&spielbibliothek öffnen", u"Open &sample library"};
constexpr int kWidestButton = 340; // pixels
constexpr int kSpacing = 10;

struct Choice {
    const char* name;
    Command command;
};
constexpr std::array kChoices{
    Choice{"cmdNeueGruppe", Command::NewGroup},
    Choice{"cmdVerzeichnis", Command::GroupFromFolder},
    Choice{"cmdImport", Command::ImportGroup},
    Choice{"cmdBeispiele", Command::OpenSamples},
};

QString captionOf(Command command) {
    switch (command) {
    case Command::NewGroup:
        return app::text(kNewGroup);
    case Command::GroupFromFolder:
        return app::text(kGroupFromFolder);
    case Command::ImportGroup:
        return app::text(kImportGroup);
    default:
        return app::text(kSamples);
    }
}

} // namespace

FirstSteps::FirstSteps(QWidget* parent) : QFrame(parent), heading_(new QLabel(this)) {
    setObjectName(QStringLiteral("fraErsteSchritte"));
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    heading_->setWordWrap(true);
    heading_->setTextFormat(Qt::PlainText);
    heading_->setAlignment(Qt::AlignCenter);
    auto* column = new QVBoxLayout(this);
    column->setSpacing(kSpacing);
    column->addStretch();
    column->addWidget(heading_);
    for (const Choice& choice : kChoices) {
        auto* button = new QPushButton(this);
        button->setObjectName(QLatin1String(choice.name));
        button->setMaximumWidth(kWidestButton);
        button->setAutoDefault(true); // Enter presses it as well
        connect(button, &QPushButton::clicked, this,
                [this, command = choice.command] { emit wanted(command); });
        column->addWidget(button);
        column->setAlignment(button, Qt::AlignHCenter);
        ways_.push_back({button, choice.command});
    }
    column->addStretch();
    hide();
}

void FirstSteps::setCaptions() {
    heading_->setText(app::text(kHeading));
    int widest = 0;
    for (const Way& way : ways_) {
        way.button->setText(captionOf(way.command));
        widest = std::max(widest, way.button->sizeHint().width());
        way.button->setVisible(way.command != Command::OpenSamples || commands::hasSamples());
    }
    for (const Way& way : ways_) {
        way.button->setMinimumWidth(std::min(widest, kWidestButton));
    }
}

void FirstSteps::setTabOrderAfter(QWidget* before) {
    for (const Way& way : ways_) {
        QWidget::setTabOrder(before, way.button);
        before = way.button;
    }
}

} // namespace browser
