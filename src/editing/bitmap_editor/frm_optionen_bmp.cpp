#include "editing/bitmap_editor/frm_optionen_bmp.h"

#include "app/help.h"
#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/modal_dialog.h"
#include "app/named_control.h"
#include "app/settings.h"
#include "app/texts.h"
#include "app/twips.h"
#include "editing/bitmap_editor/imaging_error.h"
#include "editing/bitmap_editor/lead_control.h"
#include "editing/frm_save.h"
#include "editing/screen_place.h"
#include "imaging/operations/angles.h"
#include "store/picture_operations.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QShowEvent>
#include <QVBoxLayout>

#include <stdexcept>

namespace editing {

namespace operations = imaging::operations;
using operations::Canvas;
using operations::ColourProperty;
using operations::kQuarterTurn;

namespace {

constexpr int kTextTitle = 1000;
constexpr int kTextFaulty = 1024;

constexpr double kWidth = 12000; // of the window at first, twips
constexpr double kHeight = 9000;
constexpr double kLeastWidth = 4500;
constexpr double kLeastHeight = 3600;

constexpr QRgb kBlack = qRgb(0, 0, 0);

constexpr app::TextPair kReading{u"Das Bild wird gelesen", u"The picture is being read"};
constexpr app::TextPair kChanging{u"Das Bild wird geändert", u"The picture is being changed"};
constexpr app::TextPair kWriting{u"Das Bild wird geschrieben", u"The picture is being written"};
constexpr app::TextPair kTidying{u"Temporäre Dateien werden gelöscht",
                                 u"Temporary files are being removed"};
constexpr app::TextPair kPixels{u"%1 × %2 Pixel", u"%1 × %2 pixels"};
constexpr app::TextPair kZoom{u"Zoom: %1 %", u"Zoom: %1%"};
constexpr app::TextPair kHistoryFull{
    u"Mehr als 255 Änderungen können nicht rückgängig gemacht werden. Das Bild wurde nicht "
    u"geändert.\n\nNach dem Speichern beginnt die Zählung von vorn.",
    u"No more than 255 changes can be undone. The picture was not changed.\n\nSaving it starts the "
    u"count afresh."};
constexpr app::TextPair kTooLarge{
    u"Das gedrehte Bild hätte mehr als 40 Millionen Pixel. Es wurde nicht geändert.",
    u"The rotated picture would have more than 40 million pixels. It was not changed."};

// The interface texts of the parameter dialogs.
struct Slot {
    int number;
    int textId;
};
constexpr Slot kSlots[] = {{1, 1200},  {92, 1202}, {71, 1205},  {72, 1204},  {91, 1208}, {75, 1209},
                           {85, 1207}, {86, 1201}, {109, 1201}, {110, 1203}, {73, 1206}};

constexpr std::uint32_t kRotateFlags = 0x40000003;

struct ColourCommand {
    EditorCommand command;
    std::uint32_t flags;
    ColourProperty property;
};
constexpr ColourCommand kColourCommands[] = {
    {EditorCommand::Saturation, 0x40000008, ColourProperty::Saturation},
    {EditorCommand::Contrast, 0x40000004, ColourProperty::Contrast},
    {EditorCommand::Brightness, 0x40000002, ColourProperty::Intensity},
    {EditorCommand::ChangeColours, 0x40000020, ColourProperty::Hue},
};

// What a failed command's box says.
QString failureText(const std::exception& failure) {
    if (dynamic_cast<const HistoryOverflow*>(&failure) != nullptr) {
        return app::text(kHistoryFull);
    }
    if (dynamic_cast<const std::length_error*>(&failure) != nullptr) {
        return app::text(kTooLarge);
    }
    return app::errorText(failure);
}

} // namespace

frmOptionenBMP::frmOptionenBMP(QWidget* owner) : QDialog(owner) {
    setObjectName(QStringLiteral("frmOptionenBMP"));
    setModal(true);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* bar = app::makeNamed<QMenuBar>("Men", this);
    menus_ = new EditorMenus(bar, [this](EditorCommand command) { run(command); });
    lblBildname_ = app::makePlainLabel("lblBildname", this);
    LeadControl_ = new LeadControl(this);
    lblGroesse_ = app::makePlainLabel("lblGroesse", this);
    lblZoom_ = app::makePlainLabel("lblZoom", this);
    auto* status = new QHBoxLayout;
    status->addWidget(lblGroesse_);
    status->addStretch();
    status->addWidget(lblZoom_);
    auto* layout = new QVBoxLayout(this);
    layout->setMenuBar(bar);
    layout->addWidget(lblBildname_);
    layout->addWidget(LeadControl_, 1);
    layout->addLayout(status);
    setMinimumSize(app::toPixels(kLeastWidth, kLeastHeight));
    resize(app::toPixels(kWidth, kHeight).boundedTo(screen()->availableSize()));
    connect(LeadControl_, &LeadControl::zoomed, this, &frmOptionenBMP::showZoom);
}

frmOptionenBMP::~frmOptionenBMP() = default;

// --- Opening and closing

frmOptionenBMP::Outcome frmOptionenBMP::openFor(const store::Library& library,
                                                const PictureInGroup& picture) {
    library_ = &library;
    picture_ = picture;
    outcome_ = Outcome::Unchanged;
    if (load()) {
        setCaptions();
        setStrings();
        centreOnScreen(*this);
        app::execModally(*this);
        closeDocument();
    }
    library_ = nullptr;
    return outcome_;
}

bool frmOptionenBMP::load() {
    struct Opened {
        std::unique_ptr<BitmapDocument> document;
        DisplayLevels display;
    };
    try {
        const auto folder = app::settings().restoredTemporaryFolderPath();
        Opened opened =
            app::resultOfLong<Opened>({app::text(kReading)}, parentWidget(), [&](store::Progress&) {
                const auto stored = store::readPicture(*library_, picture_.group, picture_.name);
                auto document = std::make_unique<BitmapDocument>(*library_, stored, folder);
                DisplayLevels display(document->picture().image);
                return Opened{std::move(document), std::move(display)};
            });
        document_ = std::move(opened.document);
        LeadControl_->setPicture(opened.display);
        return true;
    } catch (const ImagingError&) {
        app::msgBox(app::text(kTextFaulty), app::Buttons::Ok, app::text(kTextTitle),
                    parentWidget());
    } catch (const std::exception& failure) {
        app::msgBox(unreadableText(picture_, failure), app::Buttons::Ok, app::kProgramTitle,
                    parentWidget());
    }
    return false;
}

void frmOptionenBMP::setCaptions() {
    const QString name = QString::fromStdU16String(picture_.name.text);
    setWindowTitle(app::text(kTextTitle));
    menus_->setCaptions();
    lblBildname_->setText(name);
    LeadControl_->setAccessibleName(name);
    showSize();
}

void frmOptionenBMP::setStrings() {
    for (const Slot& slot : kSlots) {
        dlgLead_.setString(slot.number, app::text(slot.textId));
    }
}

void frmOptionenBMP::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        centreOnScreen(*this);
        LeadControl_->showWhole();
        LeadControl_->setFocus();
        startAfresh();
    }
}

