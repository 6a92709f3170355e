#include "support/probe.h"

#include <zarn/network/local.h>
#include <zarn/onvif/discovery/endpoint.h>
#include <zarn/onvif/discovery/request.h>
#include <zarn/onvif/discovery/response.h>
#include <zarn/onvif/discovery/scopes.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::onvif::discovery {
namespace {

using utilities::name::Config;

Config const Identity(
    {.manufacturer = "Zarn & Sons", .model = "M", .firmware = "F", .hardware = "<H>", .location = "L", .name = "N"});

Response MakeResponse(std::string const& relatesTo = test::ProbeId, std::string const& address = test::AnonymousRole,
                      unsigned short port = 8080, bool ssl = false) {
    return {relatesTo, address, port, ssl, Identity};
}

/// A serialised answer, parsed again.
class Answer {
public:
    explicit Answer(Response const& response) {
        auto const& xml = response.GetXML();
        EXPECT_TRUE(document.load_buffer(xml.data(), xml.size(), pugi::parse_full, pugi::encoding_utf8)) << xml;
    }

    pugi::xml_node Find(std::string const& path) const { return document.select_node(path.c_str()).node(); }

    std::string Read(std::string const& path) const { return Find(path).child_value(); }

    std::string ReadHeader(std::string const& name) const { return Read("/SOAP-ENV:Envelope/SOAP-ENV:Header/" + name); }

    std::string ReadMatch(std::string const& name) const {
        return Read("/SOAP-ENV:Envelope/SOAP-ENV:Body/d:ProbeMatches/d:ProbeMatch/" + name);
    }

