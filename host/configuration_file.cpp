#include "host/configuration_file.h"

#include "host/atomic_file.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/layer.h>
#include <zarn/configuration/text.h>

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace zarn::host {
namespace {

using configuration::Layer;

constexpr std::string_view DefaultText = R"({
  "identity": {},
  "settings": {"web_port": 8080, "rtsp_port": 8554, "onvif": {"enabled": true}},
  "channels": {
    "1": {"name": "Ball", "source": "test:ball"},
    "2": {"name": "Pattern", "source": "test:smpte?width=640&height=360&rate=15"}
  }
})";

} // namespace

boost::json::value MakeDefaultConfiguration() { return boost::json::parse({DefaultText.data(), DefaultText.size()}); }

ConfigurationFile::ConfigurationFile(std::string path, std::shared_ptr<configuration::node::Root> root)
    : path(std::move(path)), root(std::move(root)) {}

bool ConfigurationFile::Exists() const {
    struct stat status {};

    return stat(path.c_str(), &status) == 0 || errno != ENOENT;
}

void ConfigurationFile::Create() {
    auto const folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder);
    root->FromJson(MakeDefaultConfiguration());
    SaveChanges();
}

boost::json::value ConfigurationFile::Read() const try {
    return configuration::text::Parse(ReadWholeFile(path));

} catch (configuration::Error const& error) {

    throw LoadError(path + ": " + error.what());

} catch (std::exception const& error) {

    throw LoadError(error.what());
}

void ConfigurationFile::Load() {
    std::lock_guard const lock(mutex);
    auto const content = Read();
    try {
        root->FromJson(content);
    } catch (configuration::Error const& error) {
        throw LoadError(path + ": " + error.what());
    } catch (std::exception const&) {
        kept = root->ToJson(Layer::Persisted);
        throw;
    }
    kept = root->ToJson(Layer::Persisted);
}

void ConfigurationFile::SaveChanges() {
    std::lock_guard const lock(mutex);
    auto present = root->ToJson(Layer::Persisted);
    if (present == kept) return;
    WriteFileAtomically(path, configuration::text::Format(present));
    kept = std::move(present);
}

} // namespace zarn::host
