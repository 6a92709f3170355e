#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/logging/logger.h>

#include <boost/json/value.hpp>

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

namespace zarn::host {

/// The file cannot be taken, and the tree is unchanged.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Keeps a configuration tree in a file, as JSON. Thread: any.
class ConfigurationFile {
public:
    /// path  of the file
    /// root  the tree; its settings are described already
    ConfigurationFile(std::string path, std::shared_ptr<configuration::node::Root> root);

    ConfigurationFile(ConfigurationFile const&) = delete;
    ConfigurationFile& operator=(ConfigurationFile const&) = delete;

    /// Whether the file is there.
    bool Exists() const;

    /// Fills the tree with the embedded default and writes the file, with the folders that are missing.
    void Create();

    /// Reads the file into the tree, all or nothing.
    /// Throws LoadError with one line that names the file, and the path in it or line and column: the tree is then
    /// unchanged. Passes on what those who follow the tree throw: it has changed then.
    void Load();

    /// Writes the file if the tree holds something else than what was last read or written. Overrides are not written.
    /// Throws std::system_error that names the file.
    void SaveChanges();

    std::string const& GetPath() const noexcept { return path; }

private:
    boost::json::value Read() const;

    std::string const path;
    std::shared_ptr<configuration::node::Root> const root;
    std::mutex mutex;        ///< guards kept, and the file
    boost::json::value kept; ///< what the file says, as the tree would write it
};

/// The configuration of a host that nobody has configured: two channels of moving test video, ONVIF discovery on.
boost::json::value MakeDefaultConfiguration();

} // namespace zarn::host
