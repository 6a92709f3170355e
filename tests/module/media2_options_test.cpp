#include "device_fixture.h"

#include <zarn/configuration/schema.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <optional>

namespace zarn::test {
namespace {

using configuration::Schema;
using meta::data::VideoInfo;
using testing::ElementsAre;

/// Options of a configuration or profile, selected by its token.
class Media2Options : public DeviceFixture {
protected:
    Reply AskForEncoder(std::string const& tokens) {
        return AskAnonymously("<tr2:GetVideoEncoderConfigurationOptions>" + tokens +
                              "</tr2:GetVideoEncoderConfigurationOptions>");
    }

    Reply AskForSource(std::string const& tokens) {
        return AskAnonymously("<tr2:GetVideoSourceConfigurationOptions>" + tokens +
                              "</tr2:GetVideoSourceConfigurationOptions>");
    }

    static std::string Profile(std::string const& token) { return Element("tr2:ProfileToken", token); }

    static std::string Configuration(std::string const& token) { return Element("tr2:ConfigurationToken", token); }

    static std::string Range(std::string const& name, std::string const& minimum, std::string const& maximum) {
        return Element(name, Element("tt:Min", minimum) + Element("tt:Max", maximum));
    }

    static std::string Source(std::string const& width, std::string const& height, std::string const& tokens) {
        return "<tr2:GetVideoSourceConfigurationOptionsResponse><tr2:Options><tt:BoundsRange>" +
               Range("tt:XRange", "0", width) + Range("tt:YRange", "0", height) + Range("tt:WidthRange", width, width) +
               Range("tt:HeightRange", height, height) + "</tt:BoundsRange>" + tokens +
               "</tr2:Options></tr2:GetVideoSourceConfigurationOptionsResponse>";
    }

    static std::string Available(std::string const& token) { return Element("tt:VideoSourceTokensAvailable", token); }

