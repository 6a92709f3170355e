#include "host/routes/events_route.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

#include <chrono>
#include <exception>
#include <future>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::host::routes {
namespace {

using namespace std::chrono_literals;
namespace json = boost::json;
using zarn::web::response::Pending;
using Status = protocol::network::http::response::Status;

/// Whether a media type is JSON, or missing, as some clients send none. Source: RFC 6839, 3.1.
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

Pending::Data GetData(std::shared_future<zarn::web::Service::Response> const& answer) {
    if (answer.wait_for(0ms) == std::future_status::ready) return answer.get()->GetData();
    return {Status::Provisional, {}, {zarn::web::response::State::NotReady, {}}};
}

} // namespace

EventsRoute::EventsRoute(web::Digest digest, events::EventSink sink) : digest(digest), sink(std::move(sink)) {}

EventsRoute::Response EventsRoute::Post(std::shared_ptr<zarn::web::Request> request) {
    if (auto refusal = digest.Refuse(*request)) return refusal;
    if (!MayBeJson(request->FindField("Content-Type"))) {
        return Answer(Status::UnsupportedMediaType, {{"error", "Content-Type: events come as application/json"}},
                      {{"Accept", "application/json"}});
    }
    auto const answer = std::make_shared<std::promise<Response>>();
    auto const future = answer->get_future().share();
    boost::asio::post(readers.Get(), [this, answer, request = std::move(request)] {
        try {
            answer->set_value(Deliver(*request));
        } catch (...) {
            answer->set_exception(std::current_exception());
        }
    });
    return std::make_shared<Pending>(
        Status::Provisional, [future] { return GetData(future); }, 0ms);
}

EventsRoute::Response EventsRoute::Deliver(zarn::web::Request const& request) const {
    try {
        return Answer(Status::Accepted, {{"taken", events::DeliverEvents(request.GetBody(), sink)}});
    } catch (events::ReadError const& error) {
        return Answer(Status::BadRequest, {{"error", error.what()}});
    }
}

} // namespace zarn::host::routes
