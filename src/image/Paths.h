#pragma once
// Joining a folder and a file name with the platform's separator; a root,
// which ends in a separator already, gets no second one.
#include <string>

namespace kestrum {

#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

inline bool IsPathSeparator(char c) { return c == '/' || c == kPathSeparator; }

inline std::string JoinPath(const std::string& folder, const std::string& name) {
  if (folder.empty() || IsPathSeparator(folder.back())) return folder + name;
  return folder + kPathSeparator + name;
}

}  // namespace kestrum
