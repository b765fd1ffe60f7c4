#pragma once
// Buffer Clear: the whole image back to FF, and the main window's view of
// the image reset (ClearBuffer and ResetDump, with the image's state).
#include "image/Module1.h"
#include "image/Outcome.h"
#include "image/Platform.h"

namespace kestrum {

// ClearBuffer, with its notice.
Outcome BufferClear(Module1& m);

namespace frmsumtool {

// The main window's "Buffer Clear" button: asks, clears, reports.
void cmdbufclear_Click(Module1& m, Platform& platform);

}  // namespace frmsumtool

}  // namespace kestrum
