#ifdef _WIN32
// Large blocks straight from the system's virtual memory: zeroed pages that
// nothing touches before their first use. Windows gives 2 MiB pages only to
// users who hold the right to lock memory, so the blocks stay on 4 KiB
// pages, committed at once: a block the system can't back is refused here
// rather than failing on its first write.
#include <windows.h>

#include <cstdlib>

#include "image/PageMemory.h"

namespace kestrum {

void* AllocatePages(std::size_t count) {
  if (count == 0) count = 1;
  if (count < kLargePage) return std::calloc(count, 1);
  return VirtualAlloc(nullptr, count, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void ReleasePages(void* block, std::size_t count) {
  if (!block) return;
  if (count < kLargePage)
    std::free(block);
  else
    VirtualFree(block, 0, MEM_RELEASE);
}

}  // namespace kestrum
#endif
