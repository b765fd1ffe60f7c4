#pragma once
// The dump of the main window: pages of at most 7 rows of 16 bytes from
// DumpAddr, and the Dump, + and - buttons that move them.
#include <string>
#include <vector>

#include "image/Module1.h"
#include "image/Platform.h"

namespace kestrum {

constexpr Address kDumpRowBytes = 16;
constexpr Address kDumpLastRowOffset = 96;
constexpr Address kDumpPageBytes = 112;

// The rows of the page at DumpAddr: 8 address digits, two blanks, the bytes.
std::vector<std::string> DumpRows(const Module1& m);

// Appends the rows of the page at DumpAddr to List1.
void RefreshDump(Module1& m);

void cmdedit_Click(Module1& m, Platform& platform);
void cmdeditplus_Click(Module1& m, Platform& platform);
void cmdeditminus_Click(Module1& m, Platform& platform);

}  // namespace kestrum
