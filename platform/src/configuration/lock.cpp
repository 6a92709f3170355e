#include <zarn/configuration/lock.h>

#include <utility>

namespace zarn::configuration {

Lock::Lock(std::shared_ptr<std::recursive_mutex> treeMutex) : mutex(std::move(treeMutex)), guard(*mutex) {}

} // namespace zarn::configuration
