// How names compare.
#include "compound/names.h"

#include <gtest/gtest.h>

namespace compound_tests {
namespace {

using compound::compareNames;

// Letters whose full upper case is longer than one unit have a simple one all the same, but for
// those that have none.
TEST(NamesTest, UpperCaseIsTheSimpleMapping) {
    EXPECT_EQ(compareNames(u"\u1F80", u"\u1F88"), 0);
    EXPECT_EQ(compareNames(u"\u1FB3\u1FF3", u"\u1FBC\u1FFC"), 0);
    EXPECT_NE(compareNames(u"\u00DF", u"\u1E9E"), 0);
    EXPECT_EQ(compareNames(u"\u00FF\u0436", u"\u0178\u0416"), 0);
}

} // namespace
} // namespace compound_tests
