// The table of working files that an interruption removes, shared by the
// platforms' signal handlers (image/System.h says why it is global).
#include <atomic>

#include "image/System.h"

namespace kestrum::sys {

namespace {

constexpr int kListed = 8;
std::atomic<const char*> listed[kListed];
static_assert(std::atomic<const char*>::is_always_lock_free,
              "a signal handler can only read lock-free atomics");

}  // namespace

bool ListWorkingFile(const char* path) {
  for (auto& name : listed) {
    const char* none = nullptr;
    if (name.compare_exchange_strong(none, path)) return true;
  }
  return false;
}

void UnlistWorkingFile(const char* path) {
  for (auto& name : listed) {
    const char* mine = path;
    name.compare_exchange_strong(mine, nullptr);
  }
}

void RemoveListedFiles(void (*remove)(const char* path)) {
  for (auto& name : listed)
    if (const char* path = name.load()) remove(path);
}

}  // namespace kestrum::sys
