#include <zarn/configuration/event.h>
#include <zarn/configuration/node.h>

#include <utility>

namespace zarn::configuration {

Event::Event(std::shared_ptr<Node> concerned) : node(std::move(concerned)) {}

std::shared_ptr<Node> Event::GetNode() const { return node; }

} // namespace zarn::configuration
