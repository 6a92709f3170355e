#include <zarn/configuration/error.h>

#include <gtest/gtest.h>

namespace zarn::configuration {
namespace {

TEST(ConfigurationError, NamesPathAndReason) {
    Error const error("settings.web_port", "70000 is not a port (1 to 65535)");
    EXPECT_EQ(error.GetPath(), "settings.web_port");
    EXPECT_STREQ(error.what(), "settings.web_port: 70000 is not a port (1 to 65535)");
}

TEST(ConfigurationError, NamesOnlyTheReasonForTheRoot) {
    Error const error("", "[] is not an object");
    EXPECT_EQ(error.GetPath(), "");
    EXPECT_STREQ(error.what(), "[] is not an object");
}

} // namespace
} // namespace zarn::configuration
