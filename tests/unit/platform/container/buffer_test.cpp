#include <zarn/container/buffer.h>

#include <gtest/gtest.h>

#include <memory>
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

TEST(Buffer, MayBeAPartOfAnother) {
    auto whole = std::make_shared<Buffer>("head body");
    auto const* const bytes = whole->ToStringView().data();
    Buffer const part(whole, whole->ToStringView().substr(5));
    whole.reset(); // the part keeps it
    EXPECT_EQ(part.ToStringView(), "body");
    EXPECT_EQ(part.GetSize(), 4U);
    EXPECT_EQ(part.ToStringView().data(), bytes + 5);
}

} // namespace
} // namespace zarn::container
