#include "base/bytes.h"

#include <gtest/gtest.h>
#include <span>
#include <utility>
#include <vector>

namespace base {
namespace {

TEST(BytesTest, OwnTheirContentAlone) {
    const std::vector<std::byte> made{std::byte{1}, std::byte{2}, std::byte{3}};
    std::vector<Bytes> bytes{made};
    Bytes copy = bytes.front();
    copy.data()[0] = std::byte{7};
    EXPECT_EQ(bytes.front(), made);
    EXPECT_FALSE(copy == bytes.front());

    const Bytes taken = std::move(bytes.front());
    EXPECT_EQ(taken, made);
    EXPECT_TRUE(bytes.front().empty());
    EXPECT_EQ(bytes.front().begin(), bytes.front().end());

    copy = taken;
    copy = static_cast<const Bytes&>(copy);
    EXPECT_EQ(copy, made);
    EXPECT_TRUE(std::span<const std::byte>(Bytes(std::size_t{0})).empty());
}

} // namespace
} // namespace base
