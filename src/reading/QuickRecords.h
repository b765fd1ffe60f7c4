#pragma once
// The quick road through a text object file. Whole data records that are
// well formed, lie whole in the load range, have the right checksum and end
// with the line end that their count predicts are decoded straight from the
// reader's block, many lines at a time. The first line that is anything
// else (a bad digit, a wrong length or checksum, another record type, a
// record the range clips, a line end the block splits) is left to the exact
// reader, so that bytes, messages and line numbers are those of the exact
// reader alone.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "image/Module1.h"

namespace kestrum {

struct QuickRun {
  std::size_t chars = 0;     // characters taken, line ends included
  std::uint64_t lines = 0;   // lines taken, each one record
  std::uint64_t stored = 0;  // bytes stored into the image
};

// What ends a line besides CR LF: an LF alone, in tolerant reading.
enum class QuickLineEnd { CrLf, CrLfOrLf };

// How digits are decoded: the widest vectors the processor has (AVX2 where
// it has them, else SSE2 on x86-64), SSE2, or pair by pair. The tests hold
// each to the exact reader; a code the processor lacks runs as Widest.
enum class QuickCode { Widest, Sse2, Pairs };

// Data records ("00") from text, their addresses + base + LoadOffset.
QuickRun QuickHexRecords(Module1& m, std::string_view text, Address base, Address LoadFirst, Address LoadLast,
                         QuickLineEnd ends, QuickCode code = QuickCode::Widest);

// Data records "S1", "S2" and "S3" from text, their addresses + LoadOffset.
QuickRun QuickSRecords(Module1& m, std::string_view text, Address LoadFirst, Address LoadLast,
                       QuickLineEnd ends, QuickCode code = QuickCode::Widest);

}  // namespace kestrum
