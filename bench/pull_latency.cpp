// pull_latency PORT PULLERS ROUNDS: measures event delivery to clients of a zarn-host without authentication. Each
// client has its own connection and subscription. Each round posts one event and measures the time until every client
// has its answer. Prints p50, p99 and maximum in milliseconds. Then waits for a line on standard input while all pulls
// wait, so that the idle host can be inspected.

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using Clock = std::chrono::steady_clock;
using Request = http::request<http::string_body>;
using Response = http::response<http::string_body>;

Request MakeRequest(std::string const& target, std::string const& type, std::string body) {
    Request request(http::verb::post, target, 11);
    request.set(http::field::host, "host");
    request.set(http::field::content_type, type);
    request.body() = std::move(body);
    request.prepare_payload();
    return request;
}

Request MakeSoapRequest(std::string const& target, std::string const& operation) {
    return MakeRequest(target, "application/soap+xml",
                       R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Body>)" + operation +
                           "</s:Body></s:Envelope>");
}

class Connection {
public:
    Connection(asio::io_context& io, unsigned short port) : socket(io) {
        socket.connect({asio::ip::address_v4::loopback(), port});
        socket.set_option(asio::ip::tcp::no_delay(true));
    }

    void Send(Request const& request) { http::write(socket, request); }

    Response Read() {
        Response response;
        http::read(socket, buffer, response);
        if (http::to_status_class(response.result()) != http::status_class::successful)
            throw std::runtime_error("status " + std::to_string(response.result_int()) + ": " + response.body());
        return response;
    }

    Response Exchange(Request const& request) {
        Send(request);
        return Read();
    }

    template <class Handler>
    void ReadLater(Response& response, Handler handler) {
        response = {};
        http::async_read(socket, buffer, response, std::move(handler));
    }

private:
    asio::ip::tcp::socket socket;
    boost::beast::flat_buffer buffer;
};

/// A client that pulls and records the latency of its answers.
class Puller {
public:
    Puller(asio::io_context& io, unsigned short port) : connection(io, port) {
        auto const text = connection
                              .Exchange(MakeSoapRequest(
                                  "/onvif/events_service",
                                  R"(<CreatePullPointSubscription xmlns="http://www.onvif.org/ver10/events/wsdl">)"
                                  "<InitialTerminationTime>PT1H</InitialTerminationTime>"
                                  "</CreatePullPointSubscription>"))
                              .body();
        auto const begin = text.find("/onvif/events_service/");
        pull = MakeSoapRequest(text.substr(begin, text.find('<', begin) - begin),
                               R"(<PullMessages xmlns="http://www.onvif.org/ver10/events/wsdl"><Timeout>PT1H</Timeout>)"
                               "<MessageLimit>10</MessageLimit></PullMessages>");
    }

    void Pull() { connection.Send(pull); }

    void Await(Clock::time_point const& sent, std::vector<double>& taken) {
        connection.ReadLater(response, [this, &sent, &taken](boost::system::error_code error, std::size_t) {
            std::chrono::duration<double, std::milli> const time = Clock::now() - sent;
            if (error || response.body().find("NotificationMessage") == std::string::npos)
                throw std::runtime_error("no event came: " + error.message() + response.body());
            taken.push_back(time.count());
        });
    }

private:
    Connection connection;
    Request pull;
    Response response;
};

void Measure(unsigned short port, int pullers, int rounds) {
    asio::io_context io;
    std::vector<std::unique_ptr<Puller>> all;
    for (int i = 0; i < pullers; ++i) {
        all.push_back(std::make_unique<Puller>(io, port));
        all.back()->Pull();
    }
    Connection source(io, port);
    auto const event = MakeRequest("/api/events", "application/json", R"({"type": "count", "count": 1})");
    std::vector<double> taken;
    Clock::time_point sent;
    asio::steady_timer pause(io);
    for (int i = 0; i < rounds; ++i) {
        pause.expires_after(std::chrono::milliseconds(300)); // until all pulls wait and the host is idle
        pause.wait();
        for (auto const& puller : all) puller->Await(sent, taken);
        sent = Clock::now();
        source.Send(event);
        io.restart();
        io.run();
        source.Read();
        for (auto const& puller : all) puller->Pull();
    }
    std::sort(taken.begin(), taken.end());
    auto const at = [&](double part) { return taken.at(static_cast<std::size_t>(part * double(taken.size() - 1))); };
    if (!taken.empty())
        std::cout << "p50 " << at(0.5) << " ms, p99 " << at(0.99) << " ms, max " << at(1) << " ms" << std::endl;
    std::cout << "waiting" << std::endl;
    std::cin.get();
}

} // namespace

int main(int arguments, char** argument) {
    if (arguments != 4) {
        std::cerr << "usage: pull_latency PORT PULLERS ROUNDS\n";
        return 2;
    }
    try {
        Measure(static_cast<unsigned short>(std::atoi(argument[1])), std::atoi(argument[2]), std::atoi(argument[3]));
    } catch (std::exception const& error) {
        std::cerr << "pull_latency: " << error.what() << '\n';
        return 1;
    }
}
