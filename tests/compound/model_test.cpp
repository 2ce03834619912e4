// A tree in memory beside the real file, under the same random operations: after each commit the
// file is sound and both hold the same.
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/names.h"

#include <gtest/gtest.h>
#include <optional>
#include <random>

namespace compound_tests {
namespace {

using compound::CompoundFile;
using compound::Element;
using compound::ElementKind;
using compound::Error;
using compound::ErrorCode;
using compound::IfExists;
using compound::SectorSize;
using compound::Storage;

const std::filesystem::path kPath = "model.stg";

struct ByName {
    bool operator()(const std::u16string& left, const std::u16string& right) const {
        return compound::compareNames(left, right) < 0;
    }
};

struct Node {
    ElementKind kind = ElementKind::Storage;
    std::vector<std::byte> bytes;
    std::map<std::u16string, Node, ByName> below;
};

void flatten(const Node& node, const std::u16string& path, Content& into) {
    for (const auto& [name, child] : node.below) {
        if (child.kind == ElementKind::Stream) {
            into[path + name] = child.bytes;
        } else {
            into[path + name + u"/"] = {};
            flatten(child, path + name + u"/", into);
        }
    }
}

Content contentOf(const Node& node) {
    Content content;
    flatten(node, u"", content);
    return content;
}

// Does the same to the file and to the model.
class Pair {
  public:
    Pair(SectorSize sectorSize, std::uint32_t seed) : random_(seed) {
        file_.emplace(CompoundFile::create(disk_.create(kPath), sectorSize));
        commit();
    }

    void step() {
        const std::uint32_t what = below(100);
        if (what < 8) {
            commit();
        } else if (what < 10) {
            drop();
        } else if (what < 13) {
            reopen();
        } else {
            change();
        }
    }

    void commit() {
        file_->commit();
        committed_ = model_;
        ASSERT_EQ(findingsOf(*file_), "");
        ASSERT_TRUE(compound_tests::contentOf(*file_) == contentOf(model_));
        ASSERT_EQ(findingsOf(disk_, kPath), "");
        ASSERT_TRUE(compound_tests::contentOf(disk_, kPath) == contentOf(model_));
    }

  private:
    // A storage of the file and the same one of the model.
    struct Place {
        Storage storage;
        Node* node;
    };

    std::uint32_t below(std::uint32_t bound) {
        return static_cast<std::uint32_t>(random_() % bound);
    }

    void drop() {
        file_->dropChanges();
        model_ = committed_;
    }

    void reopen() {
        file_.reset(); // which drops what was not committed
        file_.emplace(openFile(disk_, kPath));
        model_ = committed_;
    }

    Place somewhere() {
        Place place{file_->root(), &model_};
        while (below(3) != 0) {
            std::vector<std::u16string> storages;
            for (const auto& [name, child] : place.node->below) {
                if (child.kind == ElementKind::Storage) {
                    storages.push_back(name);
                }
            }
            if (storages.empty()) {
                break;
            }
            const std::u16string& name =
                storages[below(static_cast<std::uint32_t>(storages.size()))];
            place = {place.storage.openStorage(name), &place.node->below.at(name)};
        }
        return place;
    }

    // Few enough to meet again, in both cases, of many lengths and scripts.
    std::u16string someName() {
        static const std::u16string kUnits = u"aAbBzZ09_äÄßéÉωΩжЖ";
        std::u16string name(below(8) == 0 ? 31 : 1 + below(3), u'x');
        name.back() = kUnits[below(static_cast<std::uint32_t>(kUnits.size()))];
        if (name.size() > 1) {
            name.front() = kUnits[below(static_cast<std::uint32_t>(kUnits.size()))];
        }
        return name;
    }

    std::vector<std::byte> someBytes() {
        constexpr std::size_t kSizes[] = {0,    1,    63,   64,   65,   511,  512,   513,   4032,
                                          4095, 4096, 4097, 8192, 8193, 9000, 20000, 150000};
        return patterned(kSizes[below(std::size(kSizes))], below(1000));
    }

