#include "host/web/request_target.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

struct TargetCase {
    char const* name;
    char const* target;
    std::optional<std::string> origin;
};

class RequestTarget : public testing::TestWithParam<TargetCase> {};

TEST_P(RequestTarget, IsConvertedToOriginForm) { EXPECT_EQ(ToOriginForm(GetParam().target), GetParam().origin); }

INSTANTIATE_TEST_SUITE_P(
    Forms, RequestTarget,
    testing::Values(
        TargetCase{"Origin", "/onvif/device_service?a=b", "/onvif/device_service?a=b"}, TargetCase{"Root", "/", "/"},
        TargetCase{"Absolute", "http://host:80/onvif/device_service?a=b", "/onvif/device_service?a=b"},
        TargetCase{"AbsoluteWithTls", "https://host/a", "/a"}, TargetCase{"SchemeInAnyCase", "HTTP://host/a", "/a"},
        TargetCase{"AbsoluteWithoutPath", "http://host", "/"},
        TargetCase{"AbsoluteWithQueryOnly", "http://host?a=b", "/?a=b"},
        TargetCase{"AbsoluteWithoutHost", "http:///a", std::nullopt}, TargetCase{"SchemeOnly", "http://", std::nullopt},
        TargetCase{"Authority", "host:80", std::nullopt}, TargetCase{"Asterisk", "*", std::nullopt},
        TargetCase{"OtherScheme", "ftp://host/a", std::nullopt},
        TargetCase{"Relative", "onvif/device_service", std::nullopt}, TargetCase{"Empty", "", std::nullopt}),
    [](auto const& row) { return row.param.name; });

TEST(RequestTarget, HasThePathBeforeTheQuery) {
    EXPECT_EQ(GetPath("/a/b?c=/d?e"), "/a/b");
    EXPECT_EQ(GetPath("/a/b"), "/a/b");
    EXPECT_EQ(GetPath("?a"), "");
}

} // namespace
} // namespace zarn::host::web
