#include "support/server_connections.h"

#include <fstream>
#include <sstream>
#include <string>

namespace zarn::test {
namespace {

constexpr unsigned EstablishedState = 0x01;
constexpr unsigned ClosedByClientState = 0x08; ///< CLOSE_WAIT

unsigned long ReadHexadecimal(std::string const& text) { return std::stoul(text, nullptr, 16); }

} // namespace

std::vector<ServerConnection> ListServerConnections(std::uint16_t port) {
    std::vector<ServerConnection> connections;
    for (auto const* file : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        std::ifstream stream(file);
        std::string line;
        std::getline(stream, line); // column headings
        while (std::getline(stream, line)) {
            std::istringstream columns(line);
            std::string number;
            std::string local;
            std::string remote;
            std::string state;
            std::string queues; // "unsent:unread"
            columns >> number >> local >> remote >> state >> queues;
            if (ReadHexadecimal(local.substr(local.find(':') + 1)) != port) continue;
            auto const code = ReadHexadecimal(state);
            if (code == EstablishedState || code == ClosedByClientState)
                connections.push_back({ReadHexadecimal(queues)});
        }
    }
    return connections;
}

} // namespace zarn::test
