#pragma once
// What the core asks of the window system: message boxes, the mouse
// pointer and the busy state. The window implements it with Qt; tests and the command line
// implement it with plain code.
#include <string>

namespace kestrum {

// Message box styles.
constexpr int vbOKOnly = 0;             // OK, no icon, no title of its own
constexpr int vbQuestionYesNo = 36;     // Yes/No, question icon, a title
constexpr int vbExclamationYesNo = 52;  // Yes/No (Yes default), exclamation icon, a title

// Answers.
constexpr int vbOK = 1;
constexpr int vbYes = 6;
constexpr int vbNo = 7;

// Mouse pointer values.
constexpr int vbDefault = 0;
constexpr int vbHourglass = 11;

class Platform {
 public:
  virtual ~Platform() = default;
  // Shows text modally and gives the button pressed.
  virtual int MsgBox(const std::string& text, int style = vbOKOnly, const std::string& title = {}) = 0;
  // Screen.MousePointer.
  virtual void SetMousePointer(int pointer) = 0;
  // A busy scope began or ended (see BusyScope): the window shows the
  // pointer and the buttons as they now stand before the work goes on.
  virtual void BusyChanged() {}
};

}  // namespace kestrum
