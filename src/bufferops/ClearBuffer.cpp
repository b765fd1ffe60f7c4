#include "bufferops/ClearBuffer.h"

#include <cstring>

namespace kestrum {

void ResetDump(SumToolFields& w) {
  w.List1.clear();
  w.cmdeditplusEnabled = false;
  w.cmdeditminusEnabled = false;
}

void ClearBuffer(Module1& m) {
  m.frmsumtool.Text1.clear();
  if (m.BufSize > 0) std::memset(m.Buffer.data(), 0xFF, static_cast<std::size_t>(m.BufSize));
  ResetDump(m.frmsumtool);
}

namespace {
void SetFileButtons(SumToolFields& w, bool enabled) {
  w.cmdloadEnabled = w.cmdsaveEnabled = w.cmdbufclearEnabled = w.cmdblstoreEnabled =
      w.cmdbufsumEnabled = enabled;
}
}  // namespace

void cmdbufclear_Click(Module1& m, Platform& platform) {
  if (platform.MsgBox("Buffer Clear OK?", vbQuestionYesNo, "BufferClear") != vbYes) return;
  platform.SetMousePointer(vbHourglass);
  SetFileButtons(m.frmsumtool, false);
  ClearBuffer(m);
  platform.SetMousePointer(vbDefault);
  SetFileButtons(m.frmsumtool, true);
  platform.MsgBox("Buffer Clear Complete!");
}

}  // namespace kestrum
