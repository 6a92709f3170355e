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

TEST(CheckBounds, AcceptsUpTo512Attributes) {
    EXPECT_EQ(Check(""), SOAP_OK);
    EXPECT_EQ(Check(std::string(512, '=')), SOAP_OK);
    EXPECT_EQ(Check(std::string(513, '=')), SOAP_OCCURS);
}

TEST(CheckBounds, CountsAttributesEvenInCommentsAndCharacterData) {
    std::string body;
    for (int i = 0; i < 600; ++i) body += "<!-- ' --><x a='<' /><![CDATA[=]]>";
    EXPECT_EQ(Check(body), SOAP_OCCURS);
}

TEST(CheckBounds, CountsAttributesWithoutAValueWithAnySeparator) {
    auto const with = [](int count, std::string const& between) {
        std::string body = "<x";
        for (int i = 0; i < count; ++i) body += between + "<a" + std::to_string(i);
        return body + "/>";
    };
    for (auto const* between : {" ", "\n", "\t ", "\v", "\x01", "\r\n  "}) {
        EXPECT_EQ(Check(with(512, between)), SOAP_OK) << between;
        EXPECT_EQ(Check(with(513, between)), SOAP_OCCURS) << between;
    }
    EXPECT_EQ(Check(with(513, std::string(1, '\0'))), SOAP_OCCURS);
}

TEST(CheckBounds, DoesNotCountTheWhiteSpaceBetweenElements) {
    std::string body;
    for (int i = 0; i < 10'000; ++i) body += "<x>1</x>\r\n  ";
    EXPECT_EQ(Check(body), SOAP_OK);
}

TEST(CheckBounds, RefusesADocumentTypeDeclaration) {
    for (auto const* body : {"<!DOCTYPE x>", "<?xml version=\"1.0\"?>\n<!doctype x [<!ENTITY a 'b'>]><x/>",
                             "<x><!ENTITY", "<!", "<!-", "<![IGNORE[", "<!-- --><![CDATA[]]><!>"})
        EXPECT_EQ(Check(body), SOAP_SYNTAX_ERROR) << body;
}

TEST(CheckBounds, AcceptsCommentsAndCharacterData) {
    EXPECT_EQ(Check("<!-- DOCTYPE --><x><![CDATA[DOCTYPE]]></x>"), SOAP_OK);
}

TEST(CheckBounds, RefusesACompressedBody) {
    for (auto const* coding : {"gzip", "deflate", "x-gzip", "identity, gzip", "br", ""})
        EXPECT_EQ(Check("", {{"Content-Encoding", coding}}), 415) << coding;
    EXPECT_EQ(Check("", {{"CONTENT-encoding", "gzip"}}), 415);
}

TEST(CheckBounds, AcceptsIdentityContentEncoding) {
    EXPECT_EQ(Check("", {{"Content-Encoding", "identity"}, {"Accept-Encoding", "gzip"}}), SOAP_OK);
    EXPECT_EQ(Check("", {{"content-encoding", "IDENTITY"}}), SOAP_OK);
}

TEST(CheckBounds, RefusesABodyWithAttachments) {
    for (auto const* type : {"application/dime", "APPLICATION/Dime", "multipart/related; boundary=b",
                             "multipart/form-data", "application/soap+xml; application/dime"})
        EXPECT_EQ(Check("", {{"Content-Type", type}}), 415) << type;
    EXPECT_EQ(Check("", {{"content-TYPE", "application/dime"}}), 415);
}

TEST(CheckBounds, AcceptsSoapContentTypesWithParameters) {
    for (auto const* type :
         {"application/soap+xml; charset=utf-8; action=\"urn:multipart\"", "text/xml", "text/plain", ""})
        EXPECT_EQ(Check("", {{"Content-Type", type}}), SOAP_OK) << type;
    EXPECT_EQ(Check("", {{"Accept", "multipart/related"}}), SOAP_OK);
}

} // namespace
} // namespace zarn::service::onvif
