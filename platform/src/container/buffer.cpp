#include <zarn/container/buffer.h>

#include <utility>

namespace zarn::container {

Buffer::Buffer(std::string&& bytes) noexcept : bytes(std::move(bytes)) {}

} // namespace zarn::container
