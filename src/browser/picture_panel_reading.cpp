// How the picture panel reads its group: beside the window, and what is wanted of it is shown when
// it has come. What is wanted meanwhile goes along.
#include "app/long_operation.h"
#include "browser/large_preview.h"
#include "browser/picture_list.h"
#include "browser/picture_panel.h"
#include "browser/status_line.h"
#include "browser/thumbnail_layout.h"
#include "browser/thumbnail_strip.h"
#include "compound/error.h"
#include "store/names.h"
#include "store/picture_operations.h"

#include <QScrollBar>
#include <QSignalBlocker>

#include <utility>

namespace browser {
namespace {

std::optional<groups::GroupContent> contentIfReadable(const store::Library& library,
                                                      const groups::ShownPictures& shown) {
    constexpr int kAttempts = 2; // a picture may go between two looks into the file
    for (int i = 0; i < kAttempts; ++i) {
        try {
            return groups::readContent(library, shown);
        } catch (const compound::Error& failure) {
            if (failure.code() != compound::ErrorCode::NotFound) {
                break;
            }
        } catch (const std::exception&) {
            break;
        }
    }
    return std::nullopt; // shown as a group without pictures
}

} // namespace

bool isSameState(const store::PictureNames& one, const store::PictureNames& other) {
    return one.latest && other.latest && one.latest->isSameStateAs(*other.latest);
}

void PicturePanel::connectReading() {
    connect(&reading_, &app::Job::done, this, &PicturePanel::takeReading);
    connect(&describing_, &app::Job::done, this, [this] {
        if (const auto described = std::exchange(describing_.result(), {})) {
            takeDescription(*described);
        } else {
            shownSizes_.clear();
            describeSelection();
        }
        emit editItemWanted(describedFor_);
    });
}

bool PicturePanel::isReading() const {
    return reading_.isBusy() || describing_.isBusy();
}

void PicturePanel::stopReading() {
    reading_.drop();
    describing_.drop();
    awaited_ = {};
}

void PicturePanel::awaitShown() {
    while (isReading() && !app::isLongOperationRunning()) {
        app::runLong(app::readingLibrary(), surface_->window(),
                     [](store::Progress&) { app::readers().finish(); });
    }
}

void PicturePanel::setGroup(const std::optional<store::GroupAddress>& group) {
    const bool isOther = group_ != group;
    group_ = group;
    if (isOther && reading_.isBusy()) {
        read();
    }
}

// What does not belong to the group must not stand there until it has been read: a key would act on
// a picture of that name in this one.
void PicturePanel::leaveOtherGroup() {
    if (listedGroup_ == group_) {
        return;
    }
    listedGroup_.reset();
    listed_ = {};
    ++listing_;
    loader_.stop();
    strip_->clear();
    hideToolTip();
    if (lvwInfo_->group() != group_) {
        lvwInfo_->fill(group_, {});
    }
    if (awaited_.choice == Awaited::Choice::First) {
        setShownPicture({});
    }
}

void PicturePanel::awaitFirstPicture() {
    selection_.chooseAlone({});
    awaited_.choice = Awaited::Choice::First;
}

void PicturePanel::awaitShownPicture() {
    if (!shownPicture_.isUnchosen() && awaited_.choice != Awaited::Choice::First) {
        awaited_.choice = Awaited::Choice::Shown;
    }
}

void PicturePanel::awaitPicture(const store::PictureName& picture) {
    describing_.drop();
    setShownPicture(commands::ShownPicture(picture));
    awaited_.choice = Awaited::Choice::Shown;
}

void PicturePanel::awaitPage(Awaited::Page page, std::size_t start) {
    if (page <= Awaited::Page::Stay && page < awaited_.page) {
        return; // what is awaited already says more
    }
    awaited_.page = page;
    awaited_.start = start;
}

void PicturePanel::awaitRows(const QStringList& selected) {
    awaited_.rows = true;
    awaited_.selectedRows = selected;
}

void PicturePanel::read() {
    if (library_ == nullptr || !group_) {
        stopReading();
        leaveOtherGroup();
        return;
    }
    leaveOtherGroup();
    using Want = groups::ShownPictures::Want;
    groups::ShownPictures question{*group_, {}};
    question.want = awaited_.rows ? Want::Entries : Want::Names;
    if (awaited_.choice != Awaited::Choice::First) {
        question.picture = shownPicture_.name();
    }
    reading_.start([library = *library_, question, order = lvwInfo_->order()] {
        Reading reading{contentIfReadable(library, question), {}};
        if (reading.content) {
            reading.rows = makeRows(std::exchange(reading.content->entries, {}), order);
        }
        return reading;
    });
}

void PicturePanel::takeReading() {
    const Awaited awaited = std::exchange(awaited_, {});
    Reading reading = std::exchange(reading_.result(), {});
    const std::optional<groups::GroupContent>& content = reading.content;
    const bool isAsListed =
        listedGroup_ == group_ && content && isSameState(listed_, content->names);
    listed_ = content ? content->names : store::PictureNames{};
    listedGroup_ = group_;
    ++listing_;
    takeChoice(awaited, content ? content->selected : std::nullopt);
    if (!GraphicalPreview_) {
        if (awaited.rows) {
            takeRows(awaited, std::move(reading.rows));
        }
    } else if (awaited.page != Awaited::Page::AsListed || !isAsListed) {
        takePage(awaited);
    }
    emit menuStateWanted();
}

void PicturePanel::takeChoice(const Awaited& awaited,
                              const std::optional<store::PictureEntry>& selected) {
    using Choice = Awaited::Choice;
    if (awaited.choice == Choice::None || (awaited.rows && awaited.choice == Choice::First)) {
        return; // with rows it is the one that stands first there
    }
    const bool isGone =
        selected && awaited.choice == Choice::Shown &&
        !(shownPicture_.name() && store::sameName(selected->name.text, shownPicture_.name()->text));
    if (isGone) {
        selection_.chooseAlone({});
    }
    if (!selected) {
        ShowNoPicture();
        return;
    }
    setShownPicture(commands::ShownPicture(selected->name));
    showStored(*selected);
}

void PicturePanel::takeRows(const Awaited& awaited,
                            std::vector<std::unique_ptr<QTreeWidgetItem>> rows) {
    const std::size_t count = rows.size();
    lvwInfo_->fill(group_, std::move(rows));
    lvwInfo_->selectFirst();
    if (!awaited.selectedRows.isEmpty()) {
        lvwInfo_->select(awaited.selectedRows);
    }
    emit pagesShown({count, 1, 1});
    const bool isShown =
        !shownPicture_.isUnchosen() && lvwInfo_->selectedName() == shownPicture_.nameText();
    if (awaited.choice == Awaited::Choice::First || !isShown) {
        showListRow();
    }
}

void PicturePanel::takePage(const Awaited& awaited) {
    using Page = Awaited::Page;
    setPageRange();
    if (awaited.page == Page::None) {
        return;
    }
    if (awaited.page == Page::OfShown) {
        turnToShownPicture();
    }
    showPageFrom(awaited.page == Page::Start ? awaited.start : pageStart());
}

void PicturePanel::describe(const store::PictureName& picture) {
    shownType_.clear();
    if (library_ == nullptr || !group_) {
        return;
    }
    describing_.start(
        [library = *library_, group = *group_, picture]() -> std::optional<store::PictureEntry> {
            try {
                return store::describePicture(library, group, picture);
            } catch (const std::exception&) {
                return std::nullopt; // the preview says that it cannot be read
            }
        });
}

} // namespace browser