    pugi::xml_document document;
};

TEST(DiscoveryResponse, IsInvalidByDefault) {
    Response const response;
    EXPECT_FALSE(response.IsValid());
    EXPECT_EQ(response.GetXML(), "");
}

TEST(DiscoveryResponse, IsInvalidWithoutAProbe) {
    EXPECT_FALSE(MakeResponse("").IsValid());
    EXPECT_TRUE(MakeResponse("x").IsValid());
}

TEST(DiscoveryResponse, IsInvalidWithCharactersInvalidInXml) {
    for (auto const* text : {"a\x01", "Gr\xfcn", "a\nb", "\xed\xa0\x80", "\x7f"}) {
        EXPECT_FALSE(MakeResponse(text).IsValid());
        EXPECT_FALSE(MakeResponse("x", text).IsValid());
    }
}

TEST(DiscoveryResponse, RelatesToTheProbe) {
    Answer const answer(MakeResponse());
    EXPECT_EQ(answer.ReadHeader("wsa:RelatesTo"), test::ProbeId);
    EXPECT_EQ(answer.ReadHeader("wsa:To"), test::AnonymousRole);
    EXPECT_EQ(answer.ReadHeader("wsa:Action"), "http://schemas.xmlsoap.org/ws/2005/04/discovery/ProbeMatches");
}

TEST(DiscoveryResponse, DescribesTheDevice) {
    Answer const answer(MakeResponse());
    EXPECT_EQ(answer.ReadMatch("wsa:EndpointReference/wsa:Address"), GetEndpoint());
    EXPECT_EQ(answer.ReadMatch("d:Types"), "dn:NetworkVideoTransmitter tds:Device");
    EXPECT_EQ(answer.ReadMatch("d:Scopes"), MakeScopes(Identity));
    EXPECT_EQ(answer.ReadMatch("d:MetadataVersion"), "1");
}

TEST(DiscoveryResponse, HasOneMatchInSchemaOrder) {
    Answer const answer(MakeResponse());
    std::vector<std::string> names;
    for (auto const each : answer.Find("//d:ProbeMatch").children()) names.emplace_back(each.name());
    EXPECT_THAT(names,
                testing::ElementsAre("wsa:EndpointReference", "d:Types", "d:Scopes", "d:XAddrs", "d:MetadataVersion"));
    EXPECT_EQ(answer.document.select_nodes("//d:ProbeMatch").size(), 1U);
}

TEST(DiscoveryResponse, DeclaresItsPrefixes) {
    Answer const answer(MakeResponse());
    auto const envelope = answer.document.document_element();
    EXPECT_STREQ(envelope.attribute("xmlns:SOAP-ENV").value(), "http://www.w3.org/2003/05/soap-envelope");
    EXPECT_STREQ(envelope.attribute("xmlns:wsa").value(), "http://schemas.xmlsoap.org/ws/2004/08/addressing");
    EXPECT_STREQ(envelope.attribute("xmlns:d").value(), "http://schemas.xmlsoap.org/ws/2005/04/discovery");
    EXPECT_STREQ(envelope.attribute("xmlns:dn").value(), "http://www.onvif.org/ver10/network/wsdl");
    EXPECT_STREQ(envelope.attribute("xmlns:tds").value(), "http://www.onvif.org/ver10/device/wsdl");
}

TEST(DiscoveryResponse, ReportsItsOwnAddressWithPortAndScheme) {
    auto const own = network::GetLocalIPAddress().to_string();
    auto const read = [](unsigned short port, bool ssl) {
        return Answer(MakeResponse("x", "http://192.0.2.1:1/elsewhere", port, ssl)).ReadMatch("d:XAddrs");
    };
    EXPECT_EQ(read(8080, false), "http://" + own + ":8080/onvif/device_service");
    EXPECT_EQ(read(443, true), "https://" + own + ":443/onvif/device_service");
    EXPECT_EQ(read(0, false), "http://" + own + ":0/onvif/device_service");
}

TEST(DiscoveryResponse, EscapesTextOfTheProbe) {
    std::string const hostile = R"(</wsa:RelatesTo><x a='"'>&amp;]]>)";
    Answer const answer(MakeResponse(hostile, hostile + "2"));
    EXPECT_EQ(answer.ReadHeader("wsa:RelatesTo"), hostile);
    EXPECT_EQ(answer.ReadHeader("wsa:To"), hostile + "2");
}

TEST(DiscoveryResponse, SupportsTextInAnyLanguage) {
    EXPECT_EQ(Answer(MakeResponse("Gr\xc3\xbcn")).ReadHeader("wsa:RelatesTo"), "Gr\xc3\xbcn");
}

TEST(DiscoveryResponse, HasAMessageIdOfItsOwn) {
    std::set<std::string> ids;
    for (int i = 0; i < 10; ++i) ids.insert(Answer(MakeResponse()).ReadHeader("wsa:MessageID"));
    EXPECT_EQ(ids.size(), 10U);
    EXPECT_THAT(*ids.begin(), testing::MatchesRegex("urn:uuid:[-0-9a-f]{36}"));
}

TEST(DiscoveryResponse, CountsItsMessages) {
    auto const read = [](char const* attribute) {
        return Answer(MakeResponse()).Find("//d:AppSequence").attribute(attribute).as_uint();
    };
    auto const before = read("MessageNumber");
    EXPECT_GE(before, 1U);
    EXPECT_EQ(read("MessageNumber"), before + 1);
    auto const instance = read("InstanceId");
    EXPECT_EQ(read("InstanceId"), instance);
    EXPECT_GT(instance, 1'600'000'000U); // seconds since 1970: increases with each restart
}

TEST(DiscoveryResponse, IsParsedButIgnoredAsARequest) {
    Request const request(MakeResponse().GetXML());
    EXPECT_FALSE(request.IsParseError());
    EXPECT_EQ(request.GetMessageId(), "");
}

TEST(DiscoveryResponse, FitsADatagramWithTheLongestTextsOfAProbe) {
    std::string const longest(Request::MaximumTextLength, '&');
    EXPECT_LT(MakeResponse(longest, longest).GetXML().size(), 16'384U);
}

} // namespace
} // namespace zarn::onvif::discovery
