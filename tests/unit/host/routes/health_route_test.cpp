#include "host/routes/health_route.h"
#include "support/test_request.h"
#include "web/ask.h"

#include <zarn/container/buffer.h>

#include <boost/json/object.hpp>
#include <gmock/gmock.h>

namespace zarn::host::routes {
namespace {

using Method = test::TestRequest::Method;
using Status = protocol::network::http::response::Status;

TEST(HealthRoute, ReturnsTheCurrentStatusAsJson) {
    int calls = 0;
    HealthRoute route([&] { return boost::json::value{{"calls", ++calls}}; });
    EXPECT_EQ(calls, 0);
    auto const data = web::Ask(route, std::make_shared<test::TestRequest>(Method::Get, "/api/health"));
    EXPECT_EQ(data.GetStatus(), Status::Ok);
    EXPECT_EQ(data.GetFields().at("Content-Type"), "application/json");
    EXPECT_EQ(data.GetFields().at("Cache-Control"), "no-store");
    EXPECT_EQ(data.GetBody().at(0)->ToStringView(), "{\"calls\":1}\n");
}

TEST(HealthRoute, AnswersHeadAndRefusesOtherMethods) {
    HealthRoute route([] { return boost::json::value(); });
    auto const ask = [&](Method method) {
        return web::Ask(route, std::make_shared<test::TestRequest>(method, "/api/health"));
    };
    EXPECT_EQ(ask(Method::Head).GetStatus(), Status::Ok);
    EXPECT_EQ(ask(Method::Post).GetStatus(), Status::MethodNotAllowed);
    EXPECT_THAT(ask(Method::Post).GetFields().at("Allow"), testing::HasSubstr("GET, HEAD"));
}

} // namespace
} // namespace zarn::host::routes
