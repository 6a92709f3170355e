#include "host/atomic_file.h"

#include <zarn/io/unique_descriptor.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <tuple>
#include <utility>

namespace zarn::host {
namespace {

constexpr std::size_t MaximumLength = 16 * 1024 * 1024;

[[noreturn]] void Fail(std::string const& path, int error) {
    throw std::system_error(error, std::generic_category(), path);
}

/// An open file; what it does not manage to do names the path in the error.
class File {
public:
    File(int descriptor, std::string path) : descriptor(descriptor), path(std::move(path)) {
        if (!this->descriptor) Fail(this->path, errno);
    }

    void Write(std::string_view text) const {
        while (!text.empty()) {
            ssize_t const count = write(descriptor.Get(), text.data(), text.size());
            if (count < 0 && errno != EINTR) Fail(path, errno);
            if (count > 0) text.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    std::string Read() const {
        std::string text;
        std::array<char, 65536> chunk{};
        for (;;) {
            ssize_t const count = read(descriptor.Get(), chunk.data(), chunk.size());
            if (count == 0) return text;
            if (count < 0 && errno != EINTR) Fail(path, errno);
            if (count > 0) text.append(chunk.data(), static_cast<std::size_t>(count));
            if (text.size() > MaximumLength) Fail(path, EFBIG);
        }
    }

    void SetMode(mode_t mode) const {
        if (fchmod(descriptor.Get(), mode) != 0) Fail(path, errno);
    }

    void Sync() const {
        if (fsync(descriptor.Get()) != 0) Fail(path, errno);
    }

    struct stat GetStatus() const {
        struct stat status {};

        if (fstat(descriptor.Get(), &status) != 0) Fail(path, errno);
        return status;
    }

private:
    io::UniqueDescriptor descriptor;
    std::string path;
};

struct Unlink {
    void operator()(std::string const* path) const { unlink(path->c_str()); }
};

} // namespace

void WriteFileAtomically(std::string const& path, std::string_view text) {
    std::error_code missing;
    auto const resolved = std::filesystem::canonical(path, missing);
    std::string const target = missing ? path : resolved.string();

    struct stat status {};

    mode_t const mode = stat(target.c_str(), &status) == 0 ? (status.st_mode & 07777) : (S_IRUSR | S_IWUSR);

    std::string beside = target + ".XXXXXX";
    File const file(mkostemp(beside.data(), O_CLOEXEC), beside);
    std::unique_ptr<std::string const, Unlink> unfinished(&beside);
    file.Write(text);
    file.SetMode(mode);
    file.Sync();
    if (rename(beside.c_str(), target.c_str()) != 0) Fail(path, errno);
    std::ignore = unfinished.release();
    // Until the folder is on the disk the new name is not, either.
    auto const parent = std::filesystem::path(target).parent_path();
    std::string const folder = parent.empty() ? std::string(".") : parent.string();
    File const directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), folder);
    directory.Sync();
}

std::string ReadWholeFile(std::string const& path) {
    // Not to wait for the other end of a pipe; it is refused below.
    File const file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK), path);
    auto const mode = file.GetStatus().st_mode;
    if (S_ISDIR(mode)) Fail(path, EISDIR);
    if (!S_ISREG(mode)) throw std::system_error(EINVAL, std::generic_category(), path + " is not a regular file");
    return file.Read();
}

} // namespace zarn::host
