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

/// The file is not even JSON, or the disk does not give it back: cut off, overwritten, never written wholly.
class DamageError : public LoadError {
public:
    using LoadError::LoadError;
};

/// Keeps a configuration tree in a file, as JSON, and beside it, as `FILE.good`, a copy of what was last used, for the
/// day when the file is gone or damaged. Thread: any.
class ConfigurationFile {
public:
    /// path  of the file
    /// root  the tree; its settings are described already
    ConfigurationFile(std::string path, std::shared_ptr<configuration::node::Root> root);

    ConfigurationFile(ConfigurationFile const&) = delete;
    ConfigurationFile& operator=(ConfigurationFile const&) = delete;

    /// Fills the tree at start, from
    /// - the file,
    /// - the copy, when the file is gone, which is then written again, or damaged, which is left as it is: somebody may
    ///   be in the middle of editing it. The log says so.
    /// - the embedded default when neither is there; the file is then written, with the folders that are missing.
    /// Throws LoadError, like Load, for a file that is there and holds what the tree does not take, and when the copy
    /// would be needed and cannot be used; std::system_error when the default cannot be written.
    void Open();

    /// Reads the file into the tree, all or nothing.
    /// Throws LoadError with one line that names the file, and the path in it or line and column: the tree is then
    /// unchanged; DamageError is the LoadError of a file that is no JSON. Passes on what those who follow the tree
    /// throw: it has changed then.
    void Load();

    /// Writes the file if the tree holds something else than what was last read or written. Overrides are not written.
    /// A damaged file is kept as `FILE.damaged`. Throws std::system_error that names the file.
    void SaveChanges();

    /// Makes the copy what was last read or written, which has proved to be usable. That it cannot be written is
    /// logged.
    void KeepCopy();

    std::string const& GetPath() const noexcept { return path; }

private:
    void Take(std::string const& source);
    void Create();
    void Recover(std::string const& reason);

    logging::Logger logger{"zarn.host.configuration"};
    std::string const path;
    std::string const copyPath;
    std::shared_ptr<configuration::node::Root> const root;
    std::mutex mutex;        ///< guards the members below, and the files
    boost::json::value kept; ///< what the file says, as the tree would write it
    std::string content;     ///< what was last read or written
    bool damaged = false;    ///< the file, when it was last read
};

/// The configuration of a host that nobody has configured: two channels of moving test video, ONVIF discovery on.
boost::json::value MakeDefaultConfiguration();

} // namespace zarn::host