// Not what the window system calls activation: that comes after every box, dialog and visit to
// another program, and would take away the step that was just kept.
void frmOptionenBMP::startAfresh() {
    document_->startHistoryAfresh();
    updateHistoryItems();
    LeadControl_->viewport()->update();
}

// The window is kept for the next picture, this one's memory and history are not.
void frmOptionenBMP::closeDocument() {
    LeadControl_->setPicture({});
    app::runLong({app::text(kTidying)}, parentWidget(), [this](store::Progress&) {
        document_->removeHistory();
        document_.reset();
    });
}

// --- Commands

void frmOptionenBMP::run(EditorCommand command) {
    switch (command) {
    case EditorCommand::Save:
        save();
        break;
    case EditorCommand::Back:
        back();
        break;
    case EditorCommand::Undo:
        doStep(&BitmapDocument::undo);
        break;
    case EditorCommand::Redo:
        doStep(&BitmapDocument::redo);
        break;
    case EditorCommand::ZoomIn:
        LeadControl_->zoomIn();
        break;
    case EditorCommand::ZoomOut:
        LeadControl_->zoomOut();
        break;
    case EditorCommand::Help:
        app::showHelp(app::HelpTopic::BitmapEditor, this);
        break;
    default:
        runEdit(command);
    }
}

void frmOptionenBMP::runEdit(EditorCommand command) {
    switch (command) {
    case EditorCommand::FlipVertical:
        change(operations::Flip{});
        break;
    case EditorCommand::FlipHorizontal:
        change(operations::Reverse{});
        break;
    case EditorCommand::RotateLeft:
        change(operations::Rotation{-kQuarterTurn, Canvas::Grow, kBlack}, Control::IsHidden);
        break;
    case EditorCommand::RotateRight:
        change(operations::Rotation{kQuarterTurn, Canvas::Grow, kBlack}, Control::IsHidden);
        break;
    case EditorCommand::RotateFreely:
        rotateFreely();
        break;
    case EditorCommand::Invert:
        change(operations::Inversion{});
        break;
    default:
        changeColours(command);
    }
}

