#include "support/host_process.h"
#include "support/operation_element.h"

#include <zarn/authentication/digest.h>
#include <zarn/authentication/ha1.h>
#include <zarn/authentication/realm.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <numeric>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace zarn::test {
namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;

constexpr unsigned Connections = 64;
constexpr std::chrono::seconds Duration(ZARN_LOAD_SECONDS);

/// Minimum number of requests per connection, even on a slow machine.
constexpr unsigned LeastRounds = 10;

/// Which part of an answer is the same for every client.
enum class Same {
    Content, ///< everything except the clock
    Element, ///< only the body's element; the rest differs
};

/// Target of a request.
enum class To {
    Service,
    Shared, ///< the subscription shared by all connections
    Own,    ///< the subscription last created on this connection
};

/// A request that all connections make.
struct Exchange {
    std::string element;   ///< of the body
    unsigned status = 200; ///< of the expected answer
    Same same = Same::Content;
    To to = To::Service;
};

/// Those that differ from what MakeExchanges makes of the table, by the start of their elements.
std::vector<Exchange> const Exceptions{
    {"<tds:GetServices><tds:IncludeCapability>true</tds:IncludeCapability></tds:GetServices>"},
    {"<tds:SetUser/>", 400},
    {"<tr2:GetProfiles><tr2:Type>All</tr2:Type></tr2:GetProfiles>"},
    // Subscriptions that are not ended explicitly expire after a second.
    {"<tev:CreatePullPointSubscription><tev:InitialTerminationTime>PT1S</tev:InitialTerminationTime>"
     "</tev:CreatePullPointSubscription>",
     200, Same::Element},
    {"<tev:PullMessages><tev:Timeout>PT0S</tev:Timeout><tev:MessageLimit>1</tev:MessageLimit></tev:PullMessages>", 200,
     Same::Element, To::Shared},
    {"<wsnt:Renew><wsnt:TerminationTime>PT1H</wsnt:TerminationTime></wsnt:Renew>", 200, Same::Element, To::Shared},
    {"<wsnt:Unsubscribe/>", 200, Same::Content, To::Own},
};

/// One for every served operation, and some that are refused.
std::vector<Exchange> MakeExchanges() {
    std::vector<Exchange> exchanges{
        {"<tds:GetDNS/>", 500},
        {"<tds:NoSuchOperation/>", 400},
        {"<trt:GetProfile><trt:ProfileToken>channels.9</trt:ProfileToken></trt:GetProfile>", 400},
    };
    for (auto const& operation : bindings::Operations) {
        if (!operation.IsServed()) continue;
        auto const name = "<" + std::string(operation.prefix) + ":" + std::string(operation.name);
        auto const exception = std::ranges::find_if(Exceptions, [&](Exchange const& exchange) {
            return exchange.element.starts_with(name + "/") || exchange.element.starts_with(name + ">");
        });
        exchanges.push_back(exception == Exceptions.end() ? Exchange{MakeElement(operation)} : *exception);
    }
    return exchanges;
}

std::string MakeBody(std::string const& element) {
    return R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
           R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl" xmlns:trt="http://www.onvif.org/ver10/media/wsdl")"
           R"( xmlns:tr2="http://www.onvif.org/ver20/media/wsdl" xmlns:tev="http://www.onvif.org/ver10/events/wsdl")"
           R"( xmlns:tan="http://www.onvif.org/ver20/analytics/wsdl")"
           R"( xmlns:wsnt="http://docs.oasis-open.org/wsn/b-2"><s:Body>)" +
           element + "</s:Body></s:Envelope>";
}

/// The path and query of the subscription in an answer; empty when there is none.
std::string FindSubscription(std::string const& body) {
    static std::regex const address("Address>http://[^/<]+(/onvif/events_service/[^<]+)<");
    std::smatch match;
    return std::regex_search(body, match, address) ? match[1].str() : "";
}

/// A client with one persistent connection and valid credentials.
class Client {
public:
    /// shared  the subscription shared by all connections
    Client(HostProcess const& host, std::string const& shared)
        : targets{{To::Service, "/onvif/device_service"},
                  {To::Shared, shared},
                  {To::Own, "/onvif/events_service/Subscription?Idx=2147483647"}}, // not assigned yet
          ha1(authentication::MakeHa1("admin", authentication::Realm, host.GetPassword())) {
        stream.expires_after(Duration + std::chrono::seconds(60));
        stream.connect({asio::ip::make_address("127.0.0.1"), host.GetPort()});
    }

