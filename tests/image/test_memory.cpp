#include <gtest/gtest.h>

#include "image/Memory.h"

namespace kestrum {
namespace {

constexpr std::uint64_t kKiB = 1024;

TEST(AvailableMemory, MemoryAndSwapBoundedByTheGroupLimit) {
  const char* meminfo =
      "MemTotal:        8000000 kB\n"
      "MemFree:          100000 kB\n"
      "MemAvailable:    2000000 kB\n"
      "SwapCached:            0 kB\n"
      "SwapTotal:       1000000 kB\n"
      "SwapFree:         500000 kB\n";
  const struct {
    const char* name;
    std::string meminfo;
    std::string groupLimit;
    std::optional<std::uint64_t> available;
  } cases[] = {
      {"memory and swap", meminfo, "", 2500000 * kKiB},
      {"no group limit", meminfo, "max\n", 2500000 * kKiB},
      {"a group limit of the host's size", meminfo, "9223372036854771712\n", 2500000 * kKiB},
      {"a lower group limit", meminfo, "1073741824\n", 1073741824},
      {"no swap line", "MemAvailable: 4 kB\n", "", 4 * kKiB},
      {"a key that only begins like it", "MemAvailableX: 9 kB\nMemAvailable: 3 kB\n", "", 3 * kKiB},
      {"nothing to tell by", "MemTotal: 8000000 kB\n", "1073741824", std::nullopt},
      {"a number that can't be read", "MemAvailable: many kB\n", "", std::nullopt},
      {"no file at all", "", "", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(AvailableFrom(c.meminfo, c.groupLimit), c.available);
  }
}

}  // namespace
}  // namespace kestrum
