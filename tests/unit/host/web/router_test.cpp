#include "host/web/router.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

struct Case {
    char const* pattern;
    char const* path;
    bool matches;
};

TEST(Router, MatchesPathsWithPatterns) {
    for (auto const& row : {
             Case{"/api/health", "/api/health", true},
             Case{"/api/health", "/api/health/", false},
             Case{"/api/health", "/api/healthy", false},
             Case{"/api/health", "/api", false},
             Case{"/api/health", "/API/health", false},
             Case{"/api/health", "", false},
             Case{"/onvif/", "/onvif/device_service", true},
             Case{"/onvif/", "/onvif/events_service/1/2", true},
             Case{"/onvif/", "/onvif/", true},
             Case{"/onvif/", "/onvif", false},
             Case{"/onvif/", "/onviff/a", false},
             Case{"/onvif/", "//onvif/a", false},
             Case{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpeg", true},
             Case{"/snapshot/*/latest.jpeg", "/snapshot//latest.jpeg", false},
             Case{"/snapshot/*/latest.jpeg", "/snapshot/1/2/latest.jpeg", false},
             Case{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpeg/", false},
             Case{"/snapshot/*/latest.jpeg", "/snapshot/1/", false},
             Case{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpg", false},
         }) {
        EXPECT_EQ(Matches(row.pattern, row.path), row.matches) << row.pattern << " " << row.path;
    }
}

TEST(Router, GivesThePathToTheFirstRowThatMatches) {
    auto const exact = std::make_shared<zarn::web::Service>();
    auto const below = std::make_shared<zarn::web::Service>();
    Router const router({{"/a/b", exact}, {"/a/", below}});
    EXPECT_EQ(router.Find("/a/b"), exact);
    EXPECT_EQ(router.Find("/a/c"), below);
    EXPECT_EQ(router.Find("/b"), nullptr);
}

} // namespace
} // namespace zarn::host::web
