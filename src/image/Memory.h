#pragma once
// How much memory the system can still give the image. On Linux an
// allocation may succeed with pages the system cannot back, and the process
// is killed later when the image is filled or a file is written; asking
// first turns that into an orderly "Out of Memory". The texts are read by
// the platform seam (image/System.h); here they are only understood.
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrum {

// What an operation needs beside the image at most: the writers' output
// block, the readers' block, the old end of a BIN file kept behind the new
// bytes, and the program's own working room.
inline constexpr std::uint64_t kOperationReserve = std::uint64_t{32} << 20;

// Bytes that memory and swap can still take: MemAvailable + SwapFree of a
// /proc/meminfo text, no more than groupRoom, the room of the control group.
// Nothing when neither tells.
std::optional<std::uint64_t> AvailableFrom(std::string_view meminfo, std::optional<std::uint64_t> groupRoom);

// The room a control group leaves: its limit (memory.max, or
// memory.limit_in_bytes; "max" or empty for none) less what it uses
// (memory.current, or memory.usage_in_bytes) beyond the file cache that the
// system can drop (the file lines of memory.stat). Nothing without a limit.
std::optional<std::uint64_t> GroupRoom(std::string_view limit, std::string_view usage, std::string_view stat);

}  // namespace kestrum
