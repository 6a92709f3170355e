#pragma once

#include <zarn/container/buffer.h>
#include <zarn/protocol/network/udp/receiver.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zarn::test {

/// Datagrams and failures delivered by a receiver.
class Inbox {
public:
    struct Item {
        boost::system::error_code error;
        std::string text;
        boost::asio::ip::udp::endpoint source;
    };

    using Operation = protocol::network::udp::Operation;
    using Callback = protocol::network::udp::Receiver::Callback;

    /// The callback that fills the inbox, which must outlive the receiver.
    /// then  called after each datagram has been stored; everything it refers to must outlive the receiver
    Callback MakeCallback(std::function<Operation()> then = [] { return Operation::Continue; }) {
        return [this, then = std::move(then)](boost::system::error_code const& error,
                                              std::shared_ptr<container::Buffer> const& buffer,
                                              boost::asio::ip::udp::endpoint const& source) {
            {
                std::scoped_lock const lock(mutex);
                items.push_back({error, std::string(buffer->ToStringView()), source});
            }
            changed.notify_all();
            return then();
        };
    }

    std::vector<Item> GetItems() const {
        std::scoped_lock const lock(mutex);
        return items;
    }

    std::vector<std::string> GetTexts() const {
        std::vector<std::string> texts;
        for (auto const& item : GetItems()) texts.push_back(item.text);
        return texts;
    }

    /// False when no datagram with this text arrives in time.
    bool WaitFor(std::string const& text, std::chrono::milliseconds timeout = std::chrono::seconds(60)) const {
        return WaitUntil([&] { return CountLocked(text) > 0; }, timeout);
    }

    /// False when no failure is reported in time.
    bool WaitForError(boost::system::error_code const& error) const {
        auto const is = [&](Item const& item) { return item.error == error; };
        return WaitUntil([&] { return std::any_of(items.begin(), items.end(), is); }, std::chrono::seconds(60));
    }

    std::size_t Count(std::string const& text) const {
        std::scoped_lock const lock(mutex);
        return CountLocked(text);
    }

private:
    template <class Condition>
    bool WaitUntil(Condition condition, std::chrono::milliseconds timeout) const {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, timeout, condition);
    }

    std::size_t CountLocked(std::string const& text) const {
        return static_cast<std::size_t>(
            std::count_if(items.begin(), items.end(), [&](Item const& item) { return item.text == text; }));
    }

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::vector<Item> items;
};

} // namespace zarn::test
