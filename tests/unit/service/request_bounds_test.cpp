#include <service/onvif/request_bounds.h>

#include <gtest/gtest.h>
#include <soapH.h>

#include <map>
#include <string>

namespace zarn::service::onvif {
namespace {

int Check(std::string body, std::map<std::string, std::string> fields = {}) {
    return CheckBounds({protocol::network::http::Method::Post, "/", std::move(body), std::move(fields)});
}

TEST(CheckBounds, LetsThroughWhatMayHoldFiveHundredAndTwelveAttributes) {
    EXPECT_EQ(Check(""), SOAP_OK);
    EXPECT_EQ(Check(std::string(512, '=')), SOAP_OK);
    EXPECT_EQ(Check(std::string(513, '=')), SOAP_OCCURS);
}

TEST(CheckBounds, CountsTheAttributesOfTheWholeMessageWhateverTheyStandIn) {
    std::string body;
    for (int i = 0; i < 600; ++i) body += "<!-- ' --><x a='<' /><![CDATA[=]]>";
    EXPECT_EQ(Check(body), SOAP_OCCURS);
}

TEST(CheckBounds, RefusesACompressedBody) {
    for (auto const* coding : {"gzip", "deflate", "x-gzip", "identity, gzip", "br", ""})
        EXPECT_EQ(Check("", {{"Content-Encoding", coding}}), 415) << coding;
    EXPECT_EQ(Check("", {{"CONTENT-encoding", "gzip"}}), 415);
}

TEST(CheckBounds, LetsThroughABodyThatIsSaidNotToBeCompressed) {
    EXPECT_EQ(Check("", {{"Content-Encoding", "identity"}, {"Accept-Encoding", "gzip"}}), SOAP_OK);
    EXPECT_EQ(Check("", {{"content-encoding", "IDENTITY"}}), SOAP_OK);
}

} // namespace
} // namespace zarn::service::onvif
