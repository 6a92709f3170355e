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

/// Bytes sent by a hostile client and the host's expected reaction.
struct Attack {
    std::string name;
    std::string bytes;
    unsigned status; ///< of the answer; `NoAnswer`
};

inline constexpr std::size_t Kilobyte = 1024;
inline constexpr std::size_t Megabyte = 1024 * Kilobyte;

/// A request that needs no login and bypasses the module.
inline std::string const Health = "GET /api/health HTTP/1.1\r\nHost: h\r\n\r\n";

/// The connection ends without a response.
inline constexpr unsigned NoAnswer = 0;

/// A host under attack that must keep serving other clients without using more resources.
class HostileTest : public testing::Test {
protected:
    /// Rounds for attacks that complete immediately.
    static constexpr int UsualRounds = 3;

    /// settings  "PATH=VALUE" of this host
    explicit HostileTest(std::vector<std::string> const& settings = {});

    /// For hosts without authentication: creates a first subscription, which initialises the shared event state that
    /// remains in place.
    void StartEvents();

    /// Runs each attack on its own connection. Expects its status, and that a later client is served. Repeats all
    /// attacks and expects no growth.
    void ExpectAnswers(std::vector<Attack> const& attacks, int rounds = UsualRounds);

    /// The same with all attacks in parallel, for those that take long.
    void ExpectAnswersSideBySide(std::vector<Attack> const& attacks);

    /// Expects that repeated attacks leave no resources behind except a few heap blocks. The first round may create
    /// what is kept on purpose: idle threads, buffers, caches.
    void ExpectNoGrowth(std::function<void()> const& attack, int rounds = UsualRounds);

    /// Checks threads and descriptors but not memory, and runs the attack once. Waits until the module has ended its
    /// idle threads.
    void ExpectEverythingGivenBack(std::function<void()> const& attack);

    /// Expects that a well-behaved client is served promptly on a new connection, with less than a second of the host's
    /// processor time.
    /// limit  time for the answer; must be far shorter than the sum of the other clients' time limits, so that a host
    ///        that waits for them fails
    void ExpectServed(std::chrono::seconds limit = std::chrono::seconds(10)) const;

    ResourceUse GetUse() const { return ReadResourceUse(host.GetProcess().GetId()); }

    RawConnection Connect() const { return RawConnection(host.GetPort()); }

    std::shared_ptr<TemporaryFolder> folder = std::make_shared<TemporaryFolder>();
    HeapCount heap{*folder};
    HostProcess host;
    ResourceUse idle; ///< use before any attack

private:
    /// Waits until the server side of ended connections is closed, then measures.
    void MeasureIdle();

    void FillCaches();

    /// Waits until descriptors and threads are back to the initial values, except for idle threads.
    void ExpectDescriptorsAndThreadsBack() const;
};

/// The status of the final response on a connection.
unsigned ReadStatus(RawConnection& connection);

/// A POST to the device service with its Content-Length.
/// fields  additional fields, each with its line end
std::string MakePost(std::string_view body, std::string_view fields = "Content-Type: application/soap+xml\r\n",
                     std::string_view target = "/onvif/device_service");

/// `text` repeated `times` times.
std::string Repeat(std::string_view text, std::size_t times);

} // namespace zarn::test
