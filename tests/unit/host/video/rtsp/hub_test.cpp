#include "host/video/rtsp/hub.h"
#include "unit/host/video/rtsp/served_stream.h"

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <vector>

namespace zarn::host::video::rtsp {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Remembers what is to be sent.
class Numbers final : public Outlet {
public:
    void Flush() override {
        for (; !track->queue.IsEmpty(); track->queue.RemoveFirst())
            list.push_back(track->queue.GetFirst().unit->number);
    }

    void SendControl(Track const&, std::string) override {}

    Track* track = nullptr;
    std::vector<std::uint64_t> list;
};

class RtspHub : public ServedStreamTest {
protected:
    RtspHub() { numbers.track = &session->SetUp(0, 0, numbers); }

    void Publish(bool isKey, std::size_t size = 10) {
        auto unit = MakeUnit(isKey);
        unit->size = size;
        stream->Publish(std::move(unit));
    }

    void Play() {
        session->Handle({"PLAY", "", "RTSP/1.0", {}, {}}, {"1"}, "");
        session->Proceed();
    }

    std::shared_ptr<Session> session = MakeSession();
    Numbers numbers;
};

TEST_F(RtspHub, WakesItsWorkerForViewersOnly) {
    Publish(true);
    EXPECT_EQ(worker.GetContext().poll(), 0U);
    Play();
    Publish(false);
    Publish(false);
    EXPECT_EQ(worker.GetContext().poll(), 1U) << "once for both";
}

TEST_F(RtspHub, PassesOnInOrder) {
    Play();
    for (bool const isKey : {true, false, false}) Publish(isKey);
    EXPECT_THAT(numbers.list, IsEmpty()) << "the publishing thread must not send";
    RunHandlers();
    EXPECT_THAT(numbers.list, ElementsAre(1, 2, 3));
}

TEST_F(RtspHub, PassesNothingOnToAViewerThatHasLeft) {
    Play();
    Publish(true);
    RunHandlers();
    session->End();
    Publish(false);
    RunHandlers();
    EXPECT_THAT(numbers.list, ElementsAre(1));
}

TEST_F(RtspHub, SkipsToAKeyFrameWhenItsWorkerCannotFollow) {
    Play();
    Publish(true);
    Publish(false, Hub::MaximumWaiting);
    Publish(false);
    Publish(false);
    Publish(true);
    RunHandlers();
    EXPECT_THAT(numbers.list, ElementsAre(5));
}

} // namespace
} // namespace zarn::host::video::rtsp
