#include "support/failing_nothrow_new.h"

#include <service/onvif/analytics.h>
#include <service/onvif/device.h>
#include <service/onvif/events.h>
#include <service/onvif/media.h>
#include <service/onvif/media2.h>
#include <service/onvif/soap_context.h>
#include <zarn/authentication/engine.h>
#include <zarn/configuration/schema.h>
#include <zarn/meta/data/classification/name.h>
#include <zarn/meta/data/event.h>
#include <zarn/meta/data/object.h>
#include <zarn/meta/data/zone.h>
#include <zarn/onvif/events/handler.h>

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <sstream>
#include <utility>

namespace zarn::service::onvif {
namespace {

using configuration::Schema;

/// Every operation that allocates its answer, on a host with two channels and no authentication.
class OperationWithoutMemory : public testing::Test {
protected:
    OperationWithoutMemory() {
        engine.SetEnabled(false);
        root->Schema({Schema(WebPortPath, std::uint16_t{80}, "port"), Schema(RtspPortPath, std::uint16_t{554}, "port"),
                      Schema::Collection("channels", {Schema("name", "", "name")}, "channels")});
        root->FromJson(boost::json::parse(R"({"channels": {"1": {"name": "Gate"}, "2": {"name": "Yard"}}})"));
    }

    static bool CanBeWritten(soap* soap, auto const& response) {
        std::ostringstream stream;
        soap->os = &stream;
        bool const written =
            !soap_begin_send(soap) && !response.soap_put(soap, "Response", nullptr) && !soap_end_send(soap);
        soap->os = nullptr;
        return written && stream.str().ends_with("Response>");
    }

    /// Makes allocations fail from the first one on, then from the second one on, and so on until none fails. Each
    /// time, the operation must succeed and its response must be writable.
    template <class Service, class Request, class Response>
    void Expect(auto const& makeService, int (Service::*operation)(Request*, Response&), Request request = {}) {
        bool failed = true;
        for (int n = 0; failed; ++n) {
            auto const context = MakeSoapContext();
            Service service = makeService(context.get());
            Response response;
            {
                test::FailingNothrowNew const failing(n);
                EXPECT_EQ((service.*operation)(&request, response), SOAP_OK) << n;
                failed = failing.HasFailed();
            }
            EXPECT_TRUE(failed || n > 0) << "the operation allocates nothing";
            EXPECT_TRUE(CanBeWritten(context.get(), response)) << n;
        }
    }

    template <class Service>
    auto MakeMedia() {
        return [this](soap* soap) { return Service(soap, root, channelInfo, false, &engine); };
    }

