#pragma once
// The lines of a text object file. A CR, or a CR LF pair, ends a line and is
// no part of it; a lone LF ends nothing and stays in the text. Only the end
// of the file ends reading: a last line without a line end is read up to it,
// and a file that ends with a line end gives no further empty line.
//
// The file is read in large blocks and lines are cut out of the block in
// place: no system call per byte and no list of all lines.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reading/ByteSource.h"

namespace kestrum {

struct Line {
  // The whole line, or only its head when the line is longer than a block:
  // no sound record comes near that length, and its head is enough to tell.
  std::string_view text;
  // The length in characters, counted in full.
  std::uint64_t length = 0;
  bool Whole() const { return text.size() == length; }
};

class LineReader {
 public:
  static constexpr std::size_t kBlockSize = std::size_t{1} << 20;
  static constexpr std::size_t kLongLineHead = 4096;

  explicit LineReader(ByteSource& source, std::size_t blockSize = kBlockSize);

  // The next line; false at the end of the file or on a read failure (then
  // source().Failed()). The text stays valid until the next call.
  bool Next(Line& line);

  // The number of the line last given, counted from 1.
  std::uint64_t LineNumber() const { return number_; }
  ByteSource& source() { return source_; }

 private:
  // Appends what the source gives to the block; false when it gave nothing.
  bool Fill();
  void ReadLongLine(Line& line);
  // Passes the LF of a CR LF pair whose CR closed the last block.
  bool SkipPendingLf();

  ByteSource& source_;
  std::vector<char> block_;
  std::size_t begin_ = 0;  // first byte not yet given out
  std::size_t end_ = 0;    // end of the bytes in the block
  bool atEnd_ = false;
  bool pendingLf_ = false;
  std::string head_;
  std::uint64_t number_ = 0;
};

}  // namespace kestrum
