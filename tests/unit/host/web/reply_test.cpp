#include "host/web/reply.h"

#include <gmock/gmock.h>

namespace zarn::host::web {
namespace {

using testing::Contains;
using testing::Pair;

TEST(Reply, OfTextIsALineThatSaysItIsText) {
    auto const reply = MakeTextReply(Reply::Status::NotFound, "Nothing.", {{"Retry-After", "1"}});
    EXPECT_EQ(reply.status, Reply::Status::NotFound);
    EXPECT_THAT(reply.fields, Contains(Pair("Content-Type", "text/plain; charset=utf-8")));
    EXPECT_THAT(reply.fields, Contains(Pair("Retry-After", "1")));
    ASSERT_EQ(reply.body.size(), 1U);
    EXPECT_EQ(reply.body.front()->ToStringView(), "Nothing.\n");
}

TEST(Reply, OfTextComesAsACompleteResponseToo) {
    auto const data = MakeTextResponse(Reply::Status::Conflict, "No.")->GetData();
    EXPECT_EQ(data.GetStatus(), Reply::Status::Conflict);
    EXPECT_EQ(data.GetState(), zarn::web::response::State::Complete);
    ASSERT_EQ(data.GetBody().size(), 1U);
    EXPECT_EQ(data.GetBody().front()->ToStringView(), "No.\n");
}

} // namespace
} // namespace zarn::host::web
