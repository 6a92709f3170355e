#include "host/configuration_file.h"

#include "host/atomic_file.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node.h>
#include <zarn/configuration/text.h>

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <sys/stat.h>

#include <cerrno>
#include <exception>
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

bool IsGone(std::string const& path) {
    struct stat status {};

    return stat(path.c_str(), &status) != 0 && errno == ENOENT;
}

std::string ReadText(std::string const& path) try {
    return ReadWholeFile(path);

} catch (std::system_error const& error) {

    if (error.code().value() == EIO) throw DamageError(error.what());
    throw LoadError(error.what());
}

/// An error with a path (a key that occurs twice) is a mistake of a person; without one the file is damaged.
boost::json::value ParseText(std::string const& path, std::string const& text) try {
    return configuration::text::Parse(text);

} catch (configuration::Error const& error) {

    auto const message = path + ": " + error.what();
    if (error.GetPath().empty()) throw DamageError(message);
    throw LoadError(message);
}

} // namespace

boost::json::value MakeDefaultConfiguration() { return boost::json::parse({DefaultText.data(), DefaultText.size()}); }

ConfigurationFile::ConfigurationFile(std::string path, std::shared_ptr<configuration::node::Root> root)
    : path(std::move(path)), copyPath(this->path + ".good"), root(std::move(root)) {}

void ConfigurationFile::Open() {
    std::unique_lock lock(mutex);
    if (IsGone(path)) {
        if (!IsGone(copyPath)) return Recover(path + " is gone");
        lock.unlock();
        return Create();
    }
    try {
        ReadFrom(path);
    } catch (DamageError const& error) {
        if (IsGone(copyPath)) throw;
        damaged = true;
        Recover(error.what());
    }
}

void ConfigurationFile::Create() {
    auto const folder = std::filesystem::path(path).parent_path();
    if (!folder.empty()) std::filesystem::create_directories(folder);
    root->FromJson(MakeDefaultConfiguration());
    SaveChanges();
}

/// Under the lock.
void ConfigurationFile::Recover(std::string const& reason) {
    ReadFrom(copyPath);
    logger.Log(logging::Level::Error, "%0%: using the last good configuration, %1%", reason, copyPath);
    if (damaged) return;
    try {
        WriteFileAtomically(path, content);
    } catch (std::exception const& error) {
        logger.Log(logging::Level::Error, "Failed to write the configuration: %0%", error.what());
    }
}

void ConfigurationFile::Load() {
    std::lock_guard const lock(mutex);
    ReadFrom(path);
    damaged = false;
}

/// Under the lock. Messages name the source: the file or its copy.
void ConfigurationFile::ReadFrom(std::string const& source) {
    auto text = ReadText(source);
    auto const json = ParseText(source, text);
    std::exception_ptr failedBinding;
    try {
        root->FromJson(json);
    } catch (configuration::Error const& error) {
        throw LoadError(source + ": " + error.what());
    } catch (std::exception const&) {
        failedBinding = std::current_exception();
    }
    content = std::move(text);
    kept = root->ToJson(Layer::Persisted);
    if (failedBinding) std::rethrow_exception(failedBinding);
}

void ConfigurationFile::SaveChanges() {
    std::lock_guard const lock(mutex);
    auto present = root->ToJson(Layer::Persisted);
    if (present == kept) return;
    auto text = configuration::text::Format(present);
    if (damaged) std::filesystem::rename(path, path + ".damaged");
    damaged = false;
    WriteFileAtomically(path, text);
    content = std::move(text);
    kept = std::move(present);
}

void ConfigurationFile::KeepCopy() {
    std::lock_guard const lock(mutex);
    try {
        if (IsGone(copyPath) || ReadWholeFile(copyPath) != content) WriteFileAtomically(copyPath, content);
    } catch (std::exception const& error) {
        logger.Log(logging::Level::Warning, "Failed to copy the configuration: %0%", error.what());
    }
}

} // namespace zarn::host
