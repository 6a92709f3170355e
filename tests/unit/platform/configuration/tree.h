#pragma once

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/dynamic.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/node/root.h>
#include <zarn/configuration/schema.h>
#include <zarn/configuration/text.h>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace zarn::configuration {

using Bool = node::Primitive<bool>;
using String = node::Primitive<std::string>;
using UInt16 = node::Primitive<std::uint16_t>;
using UInt32 = node::Primitive<std::uint32_t>;

/// The message of the Error thrown by a call; empty when it throws none.
template <class Call>
std::string ErrorOf(Call call) {
    try {
        call();
    } catch (Error const& error) {
        return error.what();
    }
    return {};
}

/// A small tree with every kind of node: a name, settings.enabled, settings.port with a rule, settings.secret,
/// settings.state, and the collection channels with name, an optional user and an optional video.width.
class Tree : public testing::Test {
protected:
    static std::vector<Schema> Describe() {
        using schema::Option;
        return {
            {"name", "server", "A name"},
            {"settings.enabled", false, "A switch"},
            {"settings.port", std::uint16_t{80}, "A port", {}, {"a port (1 to 65535)", {}}},
            {"settings.secret", "", "A secret", Option::WriteOnly, {"long enough", [](auto& s) { return s != "x"; }}},
            {"settings.state", "idle", "A state", Option::ReadOnly},
            Schema::Collection("channels",
                               {{"name", "", "A name"},
                                {"user", "", "A user", Option::Optional},
                                {"video.width", std::uint32_t{0}, "A width", Option::Optional}},
                               "The channels"),
        };
    }

    Tree() { root->Schema(Describe()); }

    template <class T>
    T& At(std::string const& path) {
        return root->Find(path)->As<T>();
    }

    node::Dynamic& Channels() { return At<node::Dynamic>("channels"); }

    std::vector<std::string> Keys(node::Map const& map) const {
        std::vector<std::string> keys;
        for (auto const& child : map) keys.push_back(child->GetKey());
        return keys;
    }

    void Read(std::string const& json) { root->FromJson(boost::json::parse(json)); }

    std::string Write(Node const& node, Layer layer = Layer::Persisted) const {
        return boost::json::serialize(node.ToJson(layer));
    }

    std::shared_ptr<node::Root> root = std::make_shared<node::Root>();
};

} // namespace zarn::configuration
