#include "compound/red_black_tree.h"

#include <algorithm>

namespace compound {

using namespace format;

namespace {

// No sound tree of 32-bit entry numbers is higher; a ring is.
constexpr std::size_t kGreatestHeight = 64;

std::size_t fieldOf(bool left) {
    return left ? entry::kLeftAt : entry::kRightAt;
}

} // namespace

EntryId RedBlackTree::child(EntryId id, Side side) {
    return side == Side::Left ? directory_.left(id) : directory_.right(id);
}

void RedBlackTree::setChild(EntryId id, Side side, EntryId value) {
    directory_.setLink(id, fieldOf(side == Side::Left), value);
}

// Puts `by` where `old` hangs below `parent`; the storage itself stands above the tree's root.
void RedBlackTree::replace(EntryId parent, EntryId old, EntryId by) {
    if (parent == storage_) {
        directory_.setLink(storage_, entry::kChildAt, by);
    } else {
        setChild(parent, child(parent, Side::Left) == old ? Side::Left : Side::Right, by);
    }
}

// Turns `top` down to the side `to`; its child of the other side takes its place.
void RedBlackTree::rotate(EntryId parent, EntryId top, Side to) {
    const EntryId riser = child(top, other(to));
    setChild(top, other(to), child(riser, to));
    setChild(riser, to, top);
    replace(parent, top, riser);
}

bool RedBlackTree::isRed(EntryId id) {
    return id != kNoEntry && directory_.colour(id) == Colour::Red;
}

EntryId RedBlackTree::above(std::size_t level) const {
    return level < path_.size() ? path_[path_.size() - 1 - level] : storage_;
}

void RedBlackTree::goDown(EntryId id) {
    if (path_.size() >= kGreatestHeight) {
        throw Unsound{};
    }
    path_.push_back(id);
}

// Fills path_ with the way to where the entry's name belongs, the entry itself left out.
void RedBlackTree::descendTo(EntryId id) {
    const std::u16string name = directory_.name(id);
    path_.clear();
    for (EntryId at = directory_.child(storage_); at != kNoEntry && at != id;) {
        goDown(at);
        at = child(at, directory_.compare(name, at) < 0 ? Side::Left : Side::Right);
    }
}

bool RedBlackTree::insert(EntryId id) {
    try {
        link(id);
        return true;
    } catch (const Unsound&) {
        return false;
    }
}

bool RedBlackTree::remove(EntryId id) {
    try {
        return unlink(id);
    } catch (const Unsound&) {
        return false;
    }
}

void RedBlackTree::link(EntryId id) {
    descendTo(id);
    setChild(id, Side::Left, kNoEntry);
    setChild(id, Side::Right, kNoEntry);
    directory_.setColour(id, Colour::Red);
    if (path_.empty()) {
        directory_.setLink(storage_, entry::kChildAt, id);
    } else {
        const bool before = directory_.compare(directory_.name(id), path_.back()) < 0;
        setChild(path_.back(), before ? Side::Left : Side::Right, id);
    }
    mendAfterInsert(id);
    directory_.setColour(directory_.child(storage_), Colour::Black);
}

void RedBlackTree::mendAfterInsert(EntryId id) {
    while (path_.size() >= 2 && isRed(path_.back())) {
        EntryId parent = above(0);
        const EntryId grand = above(1);
        const Side side = child(grand, Side::Left) == parent ? Side::Left : Side::Right;
        const EntryId uncle = child(grand, other(side));
        if (isRed(uncle)) {
            directory_.setColour(parent, Colour::Black);
            directory_.setColour(uncle, Colour::Black);
            directory_.setColour(grand, Colour::Red);
            id = grand;
            path_.resize(path_.size() - 2);
            continue;
        }
        if (child(parent, other(side)) == id) {
            rotate(grand, parent, side);
            parent = id;
        }
        directory_.setColour(parent, Colour::Black);
        directory_.setColour(grand, Colour::Red);
        rotate(above(2), grand, other(side));
        return;
    }
}

// An entry with two children changes places with the next one in order, which has no left child.
void RedBlackTree::exchangeWithSuccessor(EntryId id) {
    const std::size_t place = path_.size();
    goDown(id);
    EntryId next = child(id, Side::Right);
    while (child(next, Side::Left) != kNoEntry) {
        goDown(next);
        next = child(next, Side::Left);
    }
    const EntryId parent = path_.back();
    const EntryId rest = child(next, Side::Right);
    const Colour colour = directory_.colour(next);
    directory_.setColour(next, directory_.colour(id));
    directory_.setColour(id, colour);
    replace(place == 0 ? storage_ : path_[place - 1], id, next);
    setChild(next, Side::Left, child(id, Side::Left));
    if (parent == id) {
        setChild(next, Side::Right, id);
    } else {
        setChild(next, Side::Right, child(id, Side::Right));
        setChild(parent, Side::Left, id);
    }
    setChild(id, Side::Left, kNoEntry);
    setChild(id, Side::Right, rest);
    path_[place] = next;
}

bool RedBlackTree::unlink(EntryId id) {
    descendTo(id);
    const EntryId parent = above(0);
    const bool linked = parent == storage_
                            ? directory_.child(storage_) == id
                            : child(parent, Side::Left) == id || child(parent, Side::Right) == id;
    if (!linked) {
        return false;
    }
    if (child(id, Side::Left) != kNoEntry && child(id, Side::Right) != kNoEntry) {
        exchangeWithSuccessor(id);
    }
    const EntryId left = child(id, Side::Left);
    const EntryId only = left != kNoEntry ? left : child(id, Side::Right);
    replace(above(0), id, only);
    if (isRed(only)) {
        directory_.setColour(only, Colour::Black);
    } else if (!isRed(id)) {
        mendAfterRemove(only);
    }
    return true;
}

// One black is missing on every way through `id` (which may be no entry at all).
void RedBlackTree::mendAfterRemove(EntryId id) {
    while (!path_.empty() && !isRed(id)) {
        const EntryId parent = above(0);
        const Side side = child(parent, Side::Left) == id ? Side::Left : Side::Right;
        EntryId sibling = child(parent, other(side));
        if (isRed(sibling)) {
            directory_.setColour(sibling, Colour::Black);
            directory_.setColour(parent, Colour::Red);
            rotate(above(1), parent, side);
            path_.back() = sibling;
            path_.push_back(parent);
            sibling = child(parent, other(side));
        }
        if (sibling == kNoEntry) {
            throw Unsound{}; // there are fewer blacks on that side than the colours here tell
        }
        if (!isRed(child(sibling, side)) && !isRed(child(sibling, other(side)))) {
            directory_.setColour(sibling, Colour::Red);
            id = parent;
            path_.pop_back();
            continue;
        }
        if (!isRed(child(sibling, other(side)))) {
            const EntryId near = child(sibling, side);
            directory_.setColour(near, Colour::Black);
            directory_.setColour(sibling, Colour::Red);
            rotate(parent, sibling, other(side));
            sibling = near;
        }
        directory_.setColour(sibling, directory_.colour(parent));
        directory_.setColour(parent, Colour::Black);
        directory_.setColour(child(sibling, other(side)), Colour::Black);
        rotate(above(1), parent, side);
        return;
    }
    if (id != kNoEntry) {
        directory_.setColour(id, Colour::Black);
    }
}

bool RedBlackTree::hasSoundColours() {
    struct Step {
        EntryId id;
        unsigned blacks;
        bool parentRed;
    };
    const EntryId root = directory_.child(storage_);
    if (isRed(root)) {
        return false;
    }
    constexpr unsigned kUnknown = ~0U;
    unsigned expected = kUnknown;
    std::vector<Step> open{{root, 0, false}};
    while (!open.empty()) {
        const Step step = open.back();
        open.pop_back();
        if (step.id == kNoEntry) {
            if (expected == kUnknown) {
                expected = step.blacks;
            }
            if (step.blacks != expected) {
                return false;
            }
            continue;
        }
        const bool red = isRed(step.id);
        if (red && step.parentRed) {
            return false;
        }
        const unsigned blacks = step.blacks + (red ? 0 : 1);
        open.push_back({directory_.left(step.id), blacks, red});
        open.push_back({directory_.right(step.id), blacks, red});
    }
    return true;
}

} // namespace compound
