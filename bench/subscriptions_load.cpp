// subscriptions_load PORT COUNT CONNECTIONS: creates, renews and ends subscriptions at a zarn-host without
// authentication. Prints for each of the three a line of JSON: the rate per second. After each line it waits for a line
// on standard input, so that the host can be inspected.

#include "http_client.h"
#include "operations.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace zarn::bench;
namespace asio = boost::asio;

constexpr int MostSubscriptions = 1'000'000;
constexpr int MostConnections = 1000;

using Connections = std::vector<std::unique_ptr<HttpConnection>>;

/// Makes the request for a subscription and takes the response to it.
struct Step {
    std::string_view name;
    std::function<std::string(std::size_t)> request;
    std::function<void(std::size_t, std::string_view)> take;
};

/// Does a step for every subscription, on all connections at once.
void Run(asio::io_context& io, Connections const& connections, std::size_t count, Step const& step) {
    std::size_t next = 0;
    auto const work = [&](HttpConnection& connection) -> asio::awaitable<void> {
        while (next < count) {
            auto const index = next++;
            auto const request = step.request(index);
            step.take(index, co_await connection.Exchange(request));
        }
    };
    auto const begin = std::chrono::steady_clock::now();
    for (auto const& connection : connections) asio::co_spawn(io, work(*connection), Rethrow);
    RunToEnd(io);
    std::chrono::duration<double> const seconds = std::chrono::steady_clock::now() - begin;
    std::cout << R"({"step": ")" << step.name << R"(", "rate": )" << static_cast<double>(count) / seconds.count() << "}"
              << std::endl;
    std::string line;
    std::getline(std::cin, line);
}

void Measure(unsigned short port, std::size_t count, int connectionCount) {
    asio::io_context io;
    Connections connections;
    for (int i = 0; i < connectionCount; ++i) connections.push_back(std::make_unique<HttpConnection>(io, port));
    std::vector<std::string> paths(count);
    auto create = MakeSubscription();
    auto const ignore = [](std::size_t, std::string_view) {};
    Run(io, connections, count,
        {"create", [&](std::size_t) { return create; },
         [&](std::size_t index, std::string_view response) { paths[index] = ReadSubscription(response); }});
    Run(io, connections, count,
        {"renew",
         [&](std::size_t index) {
             return MakeSoapRequest(paths[index], R"(<Renew xmlns="http://docs.oasis-open.org/wsn/b-2">)"
                                                  "<TerminationTime>PT1H</TerminationTime></Renew>");
         },
         ignore});
    Run(io, connections, count,
        {"end", [&](std::size_t index) { return MakeSoapRequest(paths[index], Unsubscribe); }, ignore});
}

} // namespace

int main(int arguments, char** argument) {
    int const count = arguments == 4 ? std::atoi(argument[2]) : 0;
    int const connections = arguments == 4 ? std::atoi(argument[3]) : 0;
    if (count < 1 || count > MostSubscriptions || connections < 1 || connections > MostConnections) {
        std::cerr << "usage: subscriptions_load PORT COUNT CONNECTIONS; at most " << MostSubscriptions
                  << " subscriptions and " << MostConnections << " connections\n";
        return 2;
    }
    try {
        RaiseDescriptorLimit();
        Measure(static_cast<unsigned short>(std::atoi(argument[1])), static_cast<std::size_t>(count), connections);
    } catch (std::exception const& error) {
        std::cerr << "subscriptions_load: " << error.what() << '\n';
        return 1;
    }
}
