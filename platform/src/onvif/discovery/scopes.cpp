#include <zarn/onvif/discovery/scopes.h>
#include <zarn/text/character.h>

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <array>
#include <cstddef>

namespace zarn::onvif::discovery {

namespace {

using utilities::name::Config;

constexpr std::string_view Scheme = "onvif:";
constexpr std::string_view Authority = "//www.onvif.org";

/// A scope of the device.
struct Scope {
    std::string_view path;
    /// What of the identity follows; null for a scope that is the same for every device of this kind.
    std::string_view (Config::*value)() const noexcept = nullptr;
};

constexpr std::array Scopes{
    Scope{"Profile/Streaming"},
    Scope{"Profile/M"},
    Scope{"type/video_encoder"},
    Scope{"type/audio_encoder"}, // expected by clients although no audio is served
    Scope{"hardware", &Config::GetProductHardware},
    Scope{"manufacturer", &Config::GetProductManufacturer},
    Scope{"location", &Config::GetProductLocation},
    Scope{"name", &Config::GetProductName},
};

std::string Encode(std::string_view text) {
    return text::PercentEncode(text, [](char each) {
        constexpr std::string_view Others = "-._~/";
        return text::IsAlphanumeric(each) || Others.find(each) != Others.npos;
    });
}

/// The scopes, the texts of the identity in the form that `toForm` gives them.
template <class ToForm>
std::vector<std::string> Make(Config const& nameConfig, ToForm toForm) {
    std::vector<std::string> scopes;
    for (auto const& [path, value] : Scopes) {
        auto& scope = scopes.emplace_back(Scheme);
        scope.append(Authority).append("/").append(path);
        if (value != nullptr) scope.append("/").append(toForm((nameConfig.*value)()));
    }
    return scopes;
}

/// True when the segments of `path` begin with those of `prefix`.
bool HasPrefix(std::string_view path, std::string_view prefix) {
    return path.starts_with(prefix) && (path.size() == prefix.size() || prefix.empty() || path[prefix.size()] == '/');
}

/// True for a path with a segment "." or "..", which by WS-Discovery 2005/04, 5.1 never matches.
bool HasDotSegment(std::string_view path) {
    for (;;) {
        auto const end = path.find('/');
        auto const segment = path.substr(0, end);
        if (segment == "." || segment == "..") return true;
        if (end == std::string_view::npos) return false;
        path.remove_prefix(end + 1);
    }
}

/// Removes the part from the beginning of the text, whatever its case; false when the text begins otherwise.
bool Consume(std::string_view& text, std::string_view part) {
    if (!boost::istarts_with(text, part)) return false;
    text.remove_prefix(part.size());
    return true;
}

/// The rule of RFC 3986: without query and fragment.
bool MayMatchPath(std::string_view wanted) {
    wanted = wanted.substr(0, wanted.find_first_of("?#"));
    if (!Consume(wanted, Scheme) || !Consume(wanted, Authority)) return false;
    if (!wanted.empty() && wanted.front() != '/') return false; // the authority goes on
    if (!wanted.empty()) wanted.remove_prefix(1);
    if (HasDotSegment(wanted)) return false;
    if (wanted.ends_with('/')) wanted.remove_suffix(1);
    return std::ranges::any_of(Scopes, [&](Scope const& scope) {
        return HasPrefix(scope.path, wanted) || (scope.value != nullptr && HasPrefix(wanted, scope.path));
    });
}

/// The rule strcmp0: the whole text.
bool MayMatchText(std::string_view wanted) {
    if (!wanted.starts_with(Scheme)) return false;
    wanted.remove_prefix(Scheme.size());
    if (!wanted.starts_with(Authority)) return false;
    wanted.remove_prefix(Authority.size());
    if (!wanted.starts_with('/')) return false;
    wanted.remove_prefix(1);
    return std::ranges::any_of(Scopes, [&](Scope const& scope) {
        if (scope.value == nullptr) return wanted == scope.path;
        return wanted.size() > scope.path.size() && HasPrefix(wanted, scope.path);
    });
}

struct Rule {
    std::string_view name;
    bool (*mayMatch)(std::string_view wanted);
};

constexpr std::array Rules{
    Rule{"", &MayMatchPath},
    Rule{"http://schemas.xmlsoap.org/ws/2005/04/discovery/rfc3986", &MayMatchPath},
    Rule{"http://schemas.xmlsoap.org/ws/2005/04/discovery/rfc2396", &MayMatchPath},
    Rule{"http://schemas.xmlsoap.org/ws/2005/04/discovery/strcmp0", &MayMatchText},
};

} // namespace

std::vector<std::string> ListScopes(Config const& nameConfig) {
    return Make(nameConfig, [](std::string_view text) { return text; });
}

std::string MakeScopes(Config const& nameConfig) { return boost::algorithm::join(Make(nameConfig, Encode), " "); }

bool MayMatchScopes(std::span<std::string_view const> scopes, std::string_view matchBy) {
    auto const* rule = std::ranges::find(Rules, matchBy, &Rule::name);
    return rule != Rules.end() && std::ranges::all_of(scopes, rule->mayMatch);
}

} // namespace zarn::onvif::discovery
