#pragma once
// How a piece of the engine's work ended, with the exact words the window
// shows. The engine returns outcomes and shows nothing itself but its
// prompts; the handlers named after the dialogs show the words, set
// FileError and hold the busy state, and the command line prints them.
#include <cstdint>
#include <string>
#include <utility>

namespace kestrum {

enum class Ending {
  Done,     // the work is done; words, when not empty, is its notice
  Refused,  // a field was refused before anything was read or written
  Failed,   // a file could not be read or written, or a record was bad
};

struct Outcome {
  Ending ending = Ending::Done;
  std::string words;       // the message box's text; empty when none is shown
  std::string file;        // the file read or written, where there is one
  std::uint64_t line = 0;  // the record that stopped a read, counted from 1; 0 for none

  static Outcome Done(std::string notice = {}) { return {Ending::Done, std::move(notice), {}, 0}; }
  static Outcome Refuse(std::string words) { return {Ending::Refused, std::move(words), {}, 0}; }
  static Outcome Fail(std::string words, std::string file = {}, std::uint64_t line = 0) {
    return {Ending::Failed, std::move(words), std::move(file), line};
  }
  bool IsDone() const { return ending == Ending::Done; }
  bool operator==(const Outcome&) const = default;
};

}  // namespace kestrum
