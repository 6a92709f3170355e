#pragma once

#include <boost/asio/ip/address.hpp>

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::video::rtsp {

class Connection;
class Worker;

/// The connections that wait for the other half of a tunnel through HTTP: a client gets everything over one connection
/// (GET) and sends its requests, in Base64, over another (POST) with the same cookie. Thread: any.
class Tunnels {
public:
    /// The half that the client gets.
    struct Half {
        Worker* worker = nullptr; ///< which the connection belongs to
        std::weak_ptr<Connection> connection;
        boost::asio::ip::address peer; ///< the other half must come from there, too
    };

    /// The longest cookie.
    static constexpr std::size_t MaximumCookie = 256;

    /// Adds a half; false when there is one with this cookie.
    bool Add(std::string const& cookie, Half half);

    /// Removes a half.
    void Remove(std::string const& cookie);

    /// The half with this cookie.
    std::optional<Half> Find(std::string_view cookie) const;

private:
    mutable std::mutex mutex; ///< guards `halves`
    std::map<std::string, Half, std::less<>> halves;
};

} // namespace zarn::host::video::rtsp
