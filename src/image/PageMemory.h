#pragma once
// Large blocks of zeroed memory (the image, the writers' text block). Where
// the system allows, a block starts on a 2 MiB boundary and is backed by
// 2 MiB pages, so that the first write into it faults once per 2 MiB instead
// of once per 4 KiB. One implementation per platform (PageMemoryPosix.cpp,
// PageMemoryWindows.cpp, PageMemoryPlain.cpp where the platform has none of
// its own).
#include <cstddef>

namespace kestrum {

inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

// count zeroed bytes (at least one), or nullptr when memory is short.
void* AllocatePages(std::size_t count);
// Gives back a block of AllocatePages with the same count.
void ReleasePages(void* block, std::size_t count);

}  // namespace kestrum
