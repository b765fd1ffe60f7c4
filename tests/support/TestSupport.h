#pragma once
// Shared pieces of the tests: a scripted platform that records every message,
// temporary folders, file helpers, and a runner for the built command line.
#include <cstdint>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "image/Module1.h"
#include "image/Platform.h"

namespace kestrum::test {

struct Message {
  std::string text;
  int style = 0;
  std::string title;
  bool operator==(const Message&) const = default;
};

// Records every message box and pointer change in order; answers Yes/No
// questions from a script (Yes when the script has run out).
class ScriptedPlatform : public Platform {
 public:
  int MsgBox(const std::string& text, int style, const std::string& title) override;
  void SetMousePointer(int pointer) override;

  // Only the texts, in order.
  std::vector<std::string> Texts() const;

  std::deque<int> answers;
  std::vector<Message> messages;
  std::vector<int> pointers;
  int pointer = vbDefault;
};

// A fresh folder under the system's temporary folder, removed at the end.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

void WriteFile(const std::filesystem::path& path, const std::string& bytes);
std::string ReadFile(const std::filesystem::path& path);

// A Module1 whose area is first..last, filled with FF, and whose main
// window shows that area.
Module1 MakeImage(Address first = kDefaultFirst, Address last = kDefaultLast);

struct RunResult {
  int status = -1;
  std::string out = {};
  std::string err = {};
  long peakKiB = 0;  // the child's peak resident memory; none on Windows
};

// How a program is run: unprivileged, or with its address space limited.
struct RunOptions {
  std::string group = {};          // a control group's folder the program runs in, when not empty
  bool unprivileged = false;       // as the user nobody when run by the superuser
  std::uint64_t addressSpace = 0;  // bytes; 0 for no limit
  // What the program finds in /proc/meminfo, when not empty: in a mount
  // namespace of its own, which needs the superuser. A program that could
  // not be given it ends with kNoMeminfo.
  std::string meminfo = {};
};
inline constexpr int kNoMeminfo = 123;

// Runs a program with arguments (no shell) and collects its output.
RunResult RunProgram(const std::vector<std::string>& argv, const std::filesystem::path& workdir = {},
                     const RunOptions& options = {});

// A memory control group of its own under the test's, with a limit, for
// the superuser where the system lets one be made; removed at the end with
// the processes that hold memory in it.
class MemoryGroup {
 public:
  explicit MemoryGroup(std::uint64_t limit);
  ~MemoryGroup();
  MemoryGroup(const MemoryGroup&) = delete;
  MemoryGroup& operator=(const MemoryGroup&) = delete;
  // Starts a process in the group that holds bytes of memory while the group lives.
  bool Hold(std::uint64_t bytes);
  std::string path;  // empty when there is none; then why says why
  std::string why;

 private:
  std::vector<int> holders_;
};

// Built for Windows, and run under Wine here.
inline constexpr bool kWindows = KESTRUM_WINDOWS;

// For a case of a table that can't run here: says why on standard output
// when skip, and gives skip.
inline bool SkipCase(bool skip, const char* why) {
  if (skip) std::printf("[  SKIPPED ] a case: %s\n", why);
  return skip;
}

// For a case that needs what Windows, or Wine, can't give.
inline bool SkipOnWindows(const char* why) { return SkipCase(kWindows, why); }

// Built with the sanitizers: huge files and address space limits don't mix with them.
inline constexpr bool kSanitized = KESTRUM_SANITIZED;

// Lets files grow to at most limit bytes while it lives: a longer write
// fails with "File too large" instead of ending the process.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::uint64_t limit);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  std::uint64_t old_[2] = {};
  void (*oldHandler_)(int) = nullptr;
};

// Makes a named pipe at path; false where the file system has none (Windows).
bool MakeFifo(const std::filesystem::path& path);

// Runs body where file permissions hold: in place for an ordinary user; for
// the superuser, who reads and writes everything, in a child process as the
// user nobody. Gives what body gives (empty when all was as expected), or
// why it could not run.
std::string Unprivileged(const std::function<std::string()>& body);

}  // namespace kestrum::test
