#include <zarn/container/buffer.h>

#include <gtest/gtest.h>

#include <string>

namespace zarn::container {
namespace {

TEST(Buffer, KeepsEveryByte) {
    Buffer const buffer(std::string("a\0b\r\n", 5));
    EXPECT_EQ(buffer.ToStringView(), std::string_view("a\0b\r\n", 5));
    EXPECT_EQ(buffer.GetSize(), 5U);
}

TEST(Buffer, MovesTheBytesWithoutCopying) {
    std::string bytes(1000, 'x');
    auto const* const where = bytes.data();
    Buffer const buffer(std::move(bytes));
    EXPECT_EQ(buffer.ToStringView().data(), where);
}

TEST(Buffer, MayBeEmpty) {
    Buffer const buffer("");
    EXPECT_EQ(buffer.GetSize(), 0U);
    EXPECT_EQ(buffer.ToStringView(), "");
}

} // namespace
} // namespace zarn::container
