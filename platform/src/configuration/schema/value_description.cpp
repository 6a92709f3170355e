#include "configuration/node/location.h"
#include "configuration/schema/conversion.h"
#include "configuration/schema/description.h"
#include "configuration/schema/quote.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node/primitive.h>
#include <zarn/configuration/schema.h>
#include <zarn/object/primitive.h>

#include <boost/json/value.hpp>

#include <utility>

namespace zarn::configuration::schema {

namespace {

template <class T>
class TypedDescription : public ValueDescription {
public:
    TypedDescription(T initial, std::string descriptionText, Options descriptionOptions, Rule<T> valueRule)
        : ValueDescription(std::move(descriptionText), descriptionOptions),
          defaultValue(Make(std::move(initial))),
          rule(std::move(valueRule)) {}

    std::shared_ptr<Node> Create(node::Location const& location) const override {
        return std::make_shared<node::Primitive<T>>(
            location, std::static_pointer_cast<ValueDescription const>(shared_from_this()));
    }

    boost::json::value ToJson() const override {
        return {{"type", Conversion<T>::GetJsonType()},
                {"default", WriteJson(*defaultValue)},
                {"readOnly", GetOptions().Has(Option::ReadOnly)},
                {"writeOnly", GetOptions().Has(Option::WriteOnly)},
                {"description", GetText()}};
    }

    Value GetDefault() const override { return defaultValue; }

    Value FromText(std::string const& path, std::string_view valueText) const override {
        if (auto value = Conversion<T>::FromText(valueText)) return Accept(path, std::move(*value));
        if constexpr (std::same_as<T, bool>) {
            std::string const shown = IsSecret() ? "" : ": " + Quote(valueText);
            throw Error(path, "Failed to parse the string into a boolean value" + shown);
        } else {
            throw Refusal(path, Quote(valueText));
        }
    }

    Value FromJson(std::string const& path, boost::json::value const& json) const override {
        if (auto value = Conversion<T>::FromJson(json)) return Accept(path, std::move(*value));
        throw Refusal(path, Quote(json));
    }

    void Check(std::string const& path, object::Object const& value) const override { CheckValue(path, Get(value)); }

    boost::json::value WriteJson(object::Object const& value) const override {
        return Conversion<T>::WriteJson(Get(value));
    }

    std::string WriteText(object::Object const& value) const override { return Conversion<T>::WriteText(Get(value)); }

    bool IsEqual(object::Object const& left, object::Object const& right) const override {
        return Get(left) == Get(right);
    }

private:
    static Value Make(T value) { return std::make_shared<object::Primitive<T> const>(std::move(value)); }

    static T const& Get(object::Object const& value) { return value.As<object::Primitive<T>>().Get(); }

    bool IsSecret() const noexcept { return rule.secret || GetOptions().Has(Option::WriteOnly); }

    Value Accept(std::string const& path, T value) const {
        CheckValue(path, value);
        return Make(std::move(value));
    }

    void CheckValue(std::string const& path, T const& value) const {
        // What cannot be written cannot be quoted as JSON either.
        if (!Conversion<T>::IsWritable(value)) throw Error(path, "the value is not " + Conversion<T>::GetRule());
        if (rule.accepts && !rule.accepts(value)) throw Refusal(path, Quote(Conversion<T>::WriteJson(value)));
    }

    Error Refusal(std::string const& path, std::string const& quoted) const {
        return Error(path, (IsSecret() ? "the value" : quoted) + " is not " +
                               (rule.text.empty() ? Conversion<T>::GetRule() : rule.text));
    }

    Value const defaultValue;
    Rule<T> const rule;
};

} // namespace

template <Storable T>
std::shared_ptr<Description const> DescribeValue(T defaultValue, std::string text, Options options, Rule<T> rule) {
    return std::make_shared<TypedDescription<T>>(std::move(defaultValue), std::move(text), options, std::move(rule));
}

template std::shared_ptr<Description const> DescribeValue(bool, std::string, Options, Rule<bool>);
template std::shared_ptr<Description const> DescribeValue(std::string, std::string, Options, Rule<std::string>);
template std::shared_ptr<Description const> DescribeValue(std::uint16_t, std::string, Options, Rule<std::uint16_t>);
template std::shared_ptr<Description const> DescribeValue(std::uint32_t, std::string, Options, Rule<std::uint32_t>);
template std::shared_ptr<Description const> DescribeValue(std::int32_t, std::string, Options, Rule<std::int32_t>);
template std::shared_ptr<Description const> DescribeValue(std::int64_t, std::string, Options, Rule<std::int64_t>);
template std::shared_ptr<Description const> DescribeValue(double, std::string, Options, Rule<double>);

} // namespace zarn::configuration::schema
