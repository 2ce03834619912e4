#include "browser/picture_selection.h"

#include <algorithm>

namespace browser {

store::PictureName pictureNamed(const QString& name) {
    return {name.toStdU16String()};
}

void PictureSelection::chooseAlone(const QString& name) {
    marked_.clear();
    if (!name.isEmpty()) {
        marked_.insert(name);
    }
    current_ = name;
    anchor_ = name;
}

void PictureSelection::setCurrent(const QString& name) {
    if (name.isEmpty() || !contains(name)) {
        chooseAlone(name);
    } else {
        current_ = name;
    }
}

void PictureSelection::choose(const QString& name, Selecting how, const QStringList& order) {
    switch (how) {
    case Selecting::Alone:
        chooseAlone(name);
        return;
    case Selecting::Beside:
        break;
    case Selecting::Toggle:
        if (name == current_ && marked_.size() == 1 && marked_.contains(name)) {
            return; // one is selected at least
        }
        if (!marked_.remove(name)) {
            marked_.insert(name);
            break;
        }
        anchor_ = name;
        if (name == current_) {
            const QStringList left = among(order);
            const auto next = std::find_if(left.begin(), left.end(),
                                           [&](const QString& other) { return other != name; });
            current_ = next == left.end() ? name : *next;
        }
        return;
    case Selecting::Range:
        marked_.clear();
        [[fallthrough]];
    case Selecting::RangeToo:
        setRange(name, order);
        current_ = name;
        return;
    }
    current_ = name;
    anchor_ = name;
}

void PictureSelection::setRange(const QString& name, const QStringList& order) {
    const auto to = order.indexOf(name);
    const auto known = order.indexOf(anchor_);
    const auto from = known < 0 ? to : known;
    for (auto i = std::min(from, to); i >= 0 && i <= std::max(from, to); ++i) {
        marked_.insert(order.at(i));
    }
}

void PictureSelection::chooseAll(const QStringList& order) {
    marked_ = QSet<QString>(order.begin(), order.end());
    if (!marked_.contains(current_)) {
        current_ = order.isEmpty() ? QString() : order.first();
        anchor_ = current_;
    }
}

void PictureSelection::chooseBanded(const QStringList& covered, const QSet<QString>& before) {
    marked_ = before + QSet<QString>(covered.begin(), covered.end());
    if (!covered.isEmpty() && !marked_.contains(current_)) {
        current_ = covered.first();
    }
    anchor_ = current_;
}

void PictureSelection::rename(const QString& from, const QString& to) {
    if (marked_.remove(from)) {
        marked_.insert(to);
    }
    for (QString* name : {&current_, &anchor_}) {
        if (*name == from) {
            *name = to;
        }
    }
}

// Inserting what is there would copy all of them.
QSet<QString> PictureSelection::all() const {
    QSet<QString> all = marked_;
    if (!current_.isEmpty() && !marked_.contains(current_)) {
        all.insert(current_);
    }
    return all;
}

QStringList PictureSelection::among(const QStringList& order) const {
    QStringList selected;
    std::copy_if(order.begin(), order.end(), std::back_inserter(selected),
                 [this](const QString& name) { return contains(name); });
    return selected;
}

} // namespace browser
