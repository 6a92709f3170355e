#include "support/probe.h"

#include <zarn/onvif/discovery/request.h>

#include <gtest/gtest.h>

#include <string>

namespace zarn::onvif::discovery {
namespace {

using test::AnonymousRole;
using test::Probe;
using test::ProbeForScopes;
using test::ProbeForTypes;
using test::ProbeId;

/// The id of a message that parses without error; empty when it does not ask for the device.
std::string ReadId(Probe const& probe) {
    Request const request(probe.ToString());
    EXPECT_FALSE(request.IsParseError()) << probe.ToString();
    return request.GetMessageId();
}

bool IsOurs(Probe const& probe) { return ReadId(probe) == ProbeId; }

TEST(DiscoveryRequest, ReadsAProbe) {
    Request const request(Probe{}.ToString());
    EXPECT_FALSE(request.IsParseError());
    EXPECT_EQ(request.GetMessageId(), ProbeId);
    EXPECT_EQ(request.GetAddress(), AnonymousRole);
}

TEST(DiscoveryRequest, AcceptsAProbeForEitherTypeOrNone) {
    for (auto const* types : {"dn:NetworkVideoTransmitter", "tds:Device", "dn:NetworkVideoTransmitter tds:Device",
                              "\n  tds:Device\t", "dn:Recorder tds:Device", "", "  \n "}) {
        EXPECT_TRUE(IsOurs(ProbeForTypes(types))) << types;
    }
    EXPECT_TRUE(IsOurs({.body = "<d:Probe/>"}));
    EXPECT_TRUE(IsOurs({.body = "<d:Probe><d:Types/><d:Scopes/></d:Probe>"}));
}

TEST(DiscoveryRequest, IgnoresAProbeForOtherTypes) {
    for (auto const* types :
         {"dn:NetworkVideoDisplay", "tds:NetworkVideoTransmitter", "dn:Device", "d:Device", "tds:device", "Device",
          ":Device", "unknown:Device", "tds:", "tds:Device:x", "http://www.onvif.org/ver10/device/wsdl:Device"}) {
        EXPECT_EQ(ReadId(ProbeForTypes(types)), "") << types;
    }
}

TEST(DiscoveryRequest, ReadsAtMost64Types) {
    auto const asTypeNumber = [](std::size_t number) {
        std::string types;
        for (std::size_t i = 1; i < number; ++i) types += "dn:Recorder ";
        return ProbeForTypes(types + "tds:Device");
    };
    EXPECT_EQ(Request::MaximumTypes, 64U);
    EXPECT_TRUE(IsOurs(asTypeNumber(64)));
    EXPECT_EQ(ReadId(asTypeNumber(65)), "");
}

TEST(DiscoveryRequest, ResolvesTypePrefixesInScope) {
    auto const probe = [](std::string const& attributes, std::string const& types) {
        return Probe{.body = "<d:Probe><d:Types " + attributes + ">" + types + "</d:Types></d:Probe>"};
    };
    EXPECT_TRUE(IsOurs(probe("xmlns:x='http://www.onvif.org/ver10/device/wsdl'", "x:Device")));
    EXPECT_TRUE(IsOurs(probe("xmlns='http://www.onvif.org/ver10/device/wsdl'", "Device")));
    EXPECT_FALSE(IsOurs(probe("xmlns:tds='urn:other'", "tds:Device"))); // the innermost declaration applies
    EXPECT_FALSE(IsOurs(probe("tds='http://www.onvif.org/ver10/device/wsdl'", "Device")));
}

TEST(DiscoveryRequest, ComparesNamespacesInsteadOfPrefixes) {
    Request const request(
        "<Envelope xmlns='http://www.w3.org/2003/05/soap-envelope'><Header>"
        "<MessageID xmlns='http://schemas.xmlsoap.org/ws/2004/08/addressing'>urn:1</MessageID></Header>"
        "<Body><d:Probe xmlns:d='http://schemas.xmlsoap.org/ws/2005/04/discovery'/></Body></Envelope>");
    EXPECT_FALSE(request.IsParseError());
    EXPECT_EQ(request.GetMessageId(), "urn:1");
    EXPECT_EQ(ReadId({.discovery = "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01"}), "");
    EXPECT_EQ(ReadId({.addressing = "urn:other"}), "");
}

TEST(DiscoveryRequest, AcceptsAddressingHeadersOf2005) {
    Request const request(Probe{.addressing = "http://www.w3.org/2005/08/addressing",
                                .replyTo = "<a:ReplyTo><a:Address>urn:me</a:Address></a:ReplyTo>"}
                              .ToString());
    EXPECT_EQ(request.GetMessageId(), ProbeId);
    EXPECT_EQ(request.GetAddress(), "urn:me");
}

TEST(DiscoveryRequest, IgnoresOtherMessages) {
    for (auto const* name : {"Hello", "Bye", "Resolve", "ProbeMatches", "ResolveMatches", "probe"}) {
        auto const element = std::string("<d:") + name + "/>";
        EXPECT_EQ(ReadId({.action = "", .body = element}), "") << name;
    }
    EXPECT_EQ(ReadId({.action = "<a:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/Hello</a:Action>"}), "");
    EXPECT_EQ(ReadId({.body = ""}), "");
    EXPECT_EQ(ReadId({.body = "<x><d:Probe/></x>"}), "");
}

TEST(DiscoveryRequest, AcceptsAProbeWithoutAction) { EXPECT_TRUE(IsOurs({.action = ""})); }

TEST(DiscoveryRequest, IgnoresAProbeWithoutMessageId) {
    EXPECT_EQ(ReadId({.id = ""}), "");
    EXPECT_EQ(ReadId({.id = "<a:MessageID> </a:MessageID>"}), "");
}

TEST(DiscoveryRequest, TrimsTheMessageIdAndJoinsItsParts) {
    EXPECT_EQ(ReadId({.id = "<a:MessageID>\n urn:<!-- x -->a&amp;b<![CDATA[<c>]]>\n</a:MessageID>"}), "urn:a&b<c>");
    EXPECT_EQ(ReadId({.id = "<a:MessageID>Gr\xc3\xbcn &#xfc; &#128512;</a:MessageID>"}),
              "Gr\xc3\xbcn \xc3\xbc \xf0\x9f\x98\x80");
}

TEST(DiscoveryRequest, ReadsTheAddressOfReplyTo) {
    auto const read = [](std::string const& replyTo) {
        return Request(Probe{.replyTo = replyTo}.ToString()).GetAddress();
    };
    EXPECT_EQ(read("<a:ReplyTo><a:Address> http://10.0.0.9:80/ </a:Address></a:ReplyTo>"), "http://10.0.0.9:80/");
    EXPECT_EQ(read("<a:ReplyTo><a:Address/></a:ReplyTo>"), AnonymousRole);
    EXPECT_EQ(read("<a:ReplyTo/>"), AnonymousRole);
    EXPECT_EQ(read("<a:From><a:Address>urn:from</a:Address></a:From>"), AnonymousRole);
}

TEST(DiscoveryRequest, ReadsTheAddressOfAnIgnoredMessage) {
    Request const request(
        Probe{.replyTo = "<a:ReplyTo><a:Address>urn:me</a:Address></a:ReplyTo>", .body = ""}.ToString());
    EXPECT_EQ(request.GetAddress(), "urn:me");
}

TEST(DiscoveryRequest, AcceptsOnlyAProbeForScopesTheDeviceMayHave) {
    EXPECT_TRUE(IsOurs(ProbeForScopes("onvif://www.onvif.org/Profile/Streaming\n onvif://www.onvif.org/name/Gate")));
    EXPECT_FALSE(IsOurs(ProbeForScopes("onvif://www.onvif.org/Profile/G")));
    EXPECT_FALSE(IsOurs(ProbeForScopes("onvif://www.onvif.org/type", "MatchBy='urn:other'")));
    EXPECT_FALSE(IsOurs(ProbeForScopes("onvif://www.onvif.org/type",
                                       "MatchBy='http://schemas.xmlsoap.org/ws/2005/04/discovery/strcmp0'")));
}

} // namespace
} // namespace zarn::onvif::discovery
