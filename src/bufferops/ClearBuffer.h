#pragma once
// Buffer Clear: the whole image back to FF, and the main window's view of
// the image reset.
#include "image/Module1.h"
#include "image/Platform.h"

namespace kestrum {

// Empties the current file's name and the dump, disables the dump's step
// buttons, and fills the image with FF.
void ClearBuffer(Module1& m);

// Empties the dump and disables its step buttons: what every operation that
// changes the image does to the main window.
void ResetDump(SumToolFields& w);

// The main window's "Buffer Clear" button: asks, clears, reports.
void cmdbufclear_Click(Module1& m, Platform& platform);

}  // namespace kestrum
