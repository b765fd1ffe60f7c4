#pragma once
// The lines of a text object file, cut by the reading mode's rules: in window
// mode a CR, or a CR LF pair, ends a line and is no part of it, and a lone LF
// ends nothing and stays in the text; in tolerant mode an LF ends a line as
// well, and blank lines and trailing blanks go. Only the end of the file ends
// reading: a last line without a line end is read up to it, and a file that
// ends with a line end gives no further empty line.
//
// The file is read in large blocks and lines are cut out of the block in
// place: no system call per byte and no list of all lines.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reading/ByteSource.h"
#include "reading/ReadingMode.h"

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

  explicit LineReader(ByteSource& source, std::size_t blockSize = kBlockSize,
                      ReadingMode mode = ReadingMode::Window);

  // The next line; false at the end of the file or on a read failure (then
  // the source's Failed()). The text stays valid until the next call.
  bool Next(Line& line);

  // The number of the line last given, counted from 1. In tolerant mode
  // lines are counted as a text editor counts them: the passed-over ones too.
  std::uint64_t LineNumber() const { return number_; }

  // The bytes of the block not given out yet, for a caller that takes whole
  // lines from them itself (empty while a CR LF pair is split between two
  // blocks); Took says how many characters and lines it took, line ends
  // included.
  std::string_view Rest() const {
    return pendingLf_ ? std::string_view() : std::string_view(block_.data() + begin_, end_ - begin_);
  }
  void Took(std::size_t chars, std::uint64_t lines) {
    begin_ += chars;
    number_ += lines;
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  // The next line as the line ends cut it; atEof when the file ended it.
  bool NextCut(Line& line, bool& atEof);
  // Tolerant mode's tidying of a cut line; false for one that is passed over.
  bool Tidy(Line& line, bool atEof) const;
  // Appends what the source gives to the block; false when it gave nothing.
  bool Fill();
  void ReadLongLine(Line& line, bool& atEof);
  // The first line end in the block from index from on, or kNone.
  std::size_t FindEnd(std::size_t from) const;
  // Passes the line end at index at: a CR takes the LF behind it along.
  void PassEnd(std::size_t at);
  // Passes the LF of a CR LF pair whose CR closed the last block.
  bool SkipPendingLf();

  ByteSource& source_;
  std::vector<char> block_;
  std::size_t begin_ = 0;  // first byte not yet given out
  std::size_t end_ = 0;    // end of the bytes in the block
  bool atEnd_ = false;
  bool pendingLf_ = false;
  std::string head_;
  std::uint64_t longTrailing_ = 0;  // blanks and tabs ending the last long line
  bool longCtrlZ_ = false;          // whether it held nothing but Ctrl-Z
  std::uint64_t number_ = 0;
  ReadingMode mode_;
};

// The line ends a text holds, a CR LF pair counted once and not as a CR or
// an LF.
struct LineEndCount {
  std::uint64_t crlf = 0, cr = 0, lf = 0;
};

// Reads the source to its end; a failure shows in source.Failed().
LineEndCount CountLineEnds(ByteSource& source);

}  // namespace kestrum
