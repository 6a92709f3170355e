#include "odd_root.h"

#include <service/onvif/media.h>
#include <service/onvif/soap_context.h>
#include <zarn/authentication/engine.h>

#include <gtest/gtest.h>

#include <memory>

namespace zarn::service::onvif {
namespace {

TEST(MediaServiceTest, ListsTheVideoSourceOfAnEntryThatIsNoMap) {
    auto const context = MakeSoapContext();
    ZarnAuthenticationEngine engine;
    engine.SetEnabled(false);
    MediaService service(
        context.get(), std::make_shared<test::OddRoot>(), [](std::string const&) { return meta::data::VideoInfo(); },
        false, &engine);
    _trt__GetVideoSources request;
    _trt__GetVideoSourcesResponse response;
    ASSERT_EQ(service.GetVideoSources(&request, response), SOAP_OK);
    ASSERT_EQ(response.VideoSources.size(), 1U);
    EXPECT_EQ(response.VideoSources[0]->token, "channels.1");
}

} // namespace
} // namespace zarn::service::onvif
