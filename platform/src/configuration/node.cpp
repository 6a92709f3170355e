#include "configuration/node/binding/subscription.h"
#include "configuration/node/location.h"

#include <zarn/configuration/event.h>
#include <zarn/configuration/node.h>

#include <boost/json/value.hpp>

#include <exception>
#include <stdexcept>
#include <utility>

namespace zarn::configuration {

Node::Node(node::Location const& location) : treeMutex(location.treeMutex), key(location.key), path(location.path) {}

Node::~Node() = default;

std::string Node::GetPath() const { return path; }

std::string const& Node::GetKey() const noexcept { return key; }

Lock Node::GetLock() const { return Lock(treeMutex); }

object::BadCast Node::BadCastError(char const* typeName) const {
    return object::BadCast(typeName, path, GetTypeName());
}

type::Binding Node::Bind(Callback callback, node::binding::Options options) {
    if (!callback) throw std::invalid_argument("the callback of a binding is empty");
    auto const subscription = std::make_shared<node::binding::Subscription>(std::move(callback));
    type::Binding binding([weak = weak_from_this(), subscription] {
        if (auto const node = weak.lock()) node->Unbind(*subscription);
        subscription->Close();
    });
    // Claimed before another thread can know of it, so that the current value is delivered here.
    subscription->Claim();
    if (options.Has(node::binding::Option::DeliverCurrent)) {
        subscription->Enqueue(std::make_shared<event::Changed const>(shared_from_this()));
    }
    {
        std::scoped_lock const lock(subscriptionsMutex);
        subscriptions.push_back(subscription);
    }
    if (auto const thrown = subscription->Run()) std::rethrow_exception(thrown);
    return binding;
}

void Node::Unbind(node::binding::Subscription& subscription) noexcept {
    std::scoped_lock const lock(subscriptionsMutex);
    std::erase_if(subscriptions, [&](auto const& bound) { return bound.get() == &subscription; });
}

boost::json::value Node::ToJson(Layer layer) const {
    auto const lock = GetLock();
    return Write(layer);
}

boost::json::value Node::GetSchema() const {
    auto const lock = GetLock();
    return WriteSchema();
}

} // namespace zarn::configuration
