#include "image/Memory.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace kestrum {

namespace {

// The number at the start of text, after blanks.
std::optional<std::uint64_t> Number(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  std::uint64_t value = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || rest == text.data()) return std::nullopt;
  return value;
}

// The number behind key and separator on a line of its own.
std::optional<std::uint64_t> Field(std::string_view text, std::string_view key, char separator) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string_view line = text.substr(at, end - at);
    at = end + 1;
    if (line.substr(0, key.size()) != key || line.size() <= key.size() || line[key.size()] != separator)
      continue;
    return Number(line.substr(key.size() + 1));
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::uint64_t> AvailableFrom(std::string_view meminfo, std::optional<std::uint64_t> groupRoom) {
  const auto available = Field(meminfo, "MemAvailable", ':');
  if (!available) return groupRoom;
  const std::uint64_t bytes = (*available + Field(meminfo, "SwapFree", ':').value_or(0)) * 1024;
  return groupRoom ? std::min(bytes, *groupRoom) : bytes;
}

std::optional<std::uint64_t> GroupRoom(std::string_view limit, std::string_view usage,
                                       std::string_view stat) {
  const auto most = Number(limit);
  if (!most) return std::nullopt;
  // A group version 1 names its own lines "total_" when they count its children too.
  std::uint64_t cache = 0;
  for (const char* key : {"active_file", "inactive_file"})
    cache += Field(stat, std::string("total_") + key, ' ').value_or(Field(stat, key, ' ').value_or(0));
  const std::uint64_t used = Number(usage).value_or(0);
  const std::uint64_t held = used - std::min(used, cache);
  return *most - std::min(*most, held);
}

}  // namespace kestrum
