#pragma once
// Runs the built command line on a call as typed.
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "TestSupport.h"

namespace kestrum::test {

inline RunResult RunCli(std::vector<std::string> args, const std::filesystem::path& dir = {},
                        const RunOptions& options = {}) {
  args.insert(args.begin(), KESTRUM_CLI);
  return RunProgram(args, dir, options);
}

// The words of a call as typed, split at spaces.
inline std::vector<std::string> Words(const std::string& call) {
  std::istringstream in(call);
  return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

// A dump row: the address, then bytes and FF up to 16 bytes.
inline std::string Row(const std::string& address, const std::string& bytes) {
  return address + "  " + bytes + std::string(32 - bytes.size(), 'F') + "\n";
}

// The number of entries in a folder.
inline long Entries(const std::filesystem::path& dir) {
  return std::distance(std::filesystem::directory_iterator(dir), {});
}

}  // namespace kestrum::test
