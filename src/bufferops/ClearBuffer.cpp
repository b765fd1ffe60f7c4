#include "bufferops/ClearBuffer.h"

#include <cstring>

#include "image/BusyScope.h"

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

void cmdbufclear_Click(Module1& m, Platform& platform) {
  if (platform.MsgBox("Buffer Clear OK?", vbQuestionYesNo, "BufferClear") != vbYes) return;
  {
    SumToolFields& w = m.frmsumtool;
    const BusyScope busy(platform, {&w.cmdloadEnabled, &w.cmdsaveEnabled, &w.cmdbufclearEnabled,
                                    &w.cmdblstoreEnabled, &w.cmdbufsumEnabled});
    ClearBuffer(m);
  }
  platform.MsgBox("Buffer Clear Complete!");
}

}  // namespace kestrum
