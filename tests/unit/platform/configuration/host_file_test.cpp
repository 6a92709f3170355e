#include "unit/platform/configuration/tree.h"

#include <algorithm>
#include <charconv>

namespace zarn::configuration {
namespace {

bool IsRate(std::string const& text) {
    unsigned number = 0;
    auto const* const end = text.data() + text.size();
    auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr == end || *result.ptr != '/') return false;
    result = std::from_chars(result.ptr + 1, end, number);
    return result.ec == std::errc() && result.ptr == end;
}

std::vector<Schema> DescribeHost() {
    using schema::Option;
    schema::Rule<std::uint16_t> const port{"a port (1 to 65535)", {}};
    schema::Rule<std::uint32_t> const positive{"a number above 0", [](std::uint32_t number) { return number > 0; }};
    return {
        {"identity.manufacturer", "", ""},
        {"identity.model", "", ""},
        {"identity.firmware", "", ""},
        {"identity.hardware", "", ""},
        {"identity.name", "", ""},
        {"identity.location", "", ""},
        {"settings.web_port", std::uint16_t{8080}, "", {}, port},
        {"settings.rtsp_port", std::uint16_t{8554}, "", {}, port},
        {"settings.onvif.enabled", false, ""},
        {"settings.authentication.enabled", true, ""},
        {"settings.tls.certificate", "", ""},
        {"settings.tls.private_key", "", ""},
        {"settings.limits.connections", std::uint32_t{1024}, "", {}, positive},
        {"settings.limits.body_bytes", std::uint32_t{1048576}, "", {}, positive},
        {"settings.limits.header_seconds", std::uint32_t{10}, "", {}, positive},
        {"settings.limits.idle_seconds", std::uint32_t{60}, "", {}, positive},
        Schema::Collection("channels",
                           {{"name", "", ""},
                            {"source", "", "", Option::Optional},
                            {"user", "", "", Option::Optional},
                            {"password", "", "", schema::Options(Option::Optional) | Option::WriteOnly},
                            {"video.codec", "", "", Option::Optional},
                            {"video.width", std::uint32_t{0}, "", Option::Optional},
                            {"video.height", std::uint32_t{0}, "", Option::Optional},
                            {"video.rate", "0/1", "", Option::Optional, {"a rate such as 30000/1001", IsRate}}},
                           ""),
    };
}

constexpr char const* File = R"({
  "identity": {
    "manufacturer": "",
    "model": "",
    "firmware": "",
    "hardware": "",
    "name": "",
    "location": ""
  },
  "settings": {
    "web_port": 8080,
    "rtsp_port": 8554,
    "onvif": {
      "enabled": true
    },
    "authentication": {
      "enabled": true
    },
    "tls": {
      "certificate": "",
      "private_key": ""
    },
    "limits": {
      "connections": 1024,
      "body_bytes": 1048576,
      "header_seconds": 10,
      "idle_seconds": 60
    }
  },
  "channels": {
    "2": {
      "name": "Yard",
      "source": "rtsp://camera/stream",
      "user": "",
      "password": ""
    },
    "1": {
      "name": "Gate",
      "source": "test:ball"
    },
    "door_3": {
      "name": "Door",
      "video": {
        "codec": "video/x-h264",
        "width": 1920,
        "height": 1080,
        "rate": "30000/1001"
      }
    },
    "4": {
      "name": "Odd",
      "video": {
        "codec": "h264",
        "width": 0,
        "height": 0,
        "rate": "0/0"
      }
    }
  }
}
)";

/// A configuration with the size and shape of a host's.
class HostFile : public Tree {
protected:
    HostFile() {
        root = std::make_shared<node::Root>();
        root->Schema(DescribeHost());
    }

    std::string ReadFile(std::string const& text) {
        return ErrorOf([&] { root->FromJson(text::Parse(text)); });
    }

    /// The error for the file with one part replaced.
    std::string ReadWith(std::string const& part, std::string const& replacement) {
        std::string text = File;
        return ReadFile(text.replace(text.find(part), part.size(), replacement));
    }
};

TEST_F(HostFile, IsWrittenBackByteForByte) {
    EXPECT_EQ(ReadFile(File), "");
    EXPECT_EQ(text::Format(root->ToJson(Layer::Persisted)), File);
}

TEST_F(HostFile, KnowsWhichMembersAreStated) {
    ReadFile(File);
    EXPECT_FALSE(root->Find("channels.1.video")->IsStated());
    EXPECT_TRUE(root->Find("channels.4.video")->IsStated());
    EXPECT_FALSE(root->Find("channels.4.source")->IsStated());
    EXPECT_EQ(At<String>("channels.door_3.video.rate").Get(), "30000/1001");
}

TEST_F(HostFile, NamesWhatIsWrong) {
    EXPECT_EQ(ReadWith("8080", "70000"), "settings.web_port: 70000 is not a port (1 to 65535)");
    EXPECT_EQ(ReadWith("web_port", "webport"), "settings.webport: unknown key");
    EXPECT_EQ(ReadWith("1024", "0"), "settings.limits.connections: 0 is not a number above 0");
    EXPECT_EQ(ReadWith("\"Gate\"", "7"), "channels.1.name: 7 is not a text in UTF-8");
    EXPECT_EQ(ReadWith("30000/1001", "fast"), "channels.door_3.video.rate: \"fast\" is not a rate such as 30000/1001");
    EXPECT_EQ(ReadWith("1920", "-1"), "channels.door_3.video.width: -1 is not a whole number from 0 to 4294967295");
    EXPECT_EQ(ReadWith("\"password\": \"\"", "\"password\": 12345"),
              "channels.2.password: the value is not a text in UTF-8");
    EXPECT_EQ(ReadWith("\"door_3\"", "\"door 3\""),
              "channels: \"door 3\" is not a key (1 to 64 letters, digits, '-' and '_')");
    EXPECT_EQ(ReadWith("\"door_3\"", "\"1\""), "channels.1: line 41, column 7: the key occurs twice");
}

TEST_F(HostFile, PersistsPortZeroDespiteAnOverride) {
    EXPECT_EQ(ReadWith("8080", "0"), "");
    At<UInt16>("settings.web_port").Override(40123);
    EXPECT_EQ(At<UInt16>("settings.web_port").Get(), 40123);
    EXPECT_EQ(root->ToJson(Layer::Persisted).at_pointer("/settings/web_port"), 0);
}

TEST_F(HostFile, HidesPasswordsFromTheEffectiveLayer) {
    ReadWith("\"password\": \"\"", "\"password\": \"hunter2\"");
    EXPECT_EQ(Write(*root, Layer::Effective).find("hunter2"), std::string::npos);
    EXPECT_NE(Write(*root).find("hunter2"), std::string::npos);
}

} // namespace
} // namespace zarn::configuration
