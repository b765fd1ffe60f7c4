#pragma once
// Loading one object file into the image: the format by extension or by
// content, then its reader. A load overlays the image; nothing is cleared
// first and nothing is undone when a record turns out bad.
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "image/Module1.h"
#include "image/Platform.h"
#include "reading/FileFormat.h"
#include "reading/RecordText.h"

namespace kestrum {

// How a load ended, for callers that tell more than the window does.
struct LoadReport {
  enum class Outcome {
    Loaded,       // read to the end of the file (an empty file too)
    Refused,      // a field of the dialog was refused; nothing was read
    RecordError,  // a bad record stopped the load: "Format Error" or "SUM Error"
    FileFailure,  // the file could not be opened or read
  };
  Outcome outcome = Outcome::Loaded;
  ObjectFormat format = ObjectFormat::BIN;
  FormatBasis basis = FormatBasis::Extension;
  std::uint64_t line = 0;         // the failing record's line, counted from 1
  std::string message;            // the words the message box showed
  std::uint64_t length = 0;       // of the file, in bytes
  std::uint64_t lines = 0;        // lines read, by the reading mode's count
  std::uint64_t dataRecords = 0;  // data records read, stored or passed over
  std::uint64_t stored = 0;       // bytes written into the image

  bool Loaded() const { return outcome == Outcome::Loaded; }
};

// How a caller wants a file read. The window's dialog takes the defaults.
struct LoadOptions {
  ReadingMode mode = ReadingMode::Window;
  RecordObserver* observer = nullptr;
  // Told the bytes read so far and the file's length, after each block.
  std::function<void(std::uint64_t done, std::uint64_t total)> progress;
  // Whole, sound records are decoded many at a time before the exact reader
  // sees what is left; off, every line goes through the exact reader.
  bool quick = true;
};

// Reads the file m.LoadFileName with the addresses shifted by m.LoadOffset,
// storing only into LoadFirst..LoadLast. bareName, the file's name without
// its folder, gives the extension. The first error stops the load: the
// pointer goes back to default, the message is shown, FileError becomes -1
// and the file is closed; what was stored stays. A file that cannot be
// opened or read stops the same way, the message naming the file and the
// system's reason.
LoadReport LoadObjectFile(Module1& m, Platform& platform, Address LoadFirst, Address LoadLast,
                          const std::string& bareName, const LoadOptions& options = {});

// The same load over bytes in memory; messages name m.LoadFileName.
LoadReport LoadObjectBytes(Module1& m, Platform& platform, Address LoadFirst, Address LoadLast,
                           const std::string& bareName, std::string_view bytes,
                           const LoadOptions& options = {});

}  // namespace kestrum
