#include "browser/find_panel.h"

#include "browser/find_field.h"
#include "browser/find_results.h"

#include <QApplication>
#include <QMenuBar>

#include <utility>

namespace browser {

FindPanel::FindPanel(QMenuBar* bar, QWidget* surface)
    : QObject(surface), field_(new FindField(bar)), results_(new FindResults(surface)) {
    connect(field_, &QLineEdit::textChanged, this, &FindPanel::look);
    connect(field_, &FindField::resultsWanted, results_, &FindResults::enter);
    connect(field_, &FindField::chosen, results_, &FindResults::chooseCurrent);
    connect(field_, &FindField::left, this, &FindPanel::leave);
    connect(results_, &FindResults::left, this, &FindPanel::leave);
    connect(results_, &FindResults::currentChanged, this, &FindPanel::currentChanged);
    connect(results_, &FindResults::chosen, this, [this](const finding::Match& match) {
        leave();
        emit wanted(match.group, match.picture ? std::optional(match.picture->name) : std::nullopt);
    });
    connect(&index_, &finding::LibraryIndex::found, results_, &FindResults::showResult);
    connect(&index_, &finding::LibraryIndex::progressed, this, &FindPanel::showProgress);
    connect(qApp, &QApplication::focusChanged, this, &FindPanel::noteFocus);
}

void FindPanel::setLibrary(const store::Library& library) {
    library_ = &library;
    results_->setLibrary(library);
}

void FindPanel::setCaptions() {
    field_->setCaptions();
    results_->setCaptions();
}

void FindPanel::place(const QRect& area, int barWidth) {
    field_->fit(barWidth);
    results_->setGeometry(area);
}

void FindPanel::stop() {
    index_.stop();
    results_->forget();
    library_ = nullptr;
}

void FindPanel::start() {
    field_->setFocus(Qt::ShortcutFocusReason);
    field_->selectAll();
}

std::optional<finding::Match> FindPanel::current() const {
    return results_->isHidden() ? std::nullopt : results_->current();
}

bool FindPanel::isOwn(const QWidget* widget) const {
    return widget == field_ || results_->isAncestorOf(widget);
}

void FindPanel::noteFocus(QWidget* old, QWidget* now) {
    if (now == field_ && library_ != nullptr) {
        index_.start(*library_);
    }
    if (now != nullptr && isOwn(now) && old != nullptr && !isOwn(old)) {
        before_ = old;
    }
}

void FindPanel::look(const QString& text) {
    if (text.trimmed().isEmpty()) {
        index_.findNothing();
        results_->hide();
        results_->forget();
        return;
    }
    if (library_ != nullptr) {
        index_.start(*library_);
        index_.find(text);
    }
    showProgress();
    results_->raise();
    results_->show();
}

void FindPanel::showProgress() {
    results_->showProgress({index_.isReading(), index_.filesRead(), index_.filesInAll()});
}

void FindPanel::leave() {
    const QWidget* focus = QApplication::focusWidget();
    const bool hasFocus = focus != nullptr && isOwn(focus);
    QWidget* before = std::exchange(before_, nullptr);
    if (hasFocus && before != nullptr) {
        before->setFocus();
    }
    field_->clear();
}

} // namespace browser
