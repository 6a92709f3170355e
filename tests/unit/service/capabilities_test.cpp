#include "support/failing_nothrow_new.h"

#include <service/onvif/analytics.h>
#include <service/onvif/device.h>
#include <service/onvif/events.h>
#include <service/onvif/media.h>
#include <service/onvif/media2.h>
#include <service/onvif/soap_context.h>

#include <gtest/gtest.h>

#include <sstream>

namespace zarn::service::onvif {
namespace {

template <class Service>
class ServiceCapabilities : public testing::Test {
protected:
    template <class Capabilities>
    static std::string Written(soap* soap, Capabilities const& capabilities) {
        std::ostringstream stream;
        soap->os = &stream;
        soap_begin_send(soap);
        capabilities.soap_put(soap, "Capabilities", nullptr);
        soap_end_send(soap);
        soap->os = nullptr;
        return std::move(stream).str();
    }

    std::shared_ptr<soap> context = MakeSoapContext();
};

using Services = testing::Types<DeviceService, EventsService, MediaService, Media2Service, AnalyticsService>;
TYPED_TEST_SUITE(ServiceCapabilities, Services);

TYPED_TEST(ServiceCapabilities, AreADistinctObjectOfEqualContentOnEveryCall) {
    auto* soap = this->context.get();
    auto* first = TypeParam::MakeServiceCapabilities(soap);
    auto* second = TypeParam::MakeServiceCapabilities(soap);
    EXPECT_NE(first, second);
    EXPECT_EQ(this->Written(soap, *first), this->Written(soap, *second));
}

TYPED_TEST(ServiceCapabilities, AreNullWithoutMemory) {
    test::FailingNothrowNew const failing(0);
    EXPECT_EQ(TypeParam::MakeServiceCapabilities(this->context.get()), nullptr);
}

TEST(EveryService, CannotBeCopied) {
    auto const context = MakeSoapContext();
    auto* soap = context.get();
    EXPECT_EQ(DeviceService(soap, URIBase(1, false), nullptr, {}, nullptr).copy(), nullptr);
    EXPECT_EQ(EventsService(soap, URIBase(1, false), nullptr, {}).copy(), nullptr);
    EXPECT_EQ(MediaService(soap, nullptr, nullptr, false, nullptr).copy(), nullptr);
    EXPECT_EQ(Media2Service(soap, nullptr, nullptr, false, nullptr).copy(), nullptr);
    EXPECT_EQ(AnalyticsService(soap, nullptr).copy(), nullptr);
}

TEST(GetServiceCapabilities, OmitsTheCapabilitiesWithoutMemory) {
    auto const context = MakeSoapContext();
    MediaService media(context.get(), nullptr, nullptr, false, nullptr);
    _trt__GetServiceCapabilitiesResponse response;
    test::FailingNothrowNew const failing(0);
    EXPECT_EQ(media.GetServiceCapabilities(nullptr, response), SOAP_OK);
    EXPECT_EQ(response.Capabilities, nullptr);
}

} // namespace
} // namespace zarn::service::onvif
