#pragma once
// The four writers of a save. Each writes SaveFirst..SaveLast of the image
// (both in the area, SaveFirst <= SaveLast) to one file, which takes its
// name only once it is complete. A writer that fails shows why through the
// platform, sets FileError to -1 and says how it ended.
#include <cstdint>
#include <functional>
#include <string>

#include "image/Module1.h"
#include "image/Platform.h"

namespace kestrum {

enum class SaveOutcome {
  Done,
  RecordLengthError,  // an S record too long for its count; "Record Length Error!" shown
  FileFailure,        // the file could not be made or written; its name and the reason shown
};

struct WriteOptions {
  // BIN: the user agreed to replace the file, so no end of an older, longer
  // file stays behind the new bytes.
  bool replaceWhole = false;
  // S: a file cut short by a record length error still takes the name, with
  // the records before the failing one. Otherwise the old file stays.
  bool keepPartial = true;
  // BIN, HEX and S: told now and then how many bytes of the range are written.
  std::function<void(std::uint64_t done, std::uint64_t total)> progress;
};

inline constexpr const char* kRecordLengthError = "Record Length Error!";

// The bytes of the range and nothing else. Unless options.replaceWhole, an
// existing longer file keeps its bytes past the new ones.
SaveOutcome SaveBinFile(Module1& m, Platform& platform, const std::string& FileName,
                        const WriteOptions& options = {});

// Intel HEX, RecordLength (1..255) data bytes a record; the record in which
// the range ends is cut only at BufLast.
SaveOutcome SaveHexFile(Module1& m, Platform& platform, const std::string& FileName,
                        const WriteOptions& options = {});

// Motorola S1/S2/S3 by each record's own address, the last record cut at
// SaveLast. Starts by clearing FileError.
SaveOutcome SaveSFile(Module1& m, Platform& platform, const std::string& FileName,
                      const WriteOptions& options = {});

// The three-line YSM file with the sum named by sumFormat ("8-8SUM",
// "8-16SUM" or "16-16SUM", any case); any other name gives an empty file.
SaveOutcome SaveYsmFile(Module1& m, Platform& platform, const std::string& FileName,
                        const std::string& sumFormat);

}  // namespace kestrum
