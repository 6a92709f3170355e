#pragma once

#include <zarn/configuration/node.h>

#include <memory>

namespace zarn::configuration::node {

/// Holds what was read under a key that no schema describes yet, see Unknown::Keep. It is written back unchanged.
/// When a schema describes the key, a node of the described type takes its place.
class Undescribed : public object::Typed<Undescribed, Node> {
public:
    static constexpr char const* TypeName = "zarn.configuration.node.Undescribed";

    /// Made by Map::FromJson and Map::Schema only.
    Undescribed(Location const& location, boost::json::value const& json);
    ~Undescribed() override;

    bool IsStated() const override;

private:
    void Prepare(boost::json::value const& json, Change& change) override;
    bool PrepareAbsent(Change& change) override;
    bool IsWritten(Layer layer) const override;
    boost::json::value Write(Layer layer) const override;
    boost::json::value WriteSchema() const override;

    /// Guarded by the lock of the tree.
    std::unique_ptr<boost::json::value> content;
};

} // namespace zarn::configuration::node
