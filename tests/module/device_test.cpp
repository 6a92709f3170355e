#include "device_fixture.h"

#include <zarn/network/local.h>

namespace zarn::test {
namespace {

class DeviceIdentity : public DeviceFixture {};

TEST_F(DeviceIdentity, GetDeviceInformationTellsTheProductIdentityWithTheHostNameAsSerialNumber) {
    EXPECT_THAT(Ask("<tds:GetDeviceInformation/>"),
                Answers("<tds:GetDeviceInformationResponse><tds:Manufacturer>Zarnsuite</tds:Manufacturer>"
                        "<tds:Model>Analytics Server</tds:Model><tds:FirmwareVersion>1.2.3</tds:FirmwareVersion>"
                        "<tds:SerialNumber>" +
                        network::GetHostname() +
                        "</tds:SerialNumber><tds:HardwareId>rack</tds:HardwareId>"
                        "</tds:GetDeviceInformationResponse>"));
}

} // namespace
} // namespace zarn::test
