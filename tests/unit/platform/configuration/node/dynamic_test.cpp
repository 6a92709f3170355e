#include "unit/platform/configuration/tree.h"

#include <zarn/configuration/event.h>

namespace zarn::configuration {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

class DynamicTest : public Tree {
protected:
    DynamicTest() {
        binding = root->Bind([this](auto const& event) {
            std::string const name = event->GetTypeName();
            heard.push_back(name.substr(name.rfind('.') + 1) + " " + event->GetNode()->GetPath());
        });
    }

    std::vector<std::string> heard;
    type::Binding binding;
};

TEST_F(DynamicTest, IsEmptyAtFirst) {
    EXPECT_EQ(Channels().GetSize(), 0U);
    EXPECT_EQ(Channels().begin(), Channels().end());
    EXPECT_EQ(Write(*root), R"({"name":"server","settings":{"enabled":false,"port":80,"secret":""},"channels":{}})");
}

TEST_F(DynamicTest, AppendsEntriesWithItsSchema) {
    auto const entry = Channels().Add("7");
    Channels().Add("3");
    EXPECT_EQ(entry, root->Find("channels.7"));
    EXPECT_EQ(entry->GetPath(), "channels.7");
    EXPECT_THAT(Keys(*entry), ElementsAre("name", "user", "video"));
    EXPECT_THAT(Keys(Channels()), ElementsAre("7", "3"));
    EXPECT_THAT(heard, ElementsAre("Added channels.7", "Added channels.3"));
}

TEST_F(DynamicTest, ReportsAnEntryOnceItCanBeFound) {
    bool found = false;
    auto const second = Channels().Bind(
        [&](auto const& event) { found = root->Find(event->GetNode()->GetPath()) == event->GetNode(); });
    Channels().Add("1");
    EXPECT_TRUE(found);
    found = false;
    Read(R"({"channels": {"1": {}, "2": {"name": "Yard"}}})");
    EXPECT_TRUE(found);
}

TEST_F(DynamicTest, RefusesADuplicateOrInvalidKey) {
    Channels().Add("1");
    EXPECT_EQ(ErrorOf([&] { Channels().Add("1"); }), "channels.1: the key is taken");
    for (std::string const& key : {std::string(), std::string("a.b"), std::string("a b"), std::string("ü"),
                                   std::string(65, 'x'), std::string("1/2"), std::string("a\0b", 3)}) {
        EXPECT_THAT(ErrorOf([&] { Channels().Add(key); }), testing::StartsWith("channels: ")) << key;
    }
    EXPECT_NO_THROW(Channels().Add(std::string(64, 'x')));
    EXPECT_NO_THROW(Channels().Add("Gate-1_b"));
    EXPECT_EQ(Channels().GetSize(), 3U);
}

TEST_F(DynamicTest, RefusesAKeyThatItsRuleDoesNotAccept) {
    root->Schema({Schema::Collection("doors", {{"name", "", "The name"}}, "Doors", {},
                                     {"the number of a door", [](std::string const& key) { return key < "5"; }})});
    auto& doors = root->Find("doors")->As<node::Dynamic>();
    EXPECT_EQ(ErrorOf([&] { doors.Add("7"); }), "doors: 7 is not the number of a door");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"doors": {"1": {}, "7": {}}})"); }), "doors: 7 is not the number of a door");
    EXPECT_EQ(doors.GetSize(), 0U);
    EXPECT_NO_THROW(doors.Add("1"));
}

TEST_F(DynamicTest, RemovesEntries) {
    Channels().Add("1");
    auto const entry = Channels().Add("2");
    heard.clear();
    EXPECT_TRUE(Channels().Remove("2"));
    EXPECT_FALSE(Channels().Remove("2"));
    EXPECT_THAT(root->Find("channels.2"), IsNull());
    EXPECT_THAT(Keys(Channels()), ElementsAre("1"));
    EXPECT_THAT(heard, ElementsAre("Removed channels.2"));
}

TEST_F(DynamicTest, KeepsARemovedEntryReadableButDetached) {
    auto const entry = Channels().Add("1");
    Channels().Remove("1");
    heard.clear();
    entry->Find("name")->As<String>().Set("Gate");
    EXPECT_EQ(entry->Find("name")->As<String>().Get(), "Gate");
    EXPECT_THAT(heard, IsEmpty());
    EXPECT_NE(Channels().Add("1"), entry);
    EXPECT_EQ(At<String>("channels.1.name").Get(), "");
}

