#include "bufferops/ClearBuffer.h"

#include "image/DialogSupport.h"

namespace kestrum {

Outcome BufferClear(Module1& m) {
  ClearBuffer(m);
  return Outcome::Done("Buffer Clear Complete!");
}

void frmsumtool::cmdbufclear_Click(Module1& m, Platform& platform) {
  if (platform.MsgBox("Buffer Clear OK?", vbQuestionYesNo, "BufferClear") != vbYes) return;
  SumToolFields& w = m.frmsumtool;
  RunChecked(Outcome::Done(), platform,
             {&w.cmdloadEnabled, &w.cmdsaveEnabled, &w.cmdbufclearEnabled, &w.cmdblstoreEnabled,
              &w.cmdbufsumEnabled},
             [&] { return BufferClear(m); });
}

}  // namespace kestrum