    ZarnAuthenticationEngine engine;
    std::shared_ptr<configuration::node::Root> root = std::make_shared<configuration::node::Root>();
    ChannelInfo channelInfo = [](std::string const&) { return meta::data::VideoInfo({4, 3}, "video/x-h264", 1, 1); };
    std::string token = "channels.1";
};

TEST_F(OperationWithoutMemory, OfTheDeviceServiceSucceeds) {
    auto const make = [this](soap* soap) { return DeviceService(soap, URIBase(80, false), &engine, {}, root); };
    _tds__GetServices services;
    services.IncludeCapability = true;
    Expect(make, &DeviceService::GetServices, services);
    Expect(make, &DeviceService::GetServiceCapabilities);
    Expect(make, &DeviceService::GetCapabilities);
    Expect(make, &DeviceService::GetScopes);
    Expect(make, &DeviceService::GetSystemDateAndTime);
    Expect(make, &DeviceService::GetHostname);
    Expect(make, &DeviceService::GetNetworkInterfaces);
    Expect(make, &DeviceService::GetNetworkProtocols);
    Expect(make, &DeviceService::GetUsers);
}

TEST_F(OperationWithoutMemory, OfTheMediaServiceSucceeds) {
    auto const make = MakeMedia<MediaService>();
    _trt__GetProfile profile;
    profile.ProfileToken = token;
    _trt__GetVideoSourceConfiguration source;
    source.ConfigurationToken = token;
    _trt__GetVideoEncoderConfiguration encoder;
    encoder.ConfigurationToken = token;
    _trt__GetVideoEncoderConfigurationOptions options;
    options.ConfigurationToken = &token;
    Expect(make, &MediaService::GetServiceCapabilities);
    Expect(make, &MediaService::GetVideoSources);
    Expect(make, &MediaService::GetProfiles);
    Expect(make, &MediaService::GetProfile, profile);
    Expect(make, &MediaService::GetVideoSourceConfigurations);
    Expect(make, &MediaService::GetVideoSourceConfiguration, source);
    Expect(make, &MediaService::GetVideoEncoderConfigurations);
    Expect(make, &MediaService::GetVideoEncoderConfiguration, encoder);
    Expect(make, &MediaService::GetVideoEncoderConfigurationOptions, options);
    Expect(make, &MediaService::GetStreamUri);
    Expect(make, &MediaService::GetSnapshotUri);
}

TEST_F(OperationWithoutMemory, OfTheMedia2ServiceSucceeds) {
    auto const make = MakeMedia<Media2Service>();
    _tr2__GetProfiles profiles;
    profiles.Type = {"All"};
    tr2__GetConfiguration options;
    options.ConfigurationToken = &token;
    Expect(make, &Media2Service::GetServiceCapabilities);
    Expect(make, &Media2Service::GetProfiles, profiles);
    Expect(make, &Media2Service::GetVideoSourceConfigurations);
    Expect(make, &Media2Service::GetVideoEncoderConfigurations);
    Expect(make, &Media2Service::GetMetadataConfigurations);
    Expect(make, &Media2Service::GetAnalyticsConfigurations);
    Expect(make, &Media2Service::GetVideoSourceConfigurationOptions);
    Expect(make, &Media2Service::GetVideoSourceConfigurationOptions, options);
    Expect(make, &Media2Service::GetVideoEncoderConfigurationOptions, options);
    Expect(make, &Media2Service::GetMetadataConfigurationOptions);
}

TEST_F(OperationWithoutMemory, OfTheAnalyticsServiceSucceeds) {
    auto const make = [this](soap* soap) { return AnalyticsService(soap, &engine); };
    Expect(make, &AnalyticsService::GetServiceCapabilities);
    Expect(make, &AnalyticsService::GetSupportedAnalyticsModules);
    Expect(make, &AnalyticsService::GetAnalyticsModules);
    Expect(make, &AnalyticsService::GetSupportedMetadata);
}

TEST_F(OperationWithoutMemory, OfTheEventsServiceSucceeds) {
    auto const make = [this](soap* soap) { return EventsService(soap, URIBase(80, false), &engine, {}); };
    Expect(make, &EventsService::GetServiceCapabilities);
    Expect(make, &EventsService::GetEventProperties);
    Expect(make, &EventsService::CreatePullPointSubscription);
}

/// A client with a subscription that has an event of every family in its queue.
class PullMessagesWithoutMemory : public OperationWithoutMemory {
protected:
    /// topics  topics of its filter; null: no filter
    std::string Subscribe(char const* topics) {
        auto const context = MakeSoapContext();
        _tev__CreatePullPointSubscription subscription;
        wsnt__FilterType filter;
        if (topics) {
            auto& expression = filter.__any.emplace_back(context.get());
            soap_elt_set(&expression, nullptr, "wsnt:TopicExpression");
            soap_elt_text(&expression, topics);
            subscription.Filter = &filter;
        }
        _tev__CreatePullPointSubscriptionResponse response;
        EXPECT_EQ(EventsService(context.get(), URIBase(80, false), &engine, {})
                      .CreatePullPointSubscription(&subscription, response),
                  SOAP_OK);
        return response.SubscriptionReference.Address;
    }

    EventsService MakeEvents(soap* soap, std::string const& address) {
        for (auto const& [type, zone] : {std::pair("enter", 0U), {"presence", 1U}, {"dwell", 7U}, {"count", 7U}}) {
            auto event = std::make_shared<meta::data::Event>(type, "rule", std::chrono::system_clock::now());
            event->Emplace<meta::data::Zone>(zone);
            event->Emplace<meta::data::Object>(3).Emplace<meta::data::classification::Name>("visitor");
            zarn::onvif::events::Publish(std::move(event));
        }
        std::snprintf(soap->path, sizeof(soap->path), "%s", address.substr(address.find("/onvif")).c_str());
        return EventsService(soap, URIBase(80, false), &engine, {});
    }

    PullMessagesWithoutMemory() {
        request.Timeout = "PT0S";
        request.MessageLimit = 10;
    }

    _tev__PullMessages request;
};

TEST_F(PullMessagesWithoutMemory, SucceedsWithAPartialResponse) {
    for (char const* topics : {static_cast<char const*>(nullptr), "tns1:RuleEngine/CountAggregation/Counter"}) {
        auto const address = Subscribe(topics);
        Expect([&](soap* soap) { return MakeEvents(soap, address); }, &EventsService::PullMessages, request);
    }
}

} // namespace
} // namespace zarn::service::onvif
