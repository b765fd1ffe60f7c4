#pragma once
// Start-up and exit of the main window: the buffer area comes from the store
// and goes back to it.
#include "image/Module1.h"
#include "image/Settings.h"

namespace kestrum {

namespace frmsumtool {

// Reads the stored area into the main window's fields, sizes the image and
// fills it with FF; a stored area that can't be had gives the default area,
// silently. False only when not even the default area could be had.
bool Form_Load(Module1& m, SettingsStore& store);

}  // namespace frmsumtool

// Both ways of leaving store the two area fields of the main window.
void StoreAreaOnExit(const Module1& m, SettingsStore& store);

}  // namespace kestrum