    static std::string AnySource(std::string const& tokens) {
        return "<tr2:GetVideoSourceConfigurationOptionsResponse><tr2:Options><tt:BoundsRange>" +
               Range("tt:XRange", "0", "9999") + Range("tt:YRange", "0", "9999") + Range("tt:WidthRange", "0", "9999") +
               Range("tt:HeightRange", "0", "9999") + "</tt:BoundsRange>" + tokens +
               "</tr2:Options></tr2:GetVideoSourceConfigurationOptionsResponse>";
    }

private:
    static std::string Element(std::string const& name, std::string const& content) {
        return "<" + name + ">" + content + "</" + name + ">";
    }
};

constexpr char NoEncoderOptions[] = "<tr2:GetVideoEncoderConfigurationOptionsResponse/>";

TEST_F(Media2Options, OfAnEncoderAreEncodingResolutionAndBitrateRange) {
    EXPECT_THAT(AskForEncoder(Configuration("channels.2")),
                Answers(R"(<tr2:GetVideoEncoderConfigurationOptionsResponse><tr2:Options>
                    <tt:Encoding>H265</tt:Encoding>
                    <tt:QualityRange><tt:Min>1</tt:Min><tt:Max>1</tt:Max></tt:QualityRange>
                    <tt:ResolutionsAvailable><tt:Width>1280</tt:Width><tt:Height>720</tt:Height>
                    </tt:ResolutionsAvailable>
                    <tt:BitrateRange><tt:Min>1000</tt:Min><tt:Max>10000</tt:Max></tt:BitrateRange>
                </tr2:Options></tr2:GetVideoEncoderConfigurationOptionsResponse>)"));
}

TEST_F(Media2Options, OfAnEncoderAreEmptyWithoutAToken) {
    channelInfo = nullptr;
    EXPECT_THAT(AskForEncoder(""), Answers(NoEncoderOptions));
    EXPECT_THAT(AskForEncoder(Profile("")), Answers(NoEncoderOptions));
    EXPECT_THAT(AskForEncoder(Configuration("")), Answers(NoEncoderOptions));
}

TEST_F(Media2Options, PreferTheProfileToken) {
    auto const both = Configuration("channels.1") + Profile("channels.2");
    EXPECT_EQ(AskForEncoder(both).Text("//tt:Encoding"), "H265");
    EXPECT_EQ(AskForSource(both).Text("//tt:VideoSourceTokensAvailable"), "channels.2");
}

TEST_F(Media2Options, PreferEvenAnEmptyProfileToken) {
    auto const both = Configuration("channels.1") + Profile("");
    EXPECT_THAT(AskForEncoder(both), Answers(NoEncoderOptions));
    EXPECT_THAT(AskForSource(both), Answers(AnySource(Available("channels.1") + Available("channels.2"))));
}

TEST_F(Media2Options, AreThoseOfTheConfigurationTokenWhenTheProfileTokenIsNil) {
    auto const both = R"(<tr2:ProfileToken xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:nil="true"/>)" +
                      Configuration("channels.2");
    EXPECT_EQ(AskForEncoder(both).Text("//tt:Encoding"), "H265");
    EXPECT_EQ(AskForSource(both).Text("//tt:VideoSourceTokensAvailable"), "channels.2");
}

TEST_F(Media2Options, TakeTheFirstOfTwoTokensOfAKind) {
    auto const both = Profile("channels.2") + Profile("channels.1");
    EXPECT_EQ(AskForSource(both).Text("//tt:VideoSourceTokensAvailable"), "channels.2");
}

TEST_F(Media2Options, KeepTheWhiteSpaceOfAToken) {
    EXPECT_EQ(AskForSource(Profile(" channels.2 ")).Text("//tt:VideoSourceTokensAvailable"), " channels.2 ");
}

TEST_F(Media2Options, OfAnUnknownTokenHaveZeroResolution) {
    EXPECT_THAT(AskForEncoder(Profile("channels.99")).Texts("//tr2:Options/*[not(self::tt:BitrateRange)]//text()"),
                ElementsAre("1", "1", "0", "0"));
    EXPECT_THAT(AskForSource(Profile("nowhere")), Answers(Source("0", "0", Available("nowhere"))));
}

TEST_F(Media2Options, OfASourceAreTheWholePictureAndItsToken) {
    EXPECT_THAT(AskForSource(Configuration("channels.1")), Answers(Source("1920", "1080", Available("channels.1"))));
    EXPECT_THAT(AskForSource(Profile("channels.2")), Answers(Source("1280", "720", Available("channels.2"))));
}

TEST_F(Media2Options, OfASourceWrapAPictureSizeAboveInt32) {
    videos["1"] = VideoInfo({4294967295U, 2147483648U}, "", 0, 1);
    EXPECT_THAT(AskForSource(Profile("channels.1")), Answers(Source("-1", "-2147483648", Available("channels.1"))));
}

TEST_F(Media2Options, OfASourceEchoAHostileTokenHarmlessly) {
    EXPECT_THAT(AskForSource(Profile("&lt;/tt:x&gt;&amp;&quot;' 名")),
                Answers(Source("0", "0", Available("&lt;/tt:x&gt;&amp;\"' 名"))));
    EXPECT_EQ(AskForSource(Profile(std::string(100'000, 'x'))).Text("//tt:VideoSourceTokensAvailable"),
              std::string(100'000, 'x'));
}

TEST_F(Media2Options, OfASourceAreAnyBoundsAndEveryChannelWithoutAToken) {
    auto const any = Answers(AnySource(Available("channels.1") + Available("channels.2")));
    EXPECT_THAT(AskForSource(""), any);
    EXPECT_THAT(AskForSource(Profile("")), any);
    EXPECT_THAT(AskForSource(Configuration("")), any);
}

TEST_F(Media2Options, OfASourceListNoTokensWithoutChannels) {
    Configure(R"({"channels": {}})");
    EXPECT_THAT(AskForSource(""), Answers(AnySource("")));
}

TEST_F(Media2Options, OfASourceWithoutATokenWaitForTheConfigurationLock) {
    auto lock = std::make_optional(root->GetLock());
    auto reply = std::async(std::launch::async, [this] { return AskForSource(""); });
    EXPECT_EQ(reply.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    lock.reset();
    EXPECT_EQ(reply.get().status, 200);
}

TEST_F(Media2Options, OfASourceThrowWhenTheChannelsAreNotACollection) {
    root = std::make_shared<configuration::node::Root>();
    EXPECT_THROW(AskForSource(""), std::future_error) << "missing";
    root->Schema({Schema("channels.1.name", "Gate", "a map, not a collection")});
    EXPECT_THROW(AskForSource(""), std::future_error) << "a map";
    EXPECT_EQ(AskForSource(Profile("channels.1")).status, 200) << "a request with a token must not read the channels";
}

} // namespace
} // namespace zarn::test