    http::response<http::string_body> Ask(Exchange const& exchange) {
        auto response = Send(exchange);
        if (response.result() == http::status::unauthorized && nonce.empty()) {
            std::string const challenge = response[http::field::www_authenticate];
            std::smatch match;
            if (std::regex_search(challenge, match, std::regex("nonce=\"([^\"]*)\""))) nonce = match[1];
            response = Send(exchange);
        }
        if (auto const created = FindSubscription(response.body()); !created.empty()) targets[To::Own] = created;
        return response;
    }

    std::string const& GetOwnSubscription() const { return targets.at(To::Own); }

private:
    http::response<http::string_body> Send(Exchange const& exchange) {
        auto const& target = targets.at(exchange.to);
        http::request<http::string_body> request(http::verb::post, target, 11, MakeBody(exchange.element));
        request.set(http::field::host, "127.0.0.1");
        request.set(http::field::content_type, "application/soap+xml; charset=utf-8");
        if (!nonce.empty()) request.set(http::field::authorization, Authorize(target));
        request.prepare_payload();
        http::write(stream, request);
        http::response<http::string_body> response;
        http::read(stream, buffer, response);
        return response;
    }

    std::string Authorize(std::string const& target) {
        std::array<char, 9> count{};
        std::snprintf(count.data(), count.size(), "%08x", ++nc);
        auto const response = authentication::MakeDigestResponse({.ha1 = ha1,
                                                                  .method = "POST",
                                                                  .uri = target,
                                                                  .nonce = nonce,
                                                                  .nc = count.data(),
                                                                  .cnonce = "0a4f113b",
                                                                  .qop = "auth"});
        return "Digest username=\"admin\", realm=\"" + std::string(authentication::Realm) + "\", nonce=\"" + nonce +
               "\", uri=\"" + target + "\", qop=auth, nc=" + count.data() + ", cnonce=\"0a4f113b\", response=\"" +
               response + "\"";
    }

    std::map<To, std::string> targets;
    std::string ha1;
    std::string nonce;
    unsigned nc = 0;
    asio::io_context context;
    boost::beast::tcp_stream stream{context};
    boost::beast::flat_buffer buffer;
};

/// Reduces an answer to the part that must be the same for every client.
std::string Reduce(Exchange const& exchange, std::string const& body) {
    static std::regex const element("Body>\\s*<([^ />]+)");
    static std::regex const clock("<tt:UTCDateTime>.*</tt:UTCDateTime>");
    if (exchange.same == Same::Content) return std::regex_replace(body, clock, "");
    std::smatch match;
    return std::regex_search(body, match, element) ? match[1].str() : body;
}

TEST(Load, SixtyFourConnectionsGetCorrectResponsesToMixedOperations) {
    HostProcess host;
    Client creator(host, "");
    creator.Ask({"<tev:CreatePullPointSubscription><tev:InitialTerminationTime>PT1H</tev:InitialTerminationTime>"
                 "</tev:CreatePullPointSubscription>",
                 200});
    auto const shared = creator.GetOwnSubscription();
    auto const exchanges = MakeExchanges();
    // From one exchange of a connection to its next: with no divisor in common it comes to all of them.
    unsigned stride = 7;
    while (std::gcd(exchanges.size(), stride) != 1) ++stride;
    std::vector<std::string> right;
    Client first(host, shared);
    for (auto const& exchange : exchanges) {
        auto const response = first.Ask(exchange);
        ASSERT_EQ(response.result_int(), exchange.status) << exchange.element << response.body();
        right.push_back(Reduce(exchange, response.body()));
    }

    std::atomic<unsigned> answers = 0;
    std::mutex mutex;
    std::vector<std::string> wrong;
    auto const end = std::chrono::steady_clock::now() + Duration;
    auto const run = [&](unsigned seed) {
        try {
            Client client(host, shared);
            for (unsigned round = 0; round <= LeastRounds || std::chrono::steady_clock::now() < end; ++round) {
                auto const i = seed + round * stride;
                auto const& exchange = exchanges[i % exchanges.size()];
                auto const response = client.Ask(exchange);
                ++answers;
                if (response.result_int() == exchange.status &&
                    Reduce(exchange, response.body()) == right[i % exchanges.size()])
                    continue;
                std::lock_guard const lock(mutex);
                wrong.push_back(exchange.element + std::to_string(response.result_int()) + response.body());
            }
        } catch (std::exception const& error) {
            std::lock_guard const lock(mutex);
            wrong.emplace_back(error.what());
        }
    };
    {
        std::vector<std::jthread> clients;
        for (unsigned i = 0; i < Connections; ++i) clients.emplace_back(run, i);
    }
    EXPECT_TRUE(wrong.empty()) << wrong.size() << " wrong, the first: " << wrong.front();
    EXPECT_GT(answers, Connections * LeastRounds);
    EXPECT_EQ(host.Stop(), 0) << "a sanitizer report changes the exit status:\n" << host.GetProcess().GetLog();
}

} // namespace
} // namespace zarn::test
