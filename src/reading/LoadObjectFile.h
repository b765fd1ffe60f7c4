#pragma once
// Loading one object file into the image: the format by extension or by
// content, then its reader. A load overlays the image; nothing is cleared
// first and nothing is undone when a record turns out bad.
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "image/Module1.h"
#include "image/Outcome.h"
#include "reading/FileFormat.h"
#include "reading/RecordStore.h"

namespace kestrum {

// How a load ended, and what it read.
struct LoadReport {
  // Done when read to the end of the file (an empty file too); Failed, with
  // the words the window shows, when a bad record stopped the load ("Format
  // Error" or "SUM Error", with its line) or the file could not be opened or
  // read (line 0).
  Outcome outcome;
  ObjectFormat format = ObjectFormat::BIN;
  FormatBasis basis = FormatBasis::Extension;
  std::uint64_t length = 0;       // of the file, in bytes
  std::uint64_t lines = 0;        // lines read, by the reading mode's count
  std::uint64_t dataRecords = 0;  // data records read, stored or passed over
  std::uint64_t stored = 0;       // bytes written into the image

  bool Loaded() const { return outcome.IsDone(); }
};

// How a caller wants a file read. The window's dialog takes the defaults.
struct LoadOptions {
  ReadingMode mode = ReadingMode::Window;
  RecordObserver* observer = nullptr;
  // Told the bytes read so far and the file's length, after each block.
  std::function<void(std::uint64_t done, std::uint64_t total)> progress = {};
  // Whole, sound records are decoded many at a time before the exact reader
  // sees what is left; off, every line goes through the exact reader.
  bool quick = true;
};

// Reads the file m.LoadFileName with the addresses shifted by m.LoadOffset,
// storing only into LoadFirst..LoadLast. bareName, the file's name without
// its folder, gives the extension. The first error stops the load and is
// reported, not shown; what was stored stays. A file that cannot be opened
// or read stops the same way, the words naming the file and the system's
// reason.
LoadReport LoadObjectFile(Module1& m, Address LoadFirst, Address LoadLast, const std::string& bareName,
                          const LoadOptions& options = {});

// The same load over bytes in memory; the words name m.LoadFileName.
LoadReport LoadObjectBytes(Module1& m, Address LoadFirst, Address LoadLast, const std::string& bareName,
                           std::string_view bytes, const LoadOptions& options = {});

}  // namespace kestrum
