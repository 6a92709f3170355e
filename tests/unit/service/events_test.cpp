#include <service/onvif/events.h>
#include <service/onvif/soap_context.h>
#include <service/onvif/subscription.h>
#include <zarn/authentication/engine.h>
#include <zarn/meta/data/classification/confidence.h>
#include <zarn/meta/data/event.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>
#include <zarn/onvif/events/handler.h>

#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

namespace zarn::service::onvif {
namespace {

using namespace std::chrono_literals;

/// Heap in use by this process, in bytes.
std::size_t GetMemory() {
    auto const heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

/// The events service in an exchange of its own, without a server.
class ServiceTest : public testing::Test {
protected:
    ServiceTest() {
        engine.SetEnabled(false);
        request.Timeout = "PT0S";
    }

    ~ServiceTest() override { Subscription::End(id); }

    /// Answers a pull whose address has this after "Idx=".
    int Pull(std::string const& text) {
        std::snprintf(context->path, sizeof(context->path), "/Subscription?Idx=%s", text.c_str());
        return service.PullMessages(&request, response);
    }

    ZarnAuthenticationEngine engine;
    std::shared_ptr<soap> const context = MakeSoapContext();
    EventsService service{context.get(), URIBase(80, false), &engine, {}};
    std::int32_t const id =
        Subscription::Create(std::chrono::system_clock::now() + 1h, {"tns1:RuleEngine/LineDetector/Crossed"});
    _tev__PullMessages request;
    _tev__PullMessagesResponse response;
};

/// The id in the address of a request.
class SubscriptionAddress : public ServiceTest {};

TEST_F(SubscriptionAddress, MayHaveBlanksBeforeTheId) { EXPECT_EQ(Pull(" \t" + std::to_string(id)), SOAP_OK); }

/// A client that pulls up to 50,000 messages from a subscription to crossings of lines.
class PullMessagesMemory : public ServiceTest {
protected:
    PullMessagesMemory() {
        request.MessageLimit = 50'000;
        event->Emplace<meta::data::Zone>(meta::data::Zone::Field);
        event->Emplace<meta::data::Object>(3).Emplace<meta::data::classification::Confidence>("person");
    }

    void PublishMany() const {
        for (int i = 0; i < 40'000; ++i) zarn::onvif::events::Publish(event);
    }

    std::shared_ptr<meta::data::Event> const event =
        std::make_shared<meta::data::Event>("presence", "rule", std::chrono::system_clock::now());
};

TEST_F(PullMessagesMemory, IsNotTakenByEventsThatTheFilterHoldsBack) {
    [[maybe_unused]] auto const before = GetMemory();
    PublishMany();
    ASSERT_EQ(Pull(std::to_string(id)), SOAP_OK);
    [[maybe_unused]] auto const after = GetMemory(); // while the exchange lives
    EXPECT_TRUE(response.wsnt__NotificationMessage.empty());
    EXPECT_FALSE(Subscription::Find(id)->HasEvents());
#ifndef ZARN_SANITIZED // sanitizers have a heap of their own
    EXPECT_LT(after, before + 1'000'000);
#endif
}

} // namespace
} // namespace zarn::service::onvif
