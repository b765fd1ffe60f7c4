#pragma once
// Shared pieces of the tests: a scripted platform that records every message,
// temporary folders, file helpers, and a runner for the built command line.
#include <cstdint>
#include <deque>
#include <filesystem>
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
  std::string out;
  std::string err;
};

// Runs a program with arguments (no shell) and collects its output.
RunResult RunProgram(const std::vector<std::string>& argv, const std::filesystem::path& workdir = {});

}  // namespace kestrum::test
