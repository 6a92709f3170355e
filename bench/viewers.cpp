// viewers PORT VIEWERS SECONDS RATE PATH...: plays streams of an RTSP server on this machine over TCP, each path by the
// same number of viewers, and measures how regularly the pictures arrive. The environment variable ZARN_HOST_PASSWORD
// holds the password of "admin" for servers that ask for a login.
//   RATE  of the streams, in pictures per second
// When all viewers have played for two seconds it prints "watching", after SECONDS a line of JSON:
//   pictures, bytes, lost  in all, in the seconds of the window: pictures, bytes of RTP, missing packets
//   p50, p99, max          gap between two pictures of a viewer, in milliseconds
//   stuttered              viewers with a gap of more than two picture intervals
//   joining                longest gap while further viewers joined, in milliseconds
//   firstP50, firstMax     from connecting to the first picture, in milliseconds
// Exits with status 1 when a viewer fails.

#include "http_client.h"
#include "rtsp_viewer.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <future>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace zarn::bench;
using namespace std::chrono_literals;
namespace asio = boost::asio;

constexpr int MostViewers = 5000;
constexpr auto Stagger = 4ms;      ///< between the starts of two viewers
constexpr auto SettleTime = 2s;    ///< from the last first picture to the window
constexpr auto LongestStart = 60s; ///< until all viewers have a picture

/// Viewers that share a thread.
class Group {
public:
    Group() : work(asio::make_work_guard(io)), thread([this] { io.run(); }) {}

    ~Group() {
        io.stop();
        thread.join();
    }

    Group(Group const&) = delete;
    Group& operator=(Group const&) = delete;

    void Add(unsigned short port, std::string const& path, std::string const& password) {
        Do([&] {
            auto& viewer = *viewers.emplace_back(std::make_unique<RtspViewer>(io, port, path, password));
            asio::co_spawn(io, viewer.Play(), [this](std::exception_ptr const& error) { failures.push_back(error); });
        });
    }

    /// Rethrows the first failure of a viewer; returns how many have no picture yet.
    std::ptrdiff_t CountWaiting() {
        std::ptrdiff_t count = 0;
        Do([&] {
            if (!failures.empty()) std::rethrow_exception(failures.front());
            count =
                std::ranges::count_if(viewers, [](auto const& each) { return each->GetArrivals().GetCount() == 0; });
        });
        return count;
    }

    /// Calls a function with each viewer, on the group's thread.
    template <class Function>
    void ForEach(Function const& function) {
        Do([&] {
            for (auto const& viewer : viewers) function(*viewer);
        });
    }

private:
    template <class Function>
    void Do(Function const& function) {
        std::promise<void> done;
        asio::post(io, [&] {
            try {
                function();
                done.set_value();
            } catch (...) {
                done.set_exception(std::current_exception());
            }
        });
        done.get_future().get();
    }

    asio::io_context io{1};
    asio::executor_work_guard<asio::io_context::executor_type> work;
    std::vector<std::unique_ptr<RtspViewer>> viewers;
    std::vector<std::exception_ptr> failures;
    std::thread thread;
};

/// The value below which the given part of the values lies; sorts them.
float At(std::vector<float>& values, float part) {
    if (values.empty()) return 0;
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(part * static_cast<float>(values.size() - 1))];
}

struct Plan {
    unsigned short port;
    int viewers;
    std::chrono::seconds time;
    float rate; ///< pictures per second
    std::vector<std::string> paths;
};

struct Totals {
    std::size_t pictures = 0;
    std::size_t bytes = 0;
    std::size_t lost = 0;
};