    void change() {
        Place place = somewhere();
        const std::u16string name = someName();
        const auto found = place.node->below.find(name);
        const bool there = found != place.node->below.end();
        ASSERT_EQ(place.storage.find(name).has_value(), there);
        switch (below(7)) {
        case 0:
        case 1:
            return create(place, name, ElementKind::Stream);
        case 2:
            return create(place, name, ElementKind::Storage);
        case 3:
            return rename(place, name, someName());
        case 4:
            if (there && (found->second.below.size() < 3 || below(4) == 0)) {
                place.storage.destroy(name);
                place.node->below.erase(found);
            }
            return;
        default:
            if (there && found->second.kind == ElementKind::Stream) {
                fill(place.storage.openStream(name), found->second);
            }
        }
    }

    void create(Place& place, const std::u16string& name, ElementKind kind) {
        const bool there = place.node->below.contains(name);
        const IfExists ifExists = below(2) == 0 ? IfExists::Refuse : IfExists::Replace;
        try {
            if (kind == ElementKind::Stream) {
                place.storage.createStream(name, ifExists);
            } else {
                place.storage.createStorage(name, ifExists);
            }
            ASSERT_FALSE(there && ifExists == IfExists::Refuse);
        } catch (const Error& error) {
            ASSERT_EQ(error.code(), ErrorCode::Exists);
            ASSERT_TRUE(there && ifExists == IfExists::Refuse);
            return;
        }
        place.node->below.erase(name);
        Node& node = place.node->below[name];
        node.kind = kind;
        if (kind == ElementKind::Stream) {
            fill(place.storage.openStream(name), node);
        }
    }

    void rename(Place& place, const std::u16string& from, const std::u16string& to) {
        auto& nodes = place.node->below;
        const bool itself = compound::compareNames(from, to) == 0;
        const bool possible = nodes.contains(from) && (itself || !nodes.contains(to));
        try {
            place.storage.rename(from, to);
            ASSERT_TRUE(possible);
        } catch (const Error&) {
            ASSERT_FALSE(possible);
            return;
        }
        auto node = nodes.extract(from);
        node.key() = to;
        nodes.insert(std::move(node));
    }

    void fill(compound::Stream stream, Node& node) {
        const std::vector<std::byte> bytes = someBytes();
        if (below(2) == 0) {
            stream.assign(bytes);
            node.bytes = bytes;
        } else {
            stream.append(bytes);
            node.bytes.insert(node.bytes.end(), bytes.begin(), bytes.end());
        }
        ASSERT_EQ(stream.size(), node.bytes.size());
        const std::size_t offset = below(static_cast<std::uint32_t>(node.bytes.size()) + 10);
        std::vector<std::byte> part(below(10000));
        part.resize(stream.read(offset, part));
        ASSERT_LE(part.size(), node.bytes.size());
        ASSERT_TRUE(std::equal(
            part.begin(), part.end(),
            node.bytes.begin() + static_cast<std::ptrdiff_t>(std::min(offset, node.bytes.size()))));
    }

    std::mt19937 random_;
    MemoryDisk disk_;
    std::optional<CompoundFile> file_;
    Node model_;
    Node committed_;
};

class ModelTest : public testing::TestWithParam<SectorSize> {};

INSTANTIATE_TEST_SUITE_P(Sectors, ModelTest, testing::ValuesIn(kBothSectorSizes));

TEST_P(ModelTest, FileAndModelStayTheSame) {
    for (std::uint32_t seed = 1; seed <= 3; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Pair pair(GetParam(), seed);
        for (int step = 0; step < 800; ++step) {
            pair.step();
            if (HasFatalFailure()) {
                return;
            }
        }
        pair.commit();
    }
}

// One storage of many elements, added and removed in random order: the tree stays legal.
TEST_P(ModelTest, LargeStorageStaysSound) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), GetParam());
    std::map<std::u16string, int, ByName> present;
    std::mt19937 random(3);
    for (int round = 0; round < 6; ++round) {
        for (int change = 0; change < 500; ++change) {
            std::u16string name = u"n";
            for (const char digit : std::to_string(random() % 900)) {
                name += static_cast<char16_t>(digit);
            }
            if (present.erase(name) > 0) {
                file.root().destroy(name);
            } else {
                file.root().createStream(name);
                present.emplace(name, 0);
            }
        }
        file.commit();
        ASSERT_EQ(findingsOf(file), "");
        auto cursor = file.root().elements();
        EXPECT_EQ(cursor.skip(7), 7U);
        auto expected = std::next(present.begin(), 7);
        for (Element element; cursor.next(element); ++expected) {
            ASSERT_EQ(element.name, expected->first);
        }
        EXPECT_EQ(expected, present.end());
    }
}

} // namespace
} // namespace compound_tests
