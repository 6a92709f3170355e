#include "configuration/change.h"
#include "configuration/node/location.h"
#include "configuration/notification.h"
#include "configuration/schema/description.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/event.h>
#include <zarn/configuration/node/value.h>

#include <boost/json/value.hpp>

#include <utility>

namespace zarn::configuration::node {

Value::Value(Location const& location, std::shared_ptr<schema::ValueDescription const> valueDescription)
    : Typed(location), description(std::move(valueDescription)), current{description->GetDefault(), nullptr, false} {}

Value::~Value() = default;

std::shared_ptr<object::Object const> const& Value::State::GetEffective() const noexcept {
    return overriding ? overriding : underlying;
}

Value::State Value::GetState() const {
    std::scoped_lock const lock(stateMutex);
    return current;
}

std::shared_ptr<object::Object const> Value::GetValuePtr() const {
    std::scoped_lock const lock(stateMutex);
    return current.GetEffective();
}

std::string Value::ToString() const {
    if (IsWriteOnly()) throw Error(GetPath(), "the configuration value is write only");
    return description->WriteText(*GetValuePtr());
}

void Value::SetFromString(std::string_view text) {
    RequireWritable();
    Store(description->FromText(GetPath(), text));
}

void Value::SetFromJson(boost::json::value const& json) {
    RequireWritable();
    Store(description->FromJson(GetPath(), json));
}

void Value::OverrideFromString(std::string_view text) {
    RequireWritable();
    StoreOverride(description->FromText(GetPath(), text));
}

void Value::RemoveOverride() {
    Commit(*this, [this](Notification& notification) {
        auto state = GetState();
        state.overriding = nullptr;
        Replace(state, notification);
    });
}

bool Value::IsOverridden() const { return GetState().overriding != nullptr; }

bool Value::IsReadOnly() const noexcept { return description->GetOptions().Has(schema::Option::ReadOnly); }

bool Value::IsWriteOnly() const noexcept { return description->GetOptions().Has(schema::Option::WriteOnly); }

bool Value::IsStated() const {
    auto const state = GetState();
    return state.read || state.overriding || !IsEqual(state.underlying, description->GetDefault());
}

void Value::Store(std::shared_ptr<object::Object const> value) {
    description->Check(GetPath(), *value);
    Commit(*this, [&](Notification& notification) {
        {
            std::scoped_lock const lock(stateMutex);
            current = {std::move(value), nullptr, true};
        }
        Announce(notification);
    });
}

void Value::StoreOverride(std::shared_ptr<object::Object const> value) {
    description->Check(GetPath(), *value);
    Commit(*this, [&](Notification& notification) {
        auto state = GetState();
        state.overriding = std::move(value);
        Replace(state, notification);
    });
}

void Value::Replace(State const& state, Notification& notification) {
    auto const before = GetValuePtr();
    {
        std::scoped_lock const lock(stateMutex);
        current = state;
    }
    if (!IsEqual(before, state.GetEffective())) Announce(notification);
}

void Value::Announce(Notification& notification) {
    notification.Add(std::make_shared<event::Changed const>(shared_from_this()));
}

bool Value::IsEqual(std::shared_ptr<object::Object const> const& left,
                    std::shared_ptr<object::Object const> const& right) const {
    return left == right || description->IsEqual(*left, *right);
}

void Value::RequireWritable() const {
    if (IsReadOnly()) throw Error(GetPath(), "the configuration value is read only");
}

void Value::Prepare(boost::json::value const& json, Change& change) {
    auto value = description->FromJson(GetPath(), json);
    if (!IsEqual(value, GetState().underlying)) RequireWritable();
    change.Add([this, value = std::move(value)](Notification& notification) {
        Replace({value, GetState().overriding, true}, notification);
    });
}

bool Value::PrepareAbsent(Change& change) {
    if (IsReadOnly()) return true;
    change.Add([this](Notification& notification) {
        Replace({description->GetDefault(), GetState().overriding, false}, notification);
    });
    return true;
}

bool Value::IsWritten(Layer layer) const {
    bool const optional = description->GetOptions().Has(schema::Option::Optional);
    switch (layer) {
    case Layer::Persisted: {
        if (IsReadOnly()) return false;
        auto const state = GetState();
        return !optional || state.read || !IsEqual(state.underlying, description->GetDefault());
    }
    case Layer::Effective:
        return !IsWriteOnly() && (!optional || IsStated());
    case Layer::Default:
        break;
    }
    return !IsWriteOnly();
}

boost::json::value Value::Write(Layer layer) const {
    if (layer == Layer::Persisted) return description->WriteJson(*GetState().underlying);
    if (IsWriteOnly()) throw Error(GetPath(), "the configuration value is write only");
    return description->WriteJson(layer == Layer::Effective ? *GetValuePtr() : *description->GetDefault());
}

boost::json::value Value::WriteSchema() const { return description->ToJson(); }

} // namespace zarn::configuration::node
