#include "host/web/router.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

struct PathCase {
    char const* pattern;
    char const* path;
    bool matches;
};

TEST(Router, MatchesPathsWithPatterns) {
    for (auto const& row : {
             PathCase{"/api/health", "/api/health", true},
             PathCase{"/api/health", "/api/health/", false},
             PathCase{"/api/health", "/api/healthy", false},
             PathCase{"/api/health", "/api", false},
             PathCase{"/api/health", "/API/health", false},
             PathCase{"/api/health", "", false},
             PathCase{"/onvif/", "/onvif/device_service", true},
             PathCase{"/onvif/", "/onvif/events_service/1/2", true},
             PathCase{"/onvif/", "/onvif/", true},
             PathCase{"/onvif/", "/onvif", false},
             PathCase{"/onvif/", "/onviff/a", false},
             PathCase{"/onvif/", "//onvif/a", false},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpeg", true},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot//latest.jpeg", false},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/2/latest.jpeg", false},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpeg/", false},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/", false},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpg", false},
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
