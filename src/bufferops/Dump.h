#pragma once
// The dump of the main window: pages of at most 7 rows of 16 bytes from
// DumpAddr, and the Dump, + and - buttons that move them.
#include <string>
#include <vector>

#include "image/Module1.h"
#include "image/Outcome.h"
#include "image/Platform.h"

namespace kestrum {

constexpr Address kDumpRowBytes = 16;
constexpr Address kDumpLastRowOffset = 96;
constexpr Address kDumpPageBytes = 112;

// The rows of the page at DumpAddr: 8 address digits, two blanks, the bytes.
std::vector<std::string> DumpRows(const Module1& m);

// Appends the rows of the page at DumpAddr to List1.
void RefreshDump(Module1& m);

// Which button asks for a page: Dump shows the page at the address, + moves
// it a row up while the page has not reached the end, - a row down (not
// below the area's first address).
enum class DumpStep { Here, Up, Down };

// The page of a button from the address at: DumpAddr set, List1 filled;
// Dump enables + and -, the moves put the page's address in txteditaddr.
// An address outside the area (for +, after its move) is refused with
// "Dump Address Error!", List1 and the buttons as they were.
Outcome DumpPage(Module1& m, Address at, DumpStep step);

namespace frmsumtool {

// The three buttons: refuse an empty txteditaddr, pad it, and show the page.
void cmdedit_Click(Module1& m, Platform& platform);
void cmdeditplus_Click(Module1& m, Platform& platform);
void cmdeditminus_Click(Module1& m, Platform& platform);

}  // namespace frmsumtool

}  // namespace kestrum
