#pragma once

#include <zarn/configuration/node.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace zarn::configuration {

namespace schema {
class ValueDescription;
}

namespace node {

/// A node that holds one typed value: a Primitive<T>.
///
/// The value has two layers. The underlying one is what the file keeps. An override lies above it for this run only:
/// reads give it, Layer::Persisted does not, and reading the file again leaves it. Setting the value ends the override.
/// Every set delivers event::Changed, also when the value is the same as before; an override and its end, and reading
/// the file, deliver it when the effective value changes.
class Value : public object::Typed<Value, Node> {
public:
    static constexpr char const* TypeName = "zarn.configuration.node.Value";

    ~Value() override;

    /// The effective value: an object::Primitive of the node's type that never changes; never null.
    std::shared_ptr<object::Object const> GetValuePtr() const;

    /// The effective value as the text that SetFromString takes.
    /// Throws Error ": the configuration value is write only".
    std::string ToString() const;

    /// Sets the value from text, as typed by a person: "true" or "false", a number, or the text itself.
    /// Throws Error, with the value unchanged, when the text is not of the node's type, is refused by its rule, or the
    /// node is read-only.
    void SetFromString(std::string_view text);

    /// Sets the value from JSON. Errors as SetFromString.
    void SetFromJson(boost::json::value const& json);

    /// Overrides the value for this run, from text. Errors as SetFromString.
    void OverrideFromString(std::string_view text);

    /// Ends the override, if there is one.
    void RemoveOverride();

    /// Whether the value is overridden.
    bool IsOverridden() const;

    /// Whether text, JSON and files must not set the value; the program still can (Primitive::Set).
    bool IsReadOnly() const noexcept;

    /// Whether the value can be set but is never shown, such as a password; the program still can read it.
    bool IsWriteOnly() const noexcept;

    bool IsStated() const override;

protected:
    /// Made by Map::Schema only.
    Value(Location const& location, std::shared_ptr<schema::ValueDescription const> valueDescription);

    /// Sets the value to an object of the node's type. Throws Error when the rule refuses it.
    void Store(std::shared_ptr<object::Object const> value);

    /// Overrides the value with an object of the node's type. Throws Error when the rule refuses it.
    void StoreOverride(std::shared_ptr<object::Object const> value);

private:
    /// The layers of the value.
    struct State {
        std::shared_ptr<object::Object const> underlying;
        /// Null without an override.
        std::shared_ptr<object::Object const> overriding;
        /// Whether the value was in what was last read.
        bool read = false;

        std::shared_ptr<object::Object const> const& GetEffective() const noexcept;
    };

    void Prepare(boost::json::value const& json, Change& change) override;
    bool PrepareAbsent(Change& change) override;
    bool IsWritten(Layer layer) const override;
    boost::json::value Write(Layer layer) const override;
    boost::json::value WriteSchema() const override;

    State GetState() const;
    void Replace(State const& state, Notification& notification);
    void Announce(Notification& notification);
    bool IsEqual(std::shared_ptr<object::Object const> const& left,
                 std::shared_ptr<object::Object const> const& right) const;
    void RequireWritable() const;

    std::shared_ptr<schema::ValueDescription const> const description;
    mutable std::mutex stateMutex;
    State current;
};

} // namespace node
} // namespace zarn::configuration
