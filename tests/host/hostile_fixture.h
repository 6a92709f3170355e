#pragma once

#include "support/heap_count.h"
#include "support/host_process.h"
#include "support/raw_connection.h"
#include "support/resource_use.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zarn::test {

/// What a hostile client sends, and what the host makes of it.
struct Attack {
    std::string name;
    std::string bytes;
    unsigned status; ///< of the answer; `NoAnswer`
};

inline constexpr std::size_t Kilobyte = 1024;
inline constexpr std::size_t Megabyte = 1024 * Kilobyte;

/// A request that needs no login and does not reach the module.
inline std::string const Health = "GET /api/health HTTP/1.1\r\nHost: h\r\n\r\n";

/// The connection ends without an answer.
inline constexpr unsigned NoAnswer = 0;

/// A host under attack. Whatever is done to it, others are served and what it holds does not grow.
class HostileTest : public testing::Test {
protected:
    /// How often attacks are made that take no time of their own.
    static constexpr int UsualRounds = 3;

    /// settings  "PATH=VALUE" of this host
    explicit HostileTest(std::vector<std::string> const& settings = {});

    /// For hosts without authentication: makes a first subscription, which starts what all of them share and what stays
    /// from then on.
    void StartEvents();

    /// Makes each attack on a connection of its own and expects its status, and that a client that comes after it is
    /// served; all of it several times, without growth.
    void ExpectAnswers(std::vector<Attack> const& attacks, int rounds = UsualRounds);

    /// The same, with the attacks side by side: for those that take their time.
    void ExpectAnswersSideBySide(std::vector<Attack> const& attacks);

    /// Expects that what an attack takes is given back, but for a few blocks of the heap, however often it is made.
    /// The first time may leave what is kept on purpose: threads that wait for more, buffers, caches.
    void ExpectNoGrowth(std::function<void()> const& attack, int rounds = UsualRounds);

    /// The same without a look at the memory, and only for one attack: all threads and descriptors are given back once
    /// the module keeps its idle threads no longer.
    void ExpectEverythingGivenBack(std::function<void()> const& attack);

    /// Expects that a well-behaved client is served on a new connection without waiting for others, and that this takes
    /// the host less than a second of processor time.
    /// limit  for the answer; must be far shorter than the time limits of the other clients added up, which a host that
    ///        they hold up waits for
    void ExpectServed(std::chrono::seconds limit = std::chrono::seconds(10)) const;

    ResourceUse GetUse() const { return ReadResourceUse(host.GetProcess().GetId()); }

    RawConnection Connect() const { return RawConnection(host.GetPort()); }

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    HeapCount heap{*folder};
    HostProcess host;
    ResourceUse idle; ///< what the host held before any attack

private:
    /// Waits until the connections that have ended are closed on the other side, too.
    void MeasureIdle();

    void FillCaches();

    /// Waits until the host holds no more than at the beginning, except for threads that wait for work.
    void ExpectDescriptorsAndThreadsBack() const;
};

/// The status of the final answer that a connection brings.
unsigned ReadStatus(RawConnection& connection);

/// A POST to the device service with its Content-Length.
/// fields  further ones, each with its line end
std::string MakePost(std::string_view body, std::string_view fields = "Content-Type: application/soap+xml\r\n",
                     std::string_view target = "/onvif/device_service");

/// `text` that many times.
std::string Repeat(std::string_view text, std::size_t times);

} // namespace zarn::test
