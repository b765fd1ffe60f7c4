#pragma once
// Joining a folder and a file name with the platform's separator; a root,
// which ends in a separator already, gets no second one, and neither does a
// drive alone on Windows ("C:" names the drive's current folder).
#include <string>

namespace kestrum {

#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

inline bool IsPathSeparator(char c) { return c == '/' || c == kPathSeparator; }

inline std::string JoinPath(const std::string& folder, const std::string& name) {
  const bool drive = kPathSeparator == '\\' && folder.size() == 2 && folder[1] == ':';
  if (folder.empty() || IsPathSeparator(folder.back()) || drive) return folder + name;
  return folder + kPathSeparator + name;
}

}  // namespace kestrum
