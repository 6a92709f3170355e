#include "support/reserved_port.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/system/system_error.hpp>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

namespace zarn::test {
namespace {

/// Above the ports of services, below the system's ephemeral ports (ip_local_port_range).
constexpr std::uint16_t FirstPort = 20000;
constexpr std::uint16_t LastPort = 29999;

/// Locks a port's byte in a file shared by all tests of this user. Closing the descriptor releases the lock.
bool LockByte(int descriptor, std::uint16_t port) {
    struct flock lock {};

    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = port;
    lock.l_len = 1;
    return fcntl(descriptor, F_OFD_SETLK, &lock) == 0;
}

bool IsPortFree(std::uint16_t port) {
    using boost::asio::ip::tcp;
    boost::asio::io_context context;
    try {
        tcp::acceptor const listener(context, {tcp::v4(), port});
        return true;
    } catch (boost::system::system_error const&) {
        return false;
    }
}

} // namespace

ReservedPort::ReservedPort() {
    auto const file =
        std::filesystem::temp_directory_path() / ("zarn-test-ports-" + std::to_string(getuid()) + ".lock");
    descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) throw std::runtime_error(file.string() + " cannot be opened");
    // Start at a random port, so that a port with lingering connections is rarely reused.
    constexpr int Count = LastPort - FirstPort + 1;
    std::random_device random;
    int const begin = std::uniform_int_distribution(0, Count - 1)(random);
    for (int i = 0; i < Count; ++i) {
        auto const candidate = static_cast<std::uint16_t>(FirstPort + (begin + i) % Count);
        if (!LockByte(descriptor, candidate)) continue;
        port = candidate;
        if (IsPortFree(candidate)) return;
    }
    close(descriptor);
    throw std::runtime_error("no port is free");
}

ReservedPort::~ReservedPort() { close(descriptor); }

} // namespace zarn::test
