#if defined(__unix__) || defined(__APPLE__)
#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>

#include "image/PageMemory.h"

namespace kestrum {

namespace {
// Below one large page the C library's own allocation serves as well.
bool Small(std::size_t count) { return count < kLargePage; }
std::size_t RoundUp(std::size_t count) { return (count + kLargePage - 1) & ~(kLargePage - 1); }
}  // namespace

void* AllocatePages(std::size_t count) {
  if (count == 0) count = 1;
  if (Small(count)) return std::calloc(count, 1);
  const std::size_t length = RoundUp(count);
  if (length < count || length + kLargePage < length) return nullptr;
  // Map a page more than needed and trim both ends to the boundary.
  void* mapped =
      ::mmap(nullptr, length + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return nullptr;
  const auto start = reinterpret_cast<std::uintptr_t>(mapped);
  const std::uintptr_t aligned = (start + kLargePage - 1) & ~std::uintptr_t{kLargePage - 1};
  if (aligned > start) ::munmap(mapped, aligned - start);
  const std::size_t tail = kLargePage - (aligned - start);
  if (tail > 0) ::munmap(reinterpret_cast<void*>(aligned + length), tail);
  void* block = reinterpret_cast<void*>(aligned);
#ifdef MADV_HUGEPAGE
  // Only advice: where the system declines, the block works with small pages.
  ::madvise(block, length, MADV_HUGEPAGE);
#endif
  return block;
}

void ReleasePages(void* block, std::size_t count) {
  if (!block) return;
  if (count == 0) count = 1;
  if (Small(count))
    std::free(block);
  else
    ::munmap(block, RoundUp(count));
}

}  // namespace kestrum
#endif
