#include "base/bytes.h"

#include <gtest/gtest.h>
#include <span>
#include <utility>

namespace base {
namespace {

TEST(BytesTest, OwnTheirContentAlone) {
    const std::vector<std::byte> made{std::byte{1}, std::byte{2}, std::byte{3}};
    Bytes bytes = made;
    Bytes copy = bytes;
    copy.data()[0] = std::byte{7};
    EXPECT_EQ(bytes, made);
    EXPECT_FALSE(copy == bytes);

    const Bytes taken = std::move(bytes);
    EXPECT_EQ(taken, made);
    EXPECT_TRUE(bytes.empty()); // NOLINT(bugprone-use-after-move): what a caller may still ask
    EXPECT_EQ(bytes.begin(), bytes.end());

    copy = taken;
    copy = static_cast<const Bytes&>(copy);
    EXPECT_EQ(copy, made);
    EXPECT_TRUE(std::span<const std::byte>(Bytes(std::size_t{0})).empty());
}

} // namespace
} // namespace base
