#include "image/Memory.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <string>

namespace kestrum {

namespace {

// The number behind "key:" on a line of its own, in kB, as bytes.
std::optional<std::uint64_t> Field(std::string_view text, std::string_view key) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string_view line = text.substr(at, end - at);
    at = end + 1;
    if (line.substr(0, key.size()) != key || line.size() <= key.size() || line[key.size()] != ':') continue;
    line.remove_prefix(key.size() + 1);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    std::uint64_t kib = 0;
    const auto [rest, error] = std::from_chars(line.data(), line.data() + line.size(), kib);
    if (error != std::errc() || rest == line.data()) return std::nullopt;
    return kib * 1024;
  }
  return std::nullopt;
}

std::string Slurp(const char* path) {
  std::ifstream in(path);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

}  // namespace

std::optional<std::uint64_t> AvailableFrom(std::string_view meminfo, std::string_view groupLimit) {
  const auto available = Field(meminfo, "MemAvailable");
  if (!available) return std::nullopt;
  std::uint64_t bytes = *available + Field(meminfo, "SwapFree").value_or(0);
  std::uint64_t limit = 0;
  const auto [rest, error] = std::from_chars(groupLimit.data(), groupLimit.data() + groupLimit.size(), limit);
  if (error == std::errc() && rest != groupLimit.data()) bytes = std::min(bytes, limit);
  return bytes;
}

std::optional<std::uint64_t> AvailableMemory() {
  // The process's own group where the file system shows it, else the root
  // of what it shows (a container sees its own group there).
  std::string group, groupV1;
  const std::string groups = Slurp("/proc/self/cgroup");
  for (std::size_t at = 0; at < groups.size();) {
    const std::size_t end = std::min(groups.find('\n', at), groups.size());
    const std::string line = groups.substr(at, end - at);
    at = end + 1;
    if (line.rfind("0::", 0) == 0) group = line.substr(3);
    const auto memory = line.find(":memory:");
    if (memory != std::string::npos) groupV1 = line.substr(memory + 8);
  }
  const std::string candidates[] = {"/sys/fs/cgroup" + group + "/memory.max", "/sys/fs/cgroup/memory.max",
                                    "/sys/fs/cgroup/memory" + groupV1 + "/memory.limit_in_bytes",
                                    "/sys/fs/cgroup/memory/memory.limit_in_bytes"};
  std::string limit;
  for (const std::string& path : candidates) {
    limit = Slurp(path.c_str());
    if (!limit.empty()) break;
  }
  return AvailableFrom(Slurp("/proc/meminfo"), limit);
}

}  // namespace kestrum
