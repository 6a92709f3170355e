#pragma once

#include <zarn/configuration/node/root.h>
#include <zarn/logging/logger.h>

#include <boost/json/value.hpp>

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

namespace zarn::host {

/// The file cannot be used, and the tree is unchanged.
class LoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The file is no JSON, or cannot be read from the disk: cut off, overwritten or never written completely.
class DamageError : public LoadError {
public:
    using LoadError::LoadError;
};

/// Keeps a configuration tree in a JSON file, with a copy of the last good configuration beside it (`FILE.good`) for
/// the case that the file is gone or damaged. Thread: any.
class ConfigurationFile {
public:
    /// path  of the file
    /// root  the tree; its settings are described already
    ConfigurationFile(std::string path, std::shared_ptr<configuration::node::Root> root);

    ConfigurationFile(ConfigurationFile const&) = delete;
    ConfigurationFile& operator=(ConfigurationFile const&) = delete;

    /// Fills the tree at start, from
    /// - the file,
    /// - the copy, when the file is gone or damaged. The log says so. A file that is gone is written again; a damaged
    ///   one stays, because it may be being edited;
    /// - the embedded default when neither exists; the file is then written, with the folders that are missing.
    /// Throws LoadError when the file holds what the tree does not accept, or when the copy is needed and cannot be
    /// used; std::system_error when the default cannot be written.
    void Open();

    /// Reads the file into the tree, all or nothing.
    /// Throws LoadError with one line that names the file, and the path in it or line and column; the tree is then
    /// unchanged. Passes on what bindings of the tree throw; it has changed then.
    void Load();

    /// Writes the file if the tree holds something else than what was last read or written. Overrides are not written.
    /// A damaged file is kept as `FILE.damaged`. Throws std::system_error that names the file.
    void SaveChanges();

    /// Copies what was last read or written, which has proved to be usable. A failure is logged.
    void KeepCopy();

    std::string const& GetPath() const noexcept { return path; }

private:
    void ReadFrom(std::string const& source);
    void Create();
    void Recover(std::string const& reason);

    logging::Logger logger{"zarn.host.configuration"};
    std::string const path;
    std::string const copyPath;
    std::shared_ptr<configuration::node::Root> const root;
    std::mutex mutex;        ///< guards the members below, and the files
    boost::json::value kept; ///< the values of the file, as the tree writes them
    std::string content;     ///< what was last read or written
    bool damaged = false;    ///< the file, when it was last read
};

/// The configuration of the first start: two channels of moving test video, ONVIF discovery on.
boost::json::value MakeDefaultConfiguration();

} // namespace zarn::host