void frmOptionenBMP::doStep(const std::function<void(BitmapDocument&)>& step) {
    try {
        (void)app::settings().restoredTemporaryFolderPath(); // the history is written there
        LeadControl_->setPicture(
            app::resultOfLong<DisplayLevels>({app::text(kChanging)}, this, [&](store::Progress&) {
                step(*document_);
                return DisplayLevels(document_->picture().image);
            }));
    } catch (const std::exception& failure) {
        tell(failure);
    }
    updateHistoryItems();
    showSize();
}

void frmOptionenBMP::change(const Edit& edit, Control control) {
    const bool hadFocus = LeadControl_->hasFocus();
    LeadControl_->setVisible(control == Control::Stays);
    doStep([&](BitmapDocument& document) { document.change(edit); });
    LeadControl_->show();
    if (hadFocus) {
        LeadControl_->setFocus();
    }
}

// The dialogs give the picture back before it is changed: shared pixels would be copied.
bool frmOptionenBMP::isConfirmed(void (ParameterDialogs::*ask)(QWidget*)) {
    dlgLead_.setPreview(document_->picture().image);
    bool isConfirmed = true;
    try {
        (dlgLead_.*ask)(this);
    } catch (const ImagingError&) {
        isConfirmed = false;
    }
    dlgLead_.setPreview({});
    return isConfirmed;
}

void frmOptionenBMP::rotateFreely() {
    dlgLead_.setInitialAngle(0);
    dlgLead_.setFlags(kRotateFlags);
    dlgLead_.setInitialColour(QColor(255, 0, 0));
    if (isConfirmed(&ParameterDialogs::showRotate)) {
        const Canvas canvas = dlgLead_.isResizing() ? Canvas::Grow : Canvas::Keep;
        change(operations::Rotation{dlgLead_.angle(), canvas, dlgLead_.fillColour().rgb()},
               Control::IsHidden);
    }
}

void frmOptionenBMP::changeColours(EditorCommand command) {
    for (const ColourCommand& each : kColourCommands) {
        if (each.command != command) {
            continue;
        }
        dlgLead_.setTitle(menus_->captionOf(command));
        dlgLead_.setInitialAmount(0);
        dlgLead_.setFlags(each.flags);
        if (isConfirmed(&ParameterDialogs::showColour)) {
            change(operations::ColourChange{each.property, dlgLead_.amount()});
        }
    }
}

// --- Saving and leaving

void frmOptionenBMP::save() {
    frmSave::Request request;
    try {
        (void)app::settings().restoredTemporaryFolderPath();
        request.file = app::resultOfLong<std::filesystem::path>(
            {app::text(kWriting)}, this, [this](store::Progress&) { return document_->write(); });
    } catch (const std::exception& failure) {
        tell(failure); // and nothing is saved: the file would be of an earlier picture
        return;
    }
    request.shownGroup = picture_.group;
    request.name = QString::fromStdU16String(picture_.name.text);
    request.kind = imaging::typeCodeOf(document_->format());
    request.preview = document_->picture().image;
    frmSave dialog(this);
    if (dialog.openFor(*library_, request) == frmSave::Outcome::ShownGroupChanged) {
        outcome_ = Outcome::ToBeRefreshed;
    }
    startAfresh();
}

void frmOptionenBMP::back() {
    outcome_ = Outcome::ToBeRefreshed;
    close();
}

// --- What the window says

void frmOptionenBMP::updateHistoryItems() {
    menus_->setEnabled(EditorCommand::Undo, document_->canUndo());
    menus_->setEnabled(EditorCommand::Redo, document_->canRedo());
}

void frmOptionenBMP::showSize() {
    const QSize size = document_->picture().image.size();
    lblGroesse_->setText(app::text(kPixels).arg(size.width()).arg(size.height()));
    LeadControl_->setAccessibleDescription(lblGroesse_->text());
}

void frmOptionenBMP::showZoom(double factor) {
    const double percent = factor * 100;
    lblZoom_->setText(app::text(kZoom).arg(percent, 0, 'f', percent < 10 ? 1 : 0));
}

void frmOptionenBMP::tell(const std::exception& failure) {
    app::msgBox(failureText(failure), app::Buttons::Ok, app::text(kTextTitle), this);
}

} // namespace editing
