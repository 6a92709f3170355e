#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <string>
#include <thread>
#include <vector>

namespace zarn::test {

/// A server for one connection that sends prepared responses, whatever it is asked.
class ScriptedServer {
public:
    /// responses  one for each request head that comes; then the connection ends
    explicit ScriptedServer(std::vector<std::string> responses);

    /// Waits until the client has gone or everything is sent.
    ~ScriptedServer();

    ScriptedServer(ScriptedServer const&) = delete;
    ScriptedServer& operator=(ScriptedServer const&) = delete;

    unsigned short GetPort() const { return acceptor.local_endpoint().port(); }

    /// The heads of the requests. To be called once the client has noticed the end.
    std::vector<std::string> const& GetRequests();

private:
    void Serve(std::vector<std::string> const& responses);

    boost::asio::io_context io;
    boost::asio::ip::tcp::acceptor acceptor;
    std::vector<std::string> requests;
    std::thread thread;
};

} // namespace zarn::test
