#pragma once
// How much memory the system can still give the image. On Linux an
// allocation may succeed with pages the system cannot back, and the process
// is killed later when the image is filled; asking first turns that into an
// orderly "Out of Memory".
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrum {

// Bytes that memory and swap can still take: MemAvailable + SwapFree of a
// /proc/meminfo text, no more than a memory limit of the control group
// (its memory.max, or memory.limit_in_bytes; "max" or empty for none).
// Nothing when meminfo names no available memory.
std::optional<std::uint64_t> AvailableFrom(std::string_view meminfo, std::string_view groupLimit);

// The same for this machine and process; nothing where it can't be told.
std::optional<std::uint64_t> AvailableMemory();

}  // namespace kestrum
