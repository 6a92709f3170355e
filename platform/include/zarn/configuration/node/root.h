#pragma once

#include <zarn/configuration/node/map.h>

namespace zarn::configuration::node {

/// A configuration tree; its path is empty. Made by std::make_shared<Root>(): nodes need the shared pointer.
class Root : public object::Typed<Root, Map> {
public:
    static constexpr char const* TypeName = "zarn.configuration.node.Root";

    /// An empty tree.
    Root();
    ~Root() override;
};

} // namespace zarn::configuration::node
