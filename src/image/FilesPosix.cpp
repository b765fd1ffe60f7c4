#include <cerrno>
#include <cstdio>
#include <system_error>

#include "image/Files.h"

namespace kestrum {

std::filesystem::path PathOf(const std::string& name) { return name; }

std::string NameOf(const std::filesystem::path& path) { return path.string(); }

std::FILE* OpenBytes(const std::string& name, const char* mode) { return std::fopen(name.c_str(), mode); }

bool SeekBytes(std::FILE* file, std::int64_t offset, int origin) {
  return ::fseeko(file, static_cast<off_t>(offset), origin) == 0;
}

bool MoveIntoPlace(const std::string& working, const std::string& target, std::string& reason) {
  if (std::rename(working.c_str(), target.c_str()) == 0) return true;
  reason = std::generic_category().message(errno);
  return false;
}

}  // namespace kestrum
