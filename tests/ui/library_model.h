// A library in memory, with the plainest of means, and what the main window should show of it. The
// tests do the same to it as to the real one.
#pragma once

#include <QByteArray>
#include <QColor>
#include <QString>
#include <QStringList>

#include <compare>
#include <map>
#include <optional>
#include <vector>

namespace library_model {

// A picture file, and what the library should know of it.
struct Source {
    QString file;
    QString type;
    QString height; // pixels as text, with a decimal point
    QString width;
    QColor colour; // of every pixel
    QByteArray bytes;
};

bool isSameName(const QString& left, const QString& right); // without regard to case

// Elements of a group file: the shorter name first, then by upper case.
struct ElementOrder {
    bool operator()(const QString& left, const QString& right) const;
};

// Group files: by upper case.
struct FileOrder {
    bool operator()(const QString& left, const QString& right) const;
};

struct Address {
    QString file;
    QString storage;

    QString key() const { return storage + u'/' + file; }
    bool operator==(const Address&) const = default;
};

using Pictures = std::map<QString, const Source*, ElementOrder>;

struct Group {
    QString parent; // its storage; empty at the top level
    QString name;
    Pictures pictures;
};

struct Node {
    int depth = 0;
    QString text;
    QString key;

    bool operator==(const Node&) const = default;
};

// Every stream by its path, "Sub1/Name"; every storage, without bytes, by its path and a "/".
using Content = std::map<QString, QByteArray>;

class Library {
  public:
    // The separator of the records' numbers.
    explicit Library(QChar separator) : separator_(separator) {}

    Address addGroup(const std::optional<Address>& parent, const QString& name);
    Address renameGroup(const Address& group, const QString& name); // gives the new address
    void removeGroup(const Address& group);                         // and those below it
    void putPicture(const Address& group, const QString& name, const Source* source);
    void renamePicture(const Address& group, const QString& from, const QString& to);
    void removePicture(const Address& group, const QString& name);

    const Group* find(const Address& group) const;
    Pictures picturesOf(const std::optional<Address>& group) const; // none without a group

    // Case counts.
    bool hasFile(const QString& name) const;
    bool hasFileIgnoringCase(const QString& name) const;
    bool hasSubGroup(const Address& parent, const QString& name) const;
    bool hasPicture(const Address& group, const QString& name) const;
    bool hasPictureIgnoringCase(const Address& group, const QString& name) const;

    // Whether the storages of a top-level group of that name would meet others of the same file.
    bool meetsOtherStorages(const Address& group, const QString& name) const;

    QStringList fileNames() const; // in the folder
    std::vector<Address> groups() const;
    Address largestGroup() const;                             // by pictures; there must be a group
    std::vector<Address> groupsOf(const QString& file) const; // parents before their children
    std::vector<Node> nodes() const;
    Content contentOf(const QString& file) const;
    int pictureCount() const;
    quint64 bytesOf(const Address& group) const; // of pictures and names

  private:
    using Groups = std::map<QString, Group, ElementOrder>; // by storage

    QString nextStorage(const Groups& groups) const;
    void appendBelow(const QString& file, const QString& storage,
                     std::vector<Address>& found) const;
    Group& at(const Address& group) { return files_.at(group.file).at(group.storage); }

    std::map<QString, Groups, FileOrder> files_;
    QChar separator_;
};

// What stands on the screen. The functions are what the user or a command does.
class Window {
  public:
    Window(Library& library, QString noPictureText)
        : library_(library), noPicture_(std::move(noPictureText)) {}

    struct Row {
        QString name;
        const Source* source;
    };

    std::optional<Address> selected;
    bool isStrip = true;
    int cells = 1; // of a page
    QString label;
    const Source* preview = nullptr;
    std::vector<Row> rows; // in the list's order

    std::vector<Row> page() const; // the shown thumbnails
    int pageNumber() const { return page_; }
    int lastPage() const;
    bool showsNoPicture() const { return label == noPicture_; }
    const std::optional<Address>& shown() const { return shown_; }

    void restart();
    void clickNode(const Address& group);
    void clearSelection();
    void groupMade(const Address& group);
    void groupRenamed(const Address& group);
    void groupRemoved();
    void refresh();
    void deletePicture(); // the shown one, from the library as well
    void toggleView();
    void turnTo(int page) { page_ = page; }
    void choose(const QString& name);
    void pictureRenamed(const QString& name);
    void renamedInPlace(const QString& from, const QString& to);

  private:
    void show(const std::optional<Address>& group);
    void showFromBeginning();
    void showFirst();
    void fillRows();
    int pageOf(const QString& name) const;
    bool isOnPage(const QString& name) const;
    std::vector<Row> shownPictures() const;

    Library& library_;
    QString noPicture_;
    std::optional<Address> shown_;   // the group whose pictures are shown
    std::optional<Address> clicked_; // a click on its node changes nothing
    int page_ = 1;
};

} // namespace library_model