class Audience {
public:
    explicit Audience(Plan const& plan) : plan(plan) {
        char const* const password = std::getenv("ZARN_HOST_PASSWORD");
        for (std::size_t i = 0; i < static_cast<std::size_t>(plan.viewers); ++i) {
            groups[i % groups.size()].Add(plan.port, plan.paths[i % plan.paths.size()], password ? password : "");
            std::this_thread::sleep_for(Stagger);
        }
        auto const deadline = Arrivals::Clock::now() + LongestStart;
        while (auto const waiting = CountWaiting()) {
            if (Arrivals::Clock::now() > deadline)
                throw std::runtime_error(std::to_string(waiting) + " viewers got no picture in time");
            std::this_thread::sleep_for(100ms);
        }
        std::this_thread::sleep_for(SettleTime);
    }

    void Watch() {
        auto const before = Sum();
        for (auto& group : groups) group.ForEach([](RtspViewer& viewer) { viewer.GetArrivals().BeginWindow(); });
        std::cout << "watching" << std::endl;
        std::this_thread::sleep_for(plan.time);
        CountWaiting(); // throws when one failed
        auto const after = Sum();
        Print({after.pictures - before.pictures, after.bytes - before.bytes, after.lost - before.lost});
    }

private:
    std::ptrdiff_t CountWaiting() {
        std::ptrdiff_t count = 0;
        for (auto& group : groups) count += group.CountWaiting();
        return count;
    }

    Totals Sum() {
        Totals sum;
        for (auto& group : groups) {
            group.ForEach([&](RtspViewer const& viewer) {
                sum.pictures += viewer.GetArrivals().GetCount();
                sum.bytes += viewer.GetBytes();
                sum.lost += viewer.GetLost();
            });
        }
        return sum;
    }

    void Print(Totals const& totals) {
        std::vector<float> gaps;
        std::vector<float> longest; // of each viewer
        std::vector<float> joining;
        std::vector<float> first;
        for (auto& group : groups) {
            group.ForEach([&](RtspViewer const& viewer) {
                auto const& arrivals = viewer.GetArrivals();
                auto const& own = arrivals.GetGaps();
                gaps.insert(gaps.end(), own.begin(), own.end());
                auto const open = arrivals.GetOpenGap(Arrivals::Clock::now()).count();
                longest.push_back(own.empty() ? open : std::max(open, *std::ranges::max_element(own)));
                joining.push_back(arrivals.GetJoiningGap().count());
                first.push_back(arrivals.GetTimeToFirst().count());
            });
        }
        auto const stuttered = std::ranges::count_if(longest, [&](float gap) { return gap * plan.rate > 2; });
        std::cout << R"({"pictures": )" << totals.pictures << R"(, "bytes": )" << totals.bytes << R"(, "lost": )"
                  << totals.lost << R"(, "p50": )" << At(gaps, 0.5F) * 1000 << R"(, "p99": )" << At(gaps, 0.99F) * 1000
                  << R"(, "max": )" << At(longest, 1) * 1000 << R"(, "stuttered": )" << stuttered << R"(, "joining": )"
                  << At(joining, 1) * 1000 << R"(, "firstP50": )" << At(first, 0.5F) * 1000 << R"(, "firstMax": )"
                  << At(first, 1) * 1000 << "}" << std::endl;
    }

    Plan const& plan;
    std::array<Group, 2> groups;
};

} // namespace

int main(int arguments, char** argument) {
    Plan plan{};
    if (arguments > 5) {
        plan = {static_cast<unsigned short>(std::atoi(argument[1])),
                std::atoi(argument[2]),
                std::chrono::seconds(std::atoi(argument[3])),
                static_cast<float>(std::atof(argument[4])),
                {argument + 5, argument + arguments}};
    }
    if (plan.viewers < 1 || plan.viewers > MostViewers || plan.time < 1s || plan.rate <= 0) {
        std::cerr << "usage: viewers PORT VIEWERS SECONDS RATE PATH...; at most " << MostViewers << " viewers\n";
        return 2;
    }
    try {
        RaiseDescriptorLimit();
        Audience(plan).Watch();
    } catch (std::exception const& error) {
        std::cerr << "viewers: " << error.what() << '\n';
        return 1;
    }
}
