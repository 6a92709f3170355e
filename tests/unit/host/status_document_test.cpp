#include "host/settings.h"
#include "host/status.h"

#include <zarn/onvif/events/subscription_gauge.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <set>
#include <string>

namespace zarn::host {
namespace {

using Fields = std::set<std::string>;

/// Adds the paths of all leaf values, such as "channels[].id".
void AddFields(boost::json::value const& value, std::string const& path, Fields& fields) {
    if (auto const* const object = value.if_object()) {
        for (auto const& member : *object)
            AddFields(member.value(), path + (path.empty() ? "" : ".") + std::string(member.key()), fields);
    } else if (auto const* const list = value.if_array()) {
        ASSERT_FALSE(list->empty()) << path;
        for (auto const& element : *list) AddFields(element, path + "[]", fields);
    } else {
        fields.insert(path);
    }
}

/// Field names from the first column of the table in docs/host.md.
Fields ReadDocument() {
    std::ifstream document(ZARN_STATUS_DOCUMENT);
    Fields fields;
    bool inTable = false;
    for (std::string line; std::getline(document, line);) {
        if (line.starts_with("### ")) inTable = line == "### Status";
        if (!inTable || !line.starts_with("| `")) continue;
        auto const cell = line.substr(0, line.find('|', 1));
        std::regex const field("`([^`]+)`");
        for (std::sregex_iterator found(cell.begin(), cell.end(), field), end; found != end; ++found)
            fields.insert((*found)[1]);
    }
    return fields;
}

TEST(StatusDocument, ListsTheFieldsOfTheStatus) {
    auto const root = std::make_shared<configuration::node::Root>();
    DescribeSettings(*root);
    video::Engine engine({.port = 0, .authenticate = false, .ha1 = ""});
    engine.SetChannels({{.id = "1", .source = "", .user = "", .password = "", .described = {}}});
    zarn::onvif::events::SubscriptionGauge const subscription{1};
    Fields reported;
    AddFields(MakeStatus(*root, engine, web::Admission(), {}, false, std::chrono::seconds(0)), "", reported);
    EXPECT_THAT(ReadDocument(), testing::ContainerEq(reported));
}

} // namespace
} // namespace zarn::host
