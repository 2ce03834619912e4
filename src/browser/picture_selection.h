// Which pictures of the shown group are selected. One of them is the current one, which the window
// names and on which the commands for a single picture work; whoever chooses pictures one by one
// never notices that there could be more.
#pragma once

#include "store/address.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace browser {

store::PictureName pictureNamed(const QString& name);

// What choosing a picture does to the other selected ones.
enum class Selecting {
    Alone,    // they are no longer selected
    Beside,   // they stay, the chosen one becomes current
    Toggle,   // the same, but a selected one that was marked so is no longer
    Range,    // all from the last one chosen otherwise to this one are selected, and no others
    RangeToo, // the same, but the others stay
};

class PictureSelection {
  public:
    // Only that picture; an empty name: none.
    void chooseAlone(const QString& name);

    // The others stay selected if it is one of them.
    void setCurrent(const QString& name);

    // `order` are the group's pictures as they are shown.
    void choose(const QString& name, Selecting how, const QStringList& order);

    void chooseAll(const QStringList& order);

    // Those that a rubber band covers, together with `before`. The current one stays if it is among
    // them, or if there are none, and else is the first of them.
    void chooseBanded(const QStringList& covered, const QSet<QString>& before);

    void rename(const QString& from, const QString& to);

    const QString& current() const { return current_; }
    bool contains(const QString& name) const { return name == current_ || marked_.contains(name); }
    QSet<QString> all() const; // the current one, too

    // Those that are there, in that order.
    QStringList among(const QStringList& order) const;

  private:
    void setRange(const QString& name, const QStringList& order);

    QSet<QString> marked_;
    QString current_;
    QString anchor_; // where a range begins
};

} // namespace browser
