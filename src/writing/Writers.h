#pragma once
// The four writers of a save. Each writes SaveFirst..SaveLast of the image
// (both in the area, SaveFirst <= SaveLast) to one file, which takes its
// name only once it is complete. Each says how it ended and shows nothing:
// Done; Refused, with the words, for a record length its records can't
// take; Failed, naming the file and the reason, when the file could not be
// made or written.
#include <cstdint>
#include <functional>
#include <string>

#include "image/Formats.h"
#include "image/Module1.h"
#include "image/Outcome.h"

namespace kestrum {

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
Outcome SaveBinFile(Module1& m, const std::string& FileName, const WriteOptions& options = {});

// Intel HEX, RecordLength (1..255) data bytes a record; the record in which
// the range ends is cut only at BufLast.
Outcome SaveHexFile(Module1& m, const std::string& FileName, const WriteOptions& options = {});

// Motorola S1/S2/S3 by each record's own address, the last record cut at
// SaveLast. A record whose count would pass 255 stops it with "Record
// Length Error!".
Outcome SaveSFile(Module1& m, const std::string& FileName, const WriteOptions& options = {});

// The writer of format.
Outcome SaveObjectFile(Module1& m, ObjectFormat format, const std::string& FileName,
                       const WriteOptions& options = {});

// The three-line YSM file with the sum of the range.
Outcome SaveYsmFile(Module1& m, const std::string& FileName, SumKind sum);

}  // namespace kestrum
