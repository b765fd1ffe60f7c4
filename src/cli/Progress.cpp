#include "cli/Progress.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace kestrum::cli {

namespace {
constexpr auto kQuietTime = std::chrono::milliseconds(500);
constexpr const char* kClearLine = "\r\x1b[K";
}  // namespace

bool StderrIsTerminal() {
#ifdef _WIN32
  return _isatty(_fileno(stderr)) != 0;
#else
  return isatty(fileno(stderr)) != 0;
#endif
}

ProgressLine::ProgressLine(std::ostream& err, std::string what, bool shown)
    : err_(err), what_(std::move(what)), enabled_(shown) {}

ProgressLine::~ProgressLine() { Done(); }

void ProgressLine::Done() {
  if (drawn_) err_ << kClearLine << std::flush;
  drawn_ = false;
  enabled_ = false;
}

void ProgressLine::operator()(std::uint64_t done, std::uint64_t total) {
  if (!enabled_ || total == 0) return;
  if (!drawn_ && std::chrono::steady_clock::now() - start_ < kQuietTime) return;
  const int percent = static_cast<int>(std::min(done, total) * 100 / total);
  if (percent == percent_) return;
  percent_ = percent;
  drawn_ = true;
  err_ << kClearLine << what_ << ": " << percent << " %" << std::flush;
}

}  // namespace kestrum::cli
