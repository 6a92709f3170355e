#include "host/settings.h"
#include "support/source_file.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node.h>
#include <zarn/configuration/node/primitive.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace zarn::host {
namespace {

using configuration::Error;
using configuration::node::Read;
using testing::HasSubstr;

class SettingsTest : public testing::Test {
protected:
    SettingsTest() { DescribeSettings(*root); }

    std::string GetError(std::string const& json) const {
        try {
            root->FromJson(boost::json::parse(json));
            return "";
        } catch (Error const& error) {
            return error.what();
        }
    }

    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
};

TEST_F(SettingsTest, RefuseInvalidValues) {
    for (auto const* json : {
             R"({"settings": {"web_port": -1}})",
             R"({"settings": {"web_port": 65536}})",
             R"({"settings": {"web_port": "80"}})",
             R"({"settings": {"limits": {"connections": 0}}})",
             R"({"settings": {"limits": {"body_bytes": 1023}}})",
             R"({"settings": {"limits": {"header_seconds": 3601}}})",
             R"({"settings": {"limits": {"idle_seconds": 0}}})",
             R"({"settings": {"limits": {"failed_logins_per_minute": 10001}}})",
             R"({"events": {}})",
         }) {
        EXPECT_THAT(GetError(json), HasSubstr(": ")) << json;
    }
}

TEST_F(SettingsTest, CanBeOverriddenAsText) {
    root->FromJson(boost::json::parse(R"({"channels": {"1": {"name": "A"}}})"));
    OverrideSetting(*root, "settings.web_port", "18080");
    OverrideSetting(*root, "settings.authentication.enabled", "false");
    OverrideSetting(*root, "channels.1.video.rate", "15/1");
    EXPECT_EQ(Read<std::uint16_t>(*root, "settings.web_port"), 18080);
    EXPECT_FALSE(Read<bool>(*root, "settings.authentication.enabled"));
    EXPECT_EQ(Read<std::string>(*root, "channels.1.video.rate"), "15/1");
}

TEST_F(SettingsTest, RefuseInvalidOverrides) {
    for (auto const& [path, text] :
         std::vector<std::pair<std::string, std::string>>{{"settings.web_port", "70000"},
                                                          {"settings.web_port", ""},
                                                          {"settings.authentication.enabled", "yes"},
                                                          {"settings.nothing", "1"},
                                                          {"settings", "1"},
                                                          {"", "1"},
                                                          {"channels.9.name", "x"},
                                                          {"identity.name", "\xff"},
                                                          {"identity.name", "\xEF\xBF\xBE"},
                                                          {"identity.name", "\xEF\xBF\xBF"}}) {
        EXPECT_THROW(OverrideSetting(*root, path, text), Error) << path << "=" << text;
    }
}

TEST_F(SettingsTest, QuoteAWrongValueInOneLine) {
    try {
        OverrideSetting(*root, "settings.limits.connections", "4\x7F\xC2\x85");
        FAIL() << "accepted";
    } catch (Error const& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr(R"("4\x7f\xc2\x85")"));
    }
}

TEST_F(SettingsTest, NameAnUnknownPathInOneShortLine) {
    try {
        OverrideSetting(*root, "channels.\x01\n\xff" + std::string(10000, 'a'), "1");
        FAIL() << "accepted";
    } catch (Error const& error) {
        EXPECT_THAT(error.what(), testing::StartsWith(R"(channels.\x01\n\xffaaa)"));
        EXPECT_THAT(error.what(), testing::EndsWith("more): there is no such setting"));
    }
}

/// The settings with the defaults in the documentation; ID stands for a channel's id.
using Defaults = std::map<std::string, std::string>;

std::string WriteDefault(boost::json::value const& value) {
    if (value.is_string()) return value.as_string().empty() ? "empty" : '`' + std::string(value.as_string()) + '`';
    return boost::json::serialize(value);
}