TEST_F(DynamicTest, ReportsARemovalToBindingsOfTheEntry) {
    auto const entry = Channels().Add("1");
    int removals = 0;
    auto const second = entry->Bind([&](auto const& event) { removals += event->template Is<event::Removed>(); });
    Read(R"({"channels": {}})");
    EXPECT_EQ(removals, 1);
}

TEST_F(DynamicTest, CanBeReordered) {
    for (auto const* key : {"1", "2", "3"}) Channels().Add(key);
    heard.clear();
    Channels().Reorder({"3", "1", "2"});
    EXPECT_THAT(Keys(Channels()), ElementsAre("3", "1", "2"));
    EXPECT_THAT(heard, ElementsAre("Changed channels"));
    Channels().Reorder({"3", "1", "2"});
    EXPECT_EQ(heard.size(), 1U);
}

TEST_F(DynamicTest, RefusesAnOrderWithoutExactlyItsKeys) {
    for (auto const* key : {"1", "2"}) Channels().Add(key);
    EXPECT_EQ(ErrorOf([&] { Channels().Reorder({"1"}); }), "channels: an order needs the keys of all entries");
    EXPECT_EQ(ErrorOf([&] { Channels().Reorder({"1", "1"}); }), "channels: 1 is given twice");
    EXPECT_EQ(ErrorOf([&] { Channels().Reorder({"1", "x"}); }), "channels: \"x\" is not the key of an entry");
    EXPECT_THAT(Keys(Channels()), ElementsAre("1", "2"));
}

TEST_F(DynamicTest, ReadsEntriesInTheOrderOfTheFile) {
    Read(R"({"channels": {"10": {"name": "j"}, "2": {"name": "b"}, "z": {}}})");
    EXPECT_THAT(Keys(Channels()), ElementsAre("10", "2", "z"));
    EXPECT_EQ(At<String>("channels.10.name").Get(), "j");
    EXPECT_THAT(heard, ElementsAre("Added channels.10", "Added channels.2", "Added channels.z"));
}

TEST_F(DynamicTest, KeepsExistingEntriesOnReload) {
    Read(R"({"channels": {"1": {"name": "a"}, "2": {"name": "b"}, "3": {"name": "c"}}})");
    auto const second = root->Find("channels.2");
    heard.clear();
    Read(R"({"channels": {"4": {}, "2": {"name": "B"}, "1": {"name": "a"}}})");
    EXPECT_EQ(root->Find("channels.2"), second);
    EXPECT_THAT(Keys(Channels()), ElementsAre("4", "2", "1"));
    EXPECT_THAT(heard, testing::UnorderedElementsAre("Changed channels.2.name", "Removed channels.3",
                                                     "Added channels.4", "Changed channels"));
}

TEST_F(DynamicTest, NamesTheEntryWithAnInvalidValue) {
    EXPECT_EQ(ErrorOf([&] { Read(R"({"channels": {"1": {"video": {"width": -1}}}})"); }),
              "channels.1.video.width: -1 is not a whole number from 0 to 4294967295");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"channels": {"1": {"nmae": ""}}})"); }), "channels.1.nmae: unknown key");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"channels": {"1": "Gate"}})"); }), "channels.1: \"Gate\" is not an object");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"channels": []})"); }), "channels: [] is not an object");
    EXPECT_EQ(ErrorOf([&] { Read(R"({"channels": {"a b": {}}})"); }),
              "channels: \"a b\" is not a key (1 to 64 letters, digits, '-' and '_')");
    EXPECT_EQ(Channels().GetSize(), 0U);
}

TEST_F(DynamicTest, FindsEachOfManyEntries) {
    boost::json::object channels;
    for (int number = 1; number <= 1024; ++number) {
        channels[std::to_string(number)] = {{"name", "Channel " + std::to_string(number)}};
    }
    root->FromJson({{"channels", channels}});
    int number = 0;
    for (auto const& entry : Channels()) {
        ++number;
        auto const path = "channels." + std::to_string(number);
        EXPECT_EQ(entry->GetPath(), path);
        EXPECT_EQ(root->Find(path), entry);
        EXPECT_EQ(At<String>(path + ".name").Get(), "Channel " + std::to_string(number));
    }
    EXPECT_EQ(number, 1024);
}

} // namespace
} // namespace zarn::configuration
