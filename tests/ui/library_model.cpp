#include "ui/library_model.h"

#include <algorithm>
#include <utility>

namespace library_model {
namespace {

// 0 for storages that are not numbered.
int numberOf(const QString& storage) {
    return storage.startsWith(QLatin1String("Sub")) ? storage.mid(3).toInt() : 0;
}

} // namespace

bool isSameName(const QString& left, const QString& right) {
    return left.toUpper() == right.toUpper();
}

bool ElementOrder::operator()(const QString& left, const QString& right) const {
    return left.size() != right.size() ? left.size() < right.size()
                                       : left.toUpper() < right.toUpper();
}

bool FileOrder::operator()(const QString& left, const QString& right) const {
    return left.toUpper() < right.toUpper();
}

// --- Library

QString Library::nextStorage(const Groups& groups) const {
    int number = 0;
    for (const auto& [storage, group] : groups) {
        number = std::max(number, numberOf(storage));
    }
    const auto isTaken = [&](const QString& name) {
        return std::any_of(groups.begin(), groups.end(), [&](const auto& entry) {
            return isSameName(entry.first, name) || isSameName(entry.first, name + "Info") ||
                   isSameName(entry.first + "Info", name);
        });
    };
    QString name;
    do {
        name = QStringLiteral("Sub%1").arg(++number);
    } while (isTaken(name));
    return name;
}

Address Library::addGroup(const std::optional<Address>& parent, const QString& name) {
    Address address =
        parent ? Address{parent->file, nextStorage(files_.at(parent->file))} : Address{name, name};
    files_[address.file][address.storage] = {parent ? parent->storage : QString(), name, {}};
    return address;
}

Address Library::renameGroup(const Address& group, const QString& name) {
    if (!at(group).parent.isEmpty()) {
        at(group).name = name;
        return group;
    }
    auto file = files_.extract(group.file);
    for (auto& [storage, other] : file.mapped()) {
        if (other.parent == group.storage) {
            other.parent = name;
        }
    }
    auto top = file.mapped().extract(group.storage);
    top.key() = name;
    top.mapped().name = name;
    file.mapped().insert(std::move(top));
    file.key() = name;
    files_.insert(std::move(file));
    return {name, name};
}

void Library::removeGroup(const Address& group) {
    if (at(group).parent.isEmpty()) {
        files_.erase(group.file);
        return;
    }
    std::vector<Address> doomed{group};
    appendBelow(group.file, group.storage, doomed);
    for (const Address& address : doomed) {
        files_.at(address.file).erase(address.storage);
    }
}

void Library::putPicture(const Address& group, const QString& name, const Source* source) {
    removePicture(group, name); // the new spelling counts
    at(group).pictures[name] = source;
}

void Library::renamePicture(const Address& group, const QString& from, const QString& to) {
    auto picture = at(group).pictures.extract(from);
    picture.key() = to;
    at(group).pictures.insert(std::move(picture));
}

void Library::removePicture(const Address& group, const QString& name) {
    at(group).pictures.erase(name);
}

const Group* Library::find(const Address& group) const {
    const auto file = files_.find(group.file);
    if (file == files_.end()) {
        return nullptr;
    }
    const auto found = file->second.find(group.storage);
    return found == file->second.end() ? nullptr : &found->second;
}

Pictures Library::picturesOf(const std::optional<Address>& group) const {
    const Group* found = group ? find(*group) : nullptr;
    return found == nullptr ? Pictures() : found->pictures;
}

bool Library::hasFile(const QString& name) const {
    const auto file = files_.find(name);
    return file != files_.end() && file->first == name;
}

bool Library::hasFileIgnoringCase(const QString& name) const {
    return files_.contains(name);
}

bool Library::hasSubGroup(const Address& parent, const QString& name) const {
    const Groups& groups = files_.at(parent.file);
    return std::any_of(groups.begin(), groups.end(), [&](const auto& entry) {
        return entry.second.parent == parent.storage && entry.second.name == name;
    });
}

bool Library::hasPicture(const Address& group, const QString& name) const {
    const Pictures pictures = picturesOf(group);
    const auto picture = pictures.find(name);
    return picture != pictures.end() && picture->first == name;
}

bool Library::hasPictureIgnoringCase(const Address& group, const QString& name) const {
    return picturesOf(group).contains(name);
}

bool Library::meetsOtherStorages(const Address& group, const QString& name) const {
    const Groups& groups = files_.at(group.file);
    return std::any_of(groups.begin(), groups.end(), [&](const auto& entry) {
        return entry.first != group.storage &&
               (isSameName(entry.first, name) || isSameName(entry.first + "Info", name) ||
                isSameName(entry.first, name + "Info"));
    });
}

QStringList Library::fileNames() const {
    QStringList names;
    for (const auto& [name, groups] : files_) {
        names.append(name + ".stg");
    }
    return names;
}

void Library::appendBelow(const QString& file, const QString& storage,
                          std::vector<Address>& found) const {
    for (const auto& [child, group] : files_.at(file)) {
        if (group.parent == storage) {
            found.push_back({file, child});
            appendBelow(file, child, found);
        }
    }
}

std::vector<Address> Library::groupsOf(const QString& file) const {
    std::vector<Address> found{{file, file}};
    appendBelow(file, file, found);
    return found;
}

std::vector<Address> Library::groups() const {
    std::vector<Address> all;
    for (const auto& [file, groups] : files_) {
        const std::vector<Address> found = groupsOf(file);
        all.insert(all.end(), found.begin(), found.end());
    }
    return all;
}

Address Library::largestGroup() const {
    const std::vector<Address> all = groups();
    return *std::max_element(all.begin(), all.end(), [&](const auto& left, const auto& right) {
        return picturesOf(left).size() < picturesOf(right).size();
    });
}

std::vector<Node> Library::nodes() const {
    std::vector<Node> nodes;
    for (const Address& address : groups()) {
        const Group* group = find(address);
        int depth = 0;
        for (const Group* above = group; !above->parent.isEmpty(); ++depth) {
            above = find({address.file, above->parent});
        }
        nodes.push_back({depth, group->name, address.key()});
    }
    return nodes;
}

Content Library::contentOf(const QString& file) const {
    Content content;
    for (const auto& [storage, group] : files_.at(file)) {
        content[storage + u'/'] = {};
        content[storage + "Info/"] = {};
        content[storage + "/Name"] = group.name.toLatin1();
        content[storage + "/Parent"] = group.parent.isEmpty() ? "None" : group.parent.toLatin1();
        for (const auto& [name, source] : group.pictures) {
            content[storage + u'/' + name] = source->bytes;
            QString record = u'h' + source->height + u'w' + source->width + u't' + source->type;
            content[storage + "Info/" + name] = record.replace(u'.', separator_).toLatin1();
        }
    }
    return content;
}

int Library::pictureCount() const {
    std::size_t count = 0;
    for (const auto& [name, groups] : files_) {
        for (const auto& [storage, group] : groups) {
            count += group.pictures.size();
        }
    }
    return static_cast<int>(count);
}

quint64 Library::bytesOf(const Address& group) const {
    qsizetype bytes = 0;
    for (const auto& [path, stream] : contentOf(group.file)) {
        bytes += path.startsWith(group.storage + u'/') ? stream.size() : 0;
    }
    return static_cast<quint64>(bytes);
}

// --- Window

std::vector<Window::Row> Window::shownPictures() const {
    std::vector<Row> pictures;
    for (const auto& [name, source] : library_.picturesOf(shown_)) {
        pictures.push_back({name, source});
    }
    return pictures;
}

// Pages are cut by the elements of a group, of which two are no pictures.
std::vector<Window::Row> Window::page() const {
    std::vector<Row> pictures;
    Pictures elements = library_.picturesOf(shown_);
    elements["Name"] = nullptr;
    elements["Parent"] = nullptr;
    int index = 0;
    for (const auto& [name, source] : elements) {
        if (index++ >= cells * (page_ - 1) && source != nullptr &&
            static_cast<int>(pictures.size()) < cells) {
            pictures.push_back({name, source});
        }
    }
    return pictures;
}

int Window::pageOf(const QString& name) const {
    Pictures elements = library_.picturesOf(shown_);
    elements["Name"] = nullptr;
    elements["Parent"] = nullptr;
    const auto before = std::distance(elements.begin(), elements.find(name));
    return static_cast<int>(before) / cells + 1;
}

bool Window::isOnPage(const QString& name) const {
    const std::vector<Row> shown = page();
    return std::any_of(shown.begin(), shown.end(),
                       [&name](const Row& row) { return row.name == name; });
}

int Window::lastPage() const {
    const Pictures pictures = library_.picturesOf(shown_);
    return pictures.empty() ? 1 : pageOf(pictures.rbegin()->first);
}

void Window::fillRows() {
    rows = shownPictures();
}

void Window::showFirst() {
    const std::vector<Row> pictures = shownPictures();
    label = pictures.empty() ? noPicture_ : pictures.front().name;
    preview = pictures.empty() ? nullptr : pictures.front().source;
}

void Window::show(const std::optional<Address>& group) {
    shown_ = group;
    clicked_ = group;
    showFromBeginning();
}

void Window::showFromBeginning() {
    page_ = 1;
    if (!isStrip) {
        fillRows();
    }
    showFirst();
}

void Window::restart() {
    shown_ = selected;
    clicked_.reset();
    isStrip = true;
    page_ = 1;
    preview = nullptr;
    label = shown_ && shownPictures().empty() ? noPicture_ : QString();
}

void Window::clickNode(const Address& group) {
    selected = group;
    if (clicked_ != group) {
        show(group);
    }
}

void Window::groupMade(const Address& group) {
    selected = group;
    show(group);
}

void Window::groupRenamed(const Address& group) {
    selected = group;
    show(group);
}

void Window::clearSelection() {
    selected.reset();
    shown_.reset();
    clicked_.reset();
    page_ = 1;
    rows.clear();
    label.clear();
    preview = nullptr;
}

void Window::groupRemoved() {
    const std::vector<Address> left = library_.groups();
    if (left.empty()) {
        clearSelection();
        return;
    }
    selected = left.front();
    show(selected);
}

void Window::refresh() {
    if (!shown_) {
        return;
    }
    if (!isStrip) {
        showFromBeginning();
        return;
    }
    page_ = std::min(page_, lastPage());
    const Pictures pictures = library_.picturesOf(shown_);
    const auto picture = pictures.find(label);
    const bool isEmptyGroup = shown_ && pictures.empty();
    if (picture != pictures.end()) {
        label = picture->first;
        preview = picture->second;
    } else if (isEmptyGroup || !label.isEmpty()) {
        showFirst();
    }
}

void Window::deletePicture() {
    const QString name = label;
    const Pictures before = library_.picturesOf(shown_);
    const auto found = before.find(name);
    const auto behind = std::next(found);
    if (isStrip && before.size() > 1) {
        label = (behind != before.end() ? behind : std::prev(found))->first;
    }
    library_.removePicture(*shown_, name);
    if (isStrip && before.size() > 1 && !isOnPage(label)) {
        page_ = pageOf(label);
    }
    refresh();
}

void Window::toggleView() {
    isStrip = !isStrip;
    const bool isChosen = library_.picturesOf(shown_).contains(label);
    if (isStrip) {
        page_ = std::min(page_, lastPage());
        if (isChosen && !isOnPage(label)) {
            page_ = pageOf(label);
        }
        return;
    }
    fillRows();
    if (shown_ && !isChosen) {
        showFirst();
    }
}

void Window::choose(const QString& name) {
    label = name;
    preview = library_.picturesOf(shown_).at(name);
}

void Window::pictureRenamed(const QString& name) {
    label = name;
    page_ = std::min(page_, lastPage());
    if (!isStrip) {
        fillRows();
    }
}

void Window::renamedInPlace(const QString& from, const QString& to) {
    for (Row& row : rows) {
        row.name = row.name == from ? to : row.name;
    }
    label = to;
}

} // namespace library_model
