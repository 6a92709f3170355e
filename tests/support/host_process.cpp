#include "support/host_process.h"

#include "support/raw_connection.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <regex>
#include <stdexcept>
#include <utility>

namespace zarn::test {

char const* const HostProcess::TwoDescribedChannels = R"({
  "settings": {"web_port": 0, "rtsp_port": 0, "onvif": {"enabled": false}},
  "channels": {
    "1": {"name": "Gate", "video": {"codec": "video/x-h264", "width": 1920, "height": 1080, "rate": "25/1"}},
    "2": {"name": "Yard", "video": {"codec": "video/x-h265", "width": 640, "height": 360, "rate": "15/1"}}
  }
})";

std::unique_ptr<Process> HostProcess::Launch(Options const& options, TemporaryFolder const& folder) {
    auto arguments = options.launcher;
    arguments.insert(arguments.end(), {ZARN_HOST_PROGRAM, "--config", folder / "config.json"});
    arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
    auto environment = options.environment;
    environment.emplace("HOME", folder.GetPath().string());
    environment.emplace("XDG_CONFIG_HOME", "");
    // Share the plugin registry between tests: in a fresh home, GStreamer would scan all its plugins.
    environment.emplace("GST_REGISTRY", (std::filesystem::temp_directory_path() /
                                         ("zarn-test-gstreamer-" + std::to_string(getuid()) + ".bin"))
                                            .string());
    environment.emplace("ZARN_HOST_PASSWORD", options.password);
    if (!options.configuration.empty()) folder.Write("config.json", options.configuration);
    return std::make_unique<Process>(std::move(arguments), environment,
                                     options.endsItself ? std::vector<int>() : std::vector{SIGALRM});
}

HostProcess::HostProcess(Options options)
    : folder(options.folder ? options.folder : std::make_shared<TemporaryFolder>()),
      password(options.password),
      process(Launch(options, *folder)) {
    bool const ready = process->WaitForOutput("/onvif/device_service\n");
    std::string const output = process->GetOutput();
    std::smatch match;
    if (!ready ||
        !std::regex_search(output, match, std::regex("ready (https?)://[0-9.]+:([0-9]+)/onvif/device_service\n"))) {
        throw std::runtime_error("zarn-host is not ready: " + output + process->GetLog());
    }
    tls = match[1] == "https";
    port = static_cast<std::uint16_t>(std::stoul(match[2]));
}

HostProcess::~HostProcess() { EXPECT_EQ(Stop(), 0) << process->GetLog(); }

std::string HostProcess::GetUrl() const {
    return (tls ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port);
}

boost::json::value HostProcess::GetHealth() const {
    RawConnection connection(port);
    return boost::json::parse(connection.Exchange("GET /api/health HTTP/1.1\r\nHost: localhost\r\n\r\n").body);
}

std::uint16_t HostProcess::GetRtspPort() const {
    return static_cast<std::uint16_t>(GetHealth().at("listeners").at("rtsp").at("port").to_number<unsigned>());
}

int HostProcess::Stop(std::chrono::milliseconds limit) {
    process->Signal(SIGTERM);
    return process->Wait(limit).value_or(-1);
}

void HostProcess::ExpectStop(std::chrono::milliseconds limit) {
    auto const before = process->GetProcessorTime();
    EXPECT_EQ(Stop(limit), 0) << process->GetLog();
    EXPECT_LT(process->GetProcessorTime() - before, std::chrono::seconds(1));
}

} // namespace zarn::test
