#include "host/routes/events_route.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::host::routes {
namespace {

namespace json = boost::json;
using web::Status;

/// Whether a media type is JSON, or missing, as some clients send none. Source: RFC 6839, 3.1.
bool MayBeJson(std::string_view contentType) {
    std::string const type = boost::algorithm::trim_copy(std::string(contentType.substr(0, contentType.find(';'))));
    if (type.empty() || boost::algorithm::iequals(type, "application/json")) return true;
    return boost::algorithm::istarts_with(type, "application/") && boost::algorithm::iends_with(type, "+json");
}

web::Reply MakeReply(Status status, json::object const& body, std::map<std::string, std::string> fields = {}) {
    fields.emplace("Content-Type", "application/json");
    auto text = std::make_shared<container::Buffer>(json::serialize(body) + '\n');
    return {status, std::move(fields), {zarn::web::response::State::Complete, {std::move(text)}}};
}

} // namespace

EventsRoute::EventsRoute(web::Digest digest, events::EventSink sink)
    : Handler({Method::Post}), digest(digest), sink(std::move(sink)) {}

void EventsRoute::Serve(RequestPtr request, Done done) {
    if (auto refusal = digest.Refuse(*request)) return done(*std::move(refusal));
    if (!MayBeJson(request->FindField("Content-Type"))) {
        return done(MakeReply(Status::UnsupportedMediaType,
                              {{"error", "Content-Type: events come as application/json"}},
                              {{"Accept", "application/json"}}));
    }
    boost::asio::post(readers.Get(), [this, request = std::move(request), done = std::move(done)] {
        web::Deliver(done, [&] { return Take(*request); });
    });
}

web::Reply EventsRoute::Take(zarn::web::Request const& request) const {
    try {
        return MakeReply(Status::Accepted, {{"taken", events::DeliverEvents(request.GetBody(), sink)}});
    } catch (events::ReadError const& error) {
        return MakeReply(Status::BadRequest, {{"error", error.what()}});
    }
}

} // namespace zarn::host::routes
