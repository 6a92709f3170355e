#include "unit/platform/protocol/network/udp/failing_new.h"

#include <zarn/onvif/discovery/endpoint.h>
#include <zarn/onvif/discovery/response.h>

#include <gtest/gtest.h>

namespace zarn::onvif::discovery {
namespace {

TEST(DiscoveryResponse, IsInvalidWhenAnyAllocationFails) {
    utilities::name::Config const identity(
        {"Maker of many things", "Model with a long name", "1.0", "rack", "Cellar below the house", "Door camera"});
    std::string const text(100'000, 'x');
    GetEndpoint(); // creates the endpoint, which is cached
    int failures = 0;
    for (bool valid = false; !valid; ++failures) {
        test::FailingNew const failing(failures);
        valid = Response(text, text, 8080, false, identity).IsValid();
    }
    EXPECT_GE(failures, 10);
}

} // namespace
} // namespace zarn::onvif::discovery
