#if !defined(__unix__) && !defined(__APPLE__) && !defined(_WIN32)
// Plain allocation for systems without an implementation of their own.
#include <cstdlib>

#include "image/PageMemory.h"

namespace kestrum {

void* AllocatePages(std::size_t count) { return std::calloc(count == 0 ? 1 : count, 1); }

void ReleasePages(void* block, std::size_t) { std::free(block); }

}  // namespace kestrum
#endif
