#include "host/events/events_route.h"

#include "host/web/find_field.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::host::events {
namespace {

namespace json = boost::json;
using Status = protocol::network::http::response::Status;

/// Whether a media type is JSON or unknown: not every client says what it sends. Source: RFC 6839, 3.1.
bool MayBeJson(std::string_view contentType) {
    std::string const type = boost::algorithm::trim_copy(std::string(contentType.substr(0, contentType.find(';'))));
    if (type.empty() || boost::algorithm::iequals(type, "application/json")) return true;
    return boost::algorithm::istarts_with(type, "application/") && boost::algorithm::iends_with(type, "+json");
}

zarn::web::Service::Response Answer(Status status, json::object const& body,
                                    std::map<std::string, std::string> fields = {}) {
    fields.emplace("Content-Type", "application/json");
    return zarn::web::response::MakeComplete(status, std::move(fields), json::serialize(body) + '\n');
}

} // namespace

EventsRoute::EventsRoute(ZarnAuthenticationEngine const& engine, Sink sink) : digest(engine), sink(std::move(sink)) {}

EventsRoute::Response EventsRoute::Post(std::shared_ptr<zarn::web::Request> request) {
    if (auto refusal = digest.Refuse(*request)) return refusal;
    if (!MayBeJson(web::FindField(request->GetFields(), "Content-Type"))) {
        return Answer(Status::UnsupportedMediaType, {{"error", "Content-Type: events come as application/json"}},
                      {{"Accept", "application/json"}});
    }
    try {
        auto const events = ReadEvents(request->GetBody(), std::chrono::system_clock::now());
        for (auto const& event : events) sink(event);
        return Answer(Status::Accepted, {{"taken", events.size()}});
    } catch (ReadError const& error) {
        return Answer(Status::BadRequest, {{"error", error.what()}});
    }
}

} // namespace zarn::host::events
