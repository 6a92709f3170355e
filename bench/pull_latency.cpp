// pull_latency PORT PULLERS ROUNDS: measures event delivery to clients of a zarn-host without authentication. Each
// client has its own connection and subscription. Each round posts one event and measures the time until every client
// has its answer. Prints a line of JSON: of all answers of all rounds the 50th and 99th percentile, and the median of
// the rounds' last answers, in milliseconds; the size of an answer in bytes; the processor time that the clients took
// for an answer, in microseconds. Then prints "waiting" and waits for the end of standard input while all pulls wait,
// so that the host can be inspected.

#include "http_client.h"
#include "operations.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using namespace zarn::bench;
namespace asio = boost::asio;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int MostPullers = 15'000;

/// Runs a coroutine, and everything that is already waiting in the context, to its end.
void Complete(asio::io_context& io, asio::awaitable<void> task) {
    asio::co_spawn(io, std::move(task), Rethrow);
    RunToEnd(io);
}

/// A client that pulls and records the latency of its answers.
class Puller {
public:
    Puller(asio::io_context& io, unsigned short port) : connection(io, port) {}

    asio::awaitable<void> Subscribe() {
        pull = MakeSoapRequest(ReadSubscription(co_await connection.Exchange(MakeSubscription())), PullMessages);
    }

    asio::awaitable<void> Pull() { co_await connection.Send(pull); }

    /// sent    when the event was posted
    /// taken   receives the time until the answer in milliseconds
    /// answer  receives its size in bytes
    asio::awaitable<void> Await(Clock::time_point const& sent, std::vector<double>& taken, std::size_t& answer) {
        auto const body = co_await connection.Read();
        taken.push_back(Milliseconds(Clock::now() - sent).count());
        if (body.find("NotificationMessage") == body.npos) throw std::runtime_error("no event: " + std::string(body));
        answer = body.size();
    }

private:
    HttpConnection connection;
    std::string pull;
};

/// Of this process, in seconds.
double GetProcessorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// The value below which the given part of the sorted values lies.
double At(std::vector<double> const& sorted, double part) {
    return sorted.empty() ? 0 : sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

void Measure(unsigned short port, int pullers, int rounds) {
    asio::io_context io;
    std::vector<std::unique_ptr<Puller>> all;
    for (int i = 0; i < pullers; ++i) {
        all.push_back(std::make_unique<Puller>(io, port));
        Complete(io, all.back()->Subscribe());
        Complete(io, all.back()->Pull());
    }
    HttpConnection source(io, port);
    auto const event = MakeRequest("/api/events", "application/json", R"({"type": "count", "count": 1})");
    std::vector<double> taken;
    std::vector<double> last;
    std::size_t answer = 0;
    Clock::time_point sent;
    double used = 0; // by the clients while they receive, in seconds
    for (int i = 0; i < rounds; ++i) {
        // Until all pulls wait and the host is idle; it shows no client when that is so.
        std::this_thread::sleep_for(std::chrono::milliseconds(300 + pullers / 5));
        for (auto const& puller : all) asio::co_spawn(io, puller->Await(sent, taken, answer), Rethrow);
        io.restart();
        io.poll(); // every client reads before the event is posted
        auto const before = GetProcessorTime();
        sent = Clock::now();
        Complete(io, [&]() -> asio::awaitable<void> { co_await source.Exchange(event); }());
        used += GetProcessorTime() - before;
        last.push_back(taken.back());
        for (auto const& puller : all) Complete(io, puller->Pull());
    }
    std::ranges::sort(taken);
    std::ranges::sort(last);
    std::cout << R"({"p50": )" << At(taken, 0.5) << R"(, "p99": )" << At(taken, 0.99) << R"(, "last": )"
              << At(last, 0.5) << R"(, "answer": )" << answer << R"(, "client": )"
              << used / static_cast<double>(taken.size()) * 1e6 << "}\nwaiting" << std::endl;
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
}

} // namespace

int main(int arguments, char** argument) {
    int const pullers = arguments == 4 ? std::atoi(argument[2]) : 0;
    if (pullers < 1 || pullers > MostPullers) {
        std::cerr << "usage: pull_latency PORT PULLERS ROUNDS; at most " << MostPullers << " pullers\n";
        return 2;
    }
    try {
        RaiseDescriptorLimit();
        Measure(static_cast<unsigned short>(std::atoi(argument[1])), pullers, std::atoi(argument[3]));
    } catch (std::exception const& error) {
        std::cerr << "pull_latency: " << error.what() << '\n';
        return 1;
    }
}
