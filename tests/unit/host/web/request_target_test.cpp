#include "host/web/request_target.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

struct Case {
    char const* name;
    char const* target;
    std::optional<std::string> origin;
};

class RequestTarget : public testing::TestWithParam<Case> {};

TEST_P(RequestTarget, IsBroughtIntoOriginForm) { EXPECT_EQ(ToOriginForm(GetParam().target), GetParam().origin); }

INSTANTIATE_TEST_SUITE_P(
    Forms, RequestTarget,
    testing::Values(Case{"Origin", "/onvif/device_service?a=b", "/onvif/device_service?a=b"}, Case{"Root", "/", "/"},
                    Case{"Absolute", "http://host:80/onvif/device_service?a=b", "/onvif/device_service?a=b"},
                    Case{"AbsoluteWithTls", "https://host/a", "/a"}, Case{"SchemeInAnyCase", "HTTP://host/a", "/a"},
                    Case{"AbsoluteWithoutPath", "http://host", "/"},
                    Case{"AbsoluteWithQueryOnly", "http://host?a=b", "/?a=b"},
                    Case{"AbsoluteWithoutHost", "http:///a", std::nullopt}, Case{"SchemeOnly", "http://", std::nullopt},
                    Case{"Authority", "host:80", std::nullopt}, Case{"Asterisk", "*", std::nullopt},
                    Case{"OtherScheme", "ftp://host/a", std::nullopt},
                    Case{"Relative", "onvif/device_service", std::nullopt}, Case{"Empty", "", std::nullopt}),
    [](auto const& row) { return row.param.name; });

TEST(RequestTarget, HasThePathBeforeTheQuery) {
    EXPECT_EQ(GetPath("/a/b?c=/d?e"), "/a/b");
    EXPECT_EQ(GetPath("/a/b"), "/a/b");
    EXPECT_EQ(GetPath("?a"), "");
}

} // namespace
} // namespace zarn::host::web