void Collect(boost::json::value const& schema, std::string const& path, Defaults& defaults) {
    auto const& object = schema.as_object();
    if (auto const* entry = object.if_contains("additionalProperties")) {
        Collect(*entry, path + ".ID", defaults);
    } else if (auto const* properties = object.if_contains("properties")) {
        for (auto const& [key, value] : properties->as_object()) {
            Collect(value, path.empty() ? std::string(key) : path + '.' + std::string(key), defaults);
        }
    } else {
        defaults.emplace(path, WriteDefault(object.at("default")));
    }
}

/// Checks the parts of the documentation that apply to the settings of every component.
class SettingsInDocuments : public SettingsTest {
protected:
    SettingsInDocuments() { Collect(root->GetSchema(), "", settings); }

    /// Rows of the settings table: path, bounds, default.
    static std::map<std::string, std::pair<std::string, std::string>> ReadTable() {
        std::map<std::string, std::pair<std::string, std::string>> rows;
        std::istringstream lines(test::ReadSourceFile("docs/configuration.md"));
        std::regex const row(R"(\| `((?:identity|settings|channels)\.[A-Za-z_.]+)` \| (.*?) \| (.*?) \|.*)");
        for (std::string line; std::getline(lines, line);) {
            std::smatch match;
            if (std::regex_match(line, match, row)) rows[match[1]] = {match[2], match[3]};
        }
        return rows;
    }

    Defaults settings;
};

TEST_F(SettingsInDocuments, HaveARowEachWithTheirDefault) {
    Defaults documented;
    for (auto const& [path, row] : ReadTable()) {
        if (path != "channels.ID") documented.emplace(path, row.second);
    }
    settings["identity.firmware"] = "the version";
    EXPECT_THAT(documented, testing::ContainerEq(settings));
}

TEST_F(SettingsInDocuments, HaveTheBoundsOfTheirRow) {
    root->FromJson(boost::json::parse(R"({"channels": {"ID": {}}})"));
    std::regex const range("([0-9]+) to ([0-9]+)");
    int checked = 0;
    for (auto const& [path, row] : ReadTable()) {
        std::smatch match;
        if (!std::regex_match(row.first, match, range)) continue;
        auto const least = std::stoll(match[1]);
        auto const most = std::stoll(match[2]);
        EXPECT_NO_THROW(OverrideSetting(*root, path, std::to_string(least))) << path;
        EXPECT_NO_THROW(OverrideSetting(*root, path, std::to_string(most))) << path;
        EXPECT_THROW(OverrideSetting(*root, path, std::to_string(least - 1)), Error) << path;
        EXPECT_THROW(OverrideSetting(*root, path, std::to_string(most + 1)), Error) << path;
        ++checked;
    }
    EXPECT_GE(checked, 12);
}

TEST_F(SettingsInDocuments, ExistWhereverTheyAreNamed) {
    std::regex const name(R"(\bsettings(\.[a-z_]+)+)");
    auto files = test::ListSourceFiles("docs", ".md");
    ASSERT_GE(files.size(), 10U);
    files.insert(files.end(), {"README.md", "CHANGELOG.md"});
    for (auto const& file : files) {
        auto const text = test::ReadSourceFile(file);
        for (std::sregex_iterator match(text.begin(), text.end(), name), end; match != end; ++match) {
            EXPECT_TRUE(root->Find(match->str())) << file << ": " << match->str();
        }
    }
}

TEST_F(SettingsInDocuments, AreKeysOfTheFuzzersDictionary) {
    auto const dictionary = test::ReadSourceFile("fuzz/dictionaries/configuration.dict");
    std::set<std::string> keys;
    for (auto const& [path, value] : settings) {
        std::istringstream parts(path);
        for (std::string key; std::getline(parts, key, '.');) keys.insert(key);
    }
    keys.erase("ID");
    for (auto const& key : keys) EXPECT_THAT(dictionary, HasSubstr("\\\"" + key + "\\\":"));
}

} // namespace
} // namespace zarn::host
