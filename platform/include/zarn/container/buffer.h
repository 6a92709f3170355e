#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zarn::container {

/// An immutable run of bytes, shared by the code that makes it and the code that sends or parses it.
/// Thread: any; its bytes never change after construction.
class Buffer {
public:
    /// Takes over the bytes of `bytes`.
    explicit Buffer(std::string&& bytes) noexcept : own(std::move(bytes)), bytes(own) {}

    /// Shares a part of another buffer's bytes, which it keeps alive.
    Buffer(std::shared_ptr<Buffer const> whole, std::string_view part) noexcept
        : whole(std::move(whole)), bytes(part) {}

    Buffer(Buffer const&) = delete;
    Buffer& operator=(Buffer const&) = delete;

    /// The bytes; valid as long as the buffer lives.
    std::string_view ToStringView() const noexcept { return bytes; }

    /// The number of bytes.
    std::size_t GetSize() const noexcept { return bytes.size(); }

private:
    std::string const own;
    std::shared_ptr<Buffer const> whole;
    std::string_view const bytes; ///< of one of the above
};

} // namespace zarn::container
