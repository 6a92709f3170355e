#include <zarn/onvif/discovery/scopes.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::onvif::discovery {
namespace {

using utilities::name::Config;

constexpr std::string_view Exact = "http://schemas.xmlsoap.org/ws/2005/04/discovery/strcmp0";

bool MayMatch(std::string_view scope, std::string_view matchBy = "") {
    return MayMatchScopes(std::array{scope}, matchBy);
}

TEST(MakeScopes, ReturnsTheScopesOfTheDeviceInOrder) {
    Config const config(
        {.manufacturer = "Zarn", .model = "", .firmware = "", .hardware = "Z1", .location = "Hall", .name = "Gate"});
    EXPECT_EQ(MakeScopes(config), "onvif://www.onvif.org/Profile/Streaming onvif://www.onvif.org/Profile/M "
                                  "onvif://www.onvif.org/type/video_encoder onvif://www.onvif.org/type/audio_encoder "
                                  "onvif://www.onvif.org/hardware/Z1 onvif://www.onvif.org/manufacturer/Zarn "
                                  "onvif://www.onvif.org/location/Hall onvif://www.onvif.org/name/Gate");
}

TEST(MakeScopes, EncodesSeparatorsAndNonUriCharacters) {
    Config const config({.manufacturer = "A & B\n<c>",
                         .model = "",
                         .firmware = "",
                         .hardware = "50%",
                         .location = "de/Berlin",
                         .name = "Gr\xc3\xbcn"});
    auto const text = MakeScopes(config);
    EXPECT_TRUE(text.ends_with("/hardware/50%25 onvif://www.onvif.org/manufacturer/A%20%26%20B%0A%3Cc%3E "
                               "onvif://www.onvif.org/location/de/Berlin onvif://www.onvif.org/name/Gr%C3%BCn"))
        << text;
}

TEST(ListScopes, KeepsTheIdentityUnencoded) {
    Config const config({.manufacturer = "A & B",
                         .model = "",
                         .firmware = "",
                         .hardware = "50%",
                         .location = "de/Berlin",
                         .name = "Gr\xc3\xbcn"});
    EXPECT_EQ(ListScopes(config),
              (std::vector<std::string>{
                  "onvif://www.onvif.org/Profile/Streaming", "onvif://www.onvif.org/Profile/M",
                  "onvif://www.onvif.org/type/video_encoder", "onvif://www.onvif.org/type/audio_encoder",
                  "onvif://www.onvif.org/hardware/50%", "onvif://www.onvif.org/manufacturer/A & B",
                  "onvif://www.onvif.org/location/de/Berlin", "onvif://www.onvif.org/name/Gr\xc3\xbcn"}));
}

TEST(MakeScopes, KeepsTheCategoriesOfAnEmptyIdentity) {
    EXPECT_TRUE(MakeScopes(Config()).ends_with("onvif://www.onvif.org/location/ onvif://www.onvif.org/name/"));
}

TEST(MayMatchScopes, ComparesLeadingPathSegments) {
    for (auto const* scope : {"onvif://www.onvif.org/type/video_encoder", "onvif://www.onvif.org/type",
                              "onvif://www.onvif.org/type/", "onvif://www.onvif.org/Profile", "onvif://www.onvif.org",
                              "onvif://www.onvif.org/", "ONVIF://WWW.onvif.ORG/Profile/M",
                              "onvif://www.onvif.org/Profile/M?x=1", "onvif://www.onvif.org/Profile/M#x"}) {
        EXPECT_TRUE(MayMatch(scope)) << scope;
    }
    for (auto const* scope :
         {"onvif://www.onvif.org/type/video", "onvif://www.onvif.org/type/video_encoder/more",
          "onvif://www.onvif.org/typ", "onvif://www.onvif.org/profile/M", "onvif://www.onvif.org/..",
          "onvif://www.onvif.org/name/.", "onvif://www.onvif.org/name/../x", "onvif://www.onvif.org/location/a/./b",
          "onvif://www.onvif.org/hardware/../", "onvif://www.onvif.org/Profile/G", "onvif://www.onvif.orgy",
          "onvif://www.onvif.org:80/type", "http://www.onvif.org/type", "onvif:/www.onvif.org/type", "urn:x", "type",
          "onvif:", "//"}) {
        EXPECT_FALSE(MayMatch(scope)) << scope;
    }
}

TEST(MayMatchScopes, AcceptsAnyValueOfTheIdentity) {
    for (auto const* category : {"hardware", "manufacturer", "location", "name"}) {
        auto const scope = std::string("onvif://www.onvif.org/") + category;
        EXPECT_TRUE(MayMatch(scope));
        EXPECT_TRUE(MayMatch(scope + "/anything/at%20all"));
        EXPECT_FALSE(MayMatch(scope + "s/anything"));
    }
}

TEST(MayMatchScopes, SupportsOnlyTheKnownRules) {
    std::string const rules = "http://schemas.xmlsoap.org/ws/2005/04/discovery/";
    for (auto const* rule : {"rfc3986", "rfc2396"}) EXPECT_TRUE(MayMatch("onvif://www.onvif.org/type", rules + rule));
    for (auto const* rule : {"ldap", "uuid", "none", ""}) {
        EXPECT_FALSE(MayMatch("onvif://www.onvif.org/type/video_encoder", rules + rule));
    }
    EXPECT_FALSE(MayMatchScopes({}, "urn:other"));
}

TEST(MayMatchScopes, ComparesTheWholeTextByTheExactRule) {
    EXPECT_TRUE(MayMatch("onvif://www.onvif.org/type/video_encoder", Exact));
    EXPECT_TRUE(MayMatch("onvif://www.onvif.org/name/Gate", Exact));
    EXPECT_TRUE(MayMatch("onvif://www.onvif.org/name/", Exact)); // an empty name
    for (auto const* scope : {"onvif://www.onvif.org/type", "onvif://www.onvif.org/type/video_encoder/",
                              "ONVIF://www.onvif.org/type/video_encoder", "onvif://www.onvif.org/name", "onvif:", "",
                              "onvif://www.onvif.org"}) {
        EXPECT_FALSE(MayMatch(scope, Exact)) << scope;
    }
}

TEST(MayMatchScopes, RequiresEveryScope) {
    std::string_view const has = "onvif://www.onvif.org/Profile/M";
    std::string_view const lacks = "onvif://www.onvif.org/Profile/G";
    EXPECT_TRUE(MayMatchScopes({}, ""));
    EXPECT_TRUE(MayMatchScopes(std::array{has, has}, ""));
    EXPECT_FALSE(MayMatchScopes(std::array{has, lacks}, ""));
}

} // namespace
} // namespace zarn::onvif::discovery
