#pragma once
// One line of progress on standard error for work that takes a while: shown
// only on a terminal and only once the work has run half a second, and
// cleared when the work is done.
#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace kestrum::cli {

// Whether standard error goes to a terminal.
bool StderrIsTerminal();

class ProgressLine {
 public:
  ProgressLine(std::ostream& err, std::string what, bool shown);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void operator()(std::uint64_t done, std::uint64_t total);
  // Clears the line, before anything else is written.
  void Done();

 private:
  std::ostream& err_;
  std::string what_;
  bool enabled_;
  bool drawn_ = false;
  int percent_ = -1;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace kestrum::cli
