#pragma once

#include "service.h"
#include "uri_base.h"

#include <zarn/asio/global_context.h>
#include <zarn/onvif/events/subscription_gauge.h>
#include <zarn/type/binding.h>

#include <boost/asio/system_timer.hpp>
#include <soapPullPointSubscriptionBindingService.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace zarn::meta::data {
class Event;
}

namespace zarn::service::onvif {

/// The ONVIF Events service (ver10/events/wsdl), pull points only. The subscriptions are those of the process.
class EventsService final : public Service<PullPointSubscriptionBindingService>, private URIBase {
public:
    /// The first one registers for the host's events, for as long as the library is there.
    EventsService(struct soap* soap, URIBase uriBase, ZarnAuthenticationEngine const* engine);

    /// The capabilities of this service, allocated in the context; null without memory.
    static tev__Capabilities* MakeServiceCapabilities(struct soap* soap);

    /// Has every waiting PullMessages look again whether its exchange is to end (IsEnding). Thread: any.
    static void WakeWaiting();

    ZARN_EVENTS_OPERATIONS(ZARN_DECLARE)

private:
    using Time = std::chrono::system_clock::time_point;

    /// What a client wants; empty: all.
    using Topics = std::set<std::string, std::less<>>;

    struct Subscription {
        explicit Subscription(std::int32_t id) : gauge(id) {}

        void Push(std::shared_ptr<meta::data::Event> const& event);
        std::shared_ptr<meta::data::Event> Pop();

        zarn::onvif::events::SubscriptionGauge gauge;
        asio::GlobalContext context;                           ///< keeps the timer's thread
        boost::asio::system_timer timer{context.Get()};        ///< its expiry is the termination time
        std::deque<std::shared_ptr<meta::data::Event>> events; ///< in the order of arrival
        std::shared_ptr<Topics const> topics;                  ///< shared with those who pull
    };

    /// Ends the registration and the subscriptions when the library goes, before the state below does.
    struct Ending;

    static void RegisterForEvents();
    static void Queue(std::shared_ptr<meta::data::Event> const& event);
    static std::int32_t GetNextSubscriptionId();
    static std::shared_ptr<Topics const> ReadTopics(wsnt__FilterType const* filter);
    static Subscription* Find(std::int32_t id);
    static void StartTimer(std::int32_t id, Subscription& subscription, Time termination);
    static void Expire(std::int32_t id, Time termination);

    using Service::Prepare;
    void Prepare(_tev__CreatePullPointSubscriptionResponse const&);
    void Prepare(_tev__PullMessagesResponse const&);
    void SetActionHeader(char const* uri);
    bool WaitForEvents(std::unique_lock<std::mutex>& lock, std::int32_t id,
                       std::chrono::steady_clock::time_point deadline);
    bool Append(std::shared_ptr<meta::data::Event> const& event, Topics const& topics,
                std::vector<wsnt__NotificationMessageHolderType*>& messages);

    static std::mutex Mutex;           ///< guards Subscriptions, their queues and timers, and EventHandlerBinding
    static std::condition_variable Cv; ///< an event came, a subscription ended, or waiting is to end
    static std::map<std::int32_t, Subscription> Subscriptions;
    static type::Binding EventHandlerBinding;

    asio::GlobalContext context;
};

} // namespace zarn::service::onvif
