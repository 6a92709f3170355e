#include "host/web/connection.h"

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <vector>

namespace zarn::host::web {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Clock = Connection::Clock;

constexpr Clock::time_point Start{};

/// A connection without a client.
class Idle final : public Connection {
public:
    explicit Idle(LivingConnections& living, Clock::time_point due = Clock::time_point::max()) : living(living) {
        deadline = due;
    }

    ~Idle() override { living.Remove(*this); }

    void Start() override { living.Add(*this); }

    void CheckDeadline() override {}

    void Finish() override {}

    void Close() override {}

private:
    LivingConnections& living;
};

std::shared_ptr<Connection> Make(LivingConnections& living, Clock::time_point due = Clock::time_point::max()) {
    auto connection = std::make_shared<Idle>(living, due);
    connection->Start();
    return connection;
}

TEST(LivingConnections, AreListedUntilTheyAreDestroyed) {
    LivingConnections living;
    auto const first = Make(living);
    auto second = Make(living);
    EXPECT_THAT(living.GetAll(), UnorderedElementsAre(first, second));
    second.reset();
    EXPECT_THAT(living.GetAll(), ElementsAre(first));
}

TEST(LivingConnections, AreOverdueFromTheirDeadlineOn) {
    LivingConnections living;
    auto const early = Make(living, Start + 1s);
    auto const late = Make(living, Start + 2s);
    auto const never = Make(living);
    EXPECT_THAT(living.GetOverdue(Start), IsEmpty());
    EXPECT_THAT(living.GetOverdue(Start + 1s), ElementsAre(early));
    EXPECT_THAT(living.GetOverdue(Start + 2s), UnorderedElementsAre(early, late));
}

TEST(LivingConnections, StayAliveWhileAListHoldsThem) {
    LivingConnections living;
    auto connection = Make(living);
    std::weak_ptr<Connection> const alive = connection;
    auto list = living.GetAll();
    connection.reset();
    EXPECT_FALSE(alive.expired());
    list.clear(); // which removes the connection
    EXPECT_TRUE(alive.expired());
    EXPECT_THAT(living.GetAll(), IsEmpty());
}

/// A connection that asks for the list while it is destroyed, as another thread may.
TEST(LivingConnections, AreNotListedOnceTheirDestructionHasBegun) {
    struct Dying final : Connection {
        explicit Dying(LivingConnections& living, bool& wasListed) : living(living), wasListed(wasListed) {}

        ~Dying() override {
            wasListed = !living.GetAll().empty();
            living.Remove(*this);
        }

        void Start() override { living.Add(*this); }

        void CheckDeadline() override {}

        void Finish() override {}

        void Close() override {}

        LivingConnections& living;
        bool& wasListed;
    };

    LivingConnections living;
    bool wasListed = true;
    std::make_shared<Dying>(living, wasListed)->Start();
    EXPECT_FALSE(wasListed);
}

} // namespace
} // namespace zarn::host::web
