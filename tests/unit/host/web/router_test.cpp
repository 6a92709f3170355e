#include "host/web/router.h"

#include <gtest/gtest.h>

namespace zarn::host::web {
namespace {

struct PathCase {
    char const* pattern;
    char const* path;
    std::optional<std::string_view> segment; ///< nullopt: the path does not match
};

TEST(Router, MatchesPathsWithPatterns) {
    for (auto const& row : {
             PathCase{"/api/health", "/api/health", ""},
             PathCase{"/api/health", "/api/health/", {}},
             PathCase{"/api/health", "/api/healthy", {}},
             PathCase{"/api/health", "/api", {}},
             PathCase{"/api/health", "/API/health", {}},
             PathCase{"/api/health", "", {}},
             PathCase{"/onvif/", "/onvif/device_service", ""},
             PathCase{"/onvif/", "/onvif/events_service/1/2", ""},
             PathCase{"/onvif/", "/onvif/", ""},
             PathCase{"/onvif/", "/onvif", {}},
             PathCase{"/onvif/", "/onviff/a", {}},
             PathCase{"/onvif/", "//onvif/a", {}},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpeg", "1"},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/gate-1/latest.jpeg", "gate-1"},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot//latest.jpeg", {}},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/2/latest.jpeg", {}},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpeg/", {}},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/", {}},
             PathCase{"/snapshot/*/latest.jpeg", "/snapshot/1/latest.jpg", {}},
             PathCase{"/files/*/", "/files/1/a/b", "1"},
             PathCase{"/files/*/", "/files/1", {}},
             PathCase{"/files/*", "/files/1", "1"},
             PathCase{"/files/*", "/files/", {}},
         }) {
        EXPECT_EQ(MatchPath(row.pattern, row.path), row.segment) << row.pattern << " " << row.path;
    }
}

class Silent final : public Handler {
public:
    Silent() : Handler({}) {}

private:
    void Serve(RequestPtr /*request*/, Done /*done*/) override {}
};

TEST(Router, UsesTheFirstMatchingRow) {
    auto const exact = std::make_shared<Silent>();
    auto const below = std::make_shared<Silent>();
    auto const named = std::make_shared<Silent>();
    Router const router({{"/a/b", exact}, {"/a/", below}, {"/c/*/d", named}});
    EXPECT_EQ(router.Find("/a/b").handler, exact.get());
    EXPECT_EQ(router.Find("/a/c").handler, below.get());
    EXPECT_EQ(router.Find("/b").handler, nullptr);
    EXPECT_EQ(router.Find("/c/1/d").handler, named.get());
    EXPECT_EQ(router.Find("/c/1/d").segment, "1");
    EXPECT_EQ(router.Find("/a/b").segment, "");
}

} // namespace
} // namespace zarn::host::web
