#include "host/web/reply.h"

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using testing::Contains;
using testing::Pair;

TEST(Reply, OfTextIsAPlainTextLine) {
    auto const reply = MakeTextReply(Status::NotFound, "Nothing.", {{"Retry-After", "1"}});
    EXPECT_EQ(reply.GetStatus(), Status::NotFound);
    EXPECT_THAT(reply.GetFields(), Contains(Pair("Content-Type", "text/plain; charset=utf-8")));
    EXPECT_THAT(reply.GetFields(), Contains(Pair("Retry-After", "1")));
    ASSERT_EQ(reply.GetBody().size(), 1U);
    EXPECT_EQ(reply.GetBody().front()->ToStringView(), "Nothing.\n");
}

} // namespace
} // namespace zarn::host::web
