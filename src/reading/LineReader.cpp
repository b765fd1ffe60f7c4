#include "reading/LineReader.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define KESTRUM_SSE2 1
#endif

namespace kestrum {

namespace {
constexpr char kCr = '\r';
constexpr char kLf = '\n';

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// The blanks and tabs that end text.
std::size_t TrailingBlanks(std::string_view text) {
  std::size_t n = 0;
  while (n < text.size() && IsBlank(text[text.size() - 1 - n])) ++n;
  return n;
}

// The first CR or LF from p on, or nullptr: sixteen or eight bytes at a
// time, since a search for each of the two would go over every line twice.
const char* FirstLineEnd(const char* p, const char* end) {
#ifdef KESTRUM_SSE2
  const __m128i cr = _mm_set1_epi8(kCr), lf = _mm_set1_epi8(kLf);
  for (; end - p >= 16; p += 16) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const int found = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(x, cr), _mm_cmpeq_epi8(x, lf)));
    if (found != 0) return p + std::countr_zero(static_cast<unsigned>(found));
  }
#endif
  if constexpr (std::endian::native == std::endian::little) {
    constexpr std::uint64_t kOnes = 0x0101010101010101, kHigh = 0x80 * kOnes;
    for (; end - p >= 8; p += 8) {
      std::uint64_t x;
      std::memcpy(&x, p, 8);
      const std::uint64_t xcr = x ^ (kCr * kOnes), xlf = x ^ (kLf * kOnes);
      // A byte of zero sets its high bit; only bytes above the first can be set wrongly.
      const std::uint64_t found = (((xcr - kOnes) & ~xcr) | ((xlf - kOnes) & ~xlf)) & kHigh;
      if (found != 0) return p + std::countr_zero(found) / 8;
    }
  }
  for (; p < end; ++p)
    if (*p == kCr || *p == kLf) return p;
  return nullptr;
}

// Old systems fill the rest of a file's last sector with Ctrl-Z.
bool OnlyCtrlZ(std::string_view text) { return text.find_first_not_of("\x1A \t") == std::string_view::npos; }
}  // namespace

LineReader::LineReader(ByteSource& source, std::size_t blockSize, ReadingMode mode)
    : source_(source), block_(std::max<std::size_t>(blockSize, 1)), mode_(mode) {}

bool LineReader::Fill() {
  if (atEnd_) return false;
  const std::size_t got =
      source_.Read(reinterpret_cast<std::uint8_t*>(block_.data() + end_), block_.size() - end_);
  if (got == 0) atEnd_ = true;
  end_ += got;
  return got > 0;
}

bool LineReader::SkipPendingLf() {
  if (!pendingLf_) return true;
  if (begin_ == end_) {
    begin_ = end_ = 0;
    Fill();
    if (source_.Failed()) return false;
  }
  if (begin_ < end_ && block_[begin_] == kLf) ++begin_;
  pendingLf_ = false;
  return true;
}

std::size_t LineReader::FindEnd(std::size_t from) const {
  const char* base = block_.data();
  if (mode_ == ReadingMode::Window) {
    const auto* cr = static_cast<const char*>(std::memchr(base + from, kCr, end_ - from));
    return cr ? static_cast<std::size_t>(cr - base) : kNone;
  }
  const char* at = FirstLineEnd(base + from, base + end_);
  return at ? static_cast<std::size_t>(at - base) : kNone;
}

void LineReader::PassEnd(std::size_t at) {
  begin_ = at + 1;
  if (block_[at] != kCr) return;
  if (begin_ < end_) {
    if (block_[begin_] == kLf) ++begin_;
  } else {
    pendingLf_ = true;
  }
}

bool LineReader::Next(Line& line) {
  for (;;) {
    bool atEof = false;
    if (!NextCut(line, atEof)) return false;
    if (mode_ == ReadingMode::Window || Tidy(line, atEof)) return true;
  }
}

bool LineReader::Tidy(Line& line, bool atEof) const {
  if (line.Whole()) {
    line.text.remove_suffix(TrailingBlanks(line.text));
    line.length = line.text.size();
  } else {
    line.length -= longTrailing_;
    if (line.text.size() > line.length) line.text = line.text.substr(0, line.length);
  }
  if (line.length == 0) return false;
  return !(atEof && (line.Whole() ? OnlyCtrlZ(line.text) : longCtrlZ_));
}

bool LineReader::NextCut(Line& line, bool& atEof) {
  if (!SkipPendingLf()) return false;
  std::size_t scanned = begin_;  // [begin_, scanned) holds no line end
  for (;;) {
    const std::size_t at = FindEnd(scanned);
    if (at != kNone) {
      line.text = std::string_view(block_.data() + begin_, at - begin_);
      line.length = line.text.size();
      PassEnd(at);
      ++number_;
      return true;
    }
    scanned = end_;
    if (atEnd_) {
      if (begin_ == end_) return false;
      line.text = std::string_view(block_.data() + begin_, end_ - begin_);
      line.length = line.text.size();
      begin_ = end_;
      atEof = true;
      ++number_;
      return true;
    }
    if (begin_ > 0) {
      std::memmove(block_.data(), block_.data() + begin_, end_ - begin_);
      end_ -= begin_;
      scanned -= begin_;
      begin_ = 0;
    }
    if (end_ == block_.size()) {
      ReadLongLine(line, atEof);
      return !source_.Failed();
    }
    Fill();
    if (source_.Failed()) return false;
  }
}

void LineReader::ReadLongLine(Line& line, bool& atEof) {
  head_.assign(block_.data(), std::min(end_, kLongLineHead));
  std::uint64_t length = end_;
  // Trailing blanks are counted over the whole line; only tolerant mode drops them.
  const auto countTrailing = [&](std::size_t n) {
    const std::string_view piece(block_.data(), n);
    const std::size_t blanks = TrailingBlanks(piece);
    longTrailing_ = blanks == n ? longTrailing_ + blanks : blanks;
    longCtrlZ_ = longCtrlZ_ && OnlyCtrlZ(piece);
  };
  longTrailing_ = 0;
  longCtrlZ_ = true;
  countTrailing(end_);
  begin_ = end_ = 0;
  for (;;) {
    if (!Fill()) {
      atEof = true;
      break;
    }
    const std::size_t at = FindEnd(0);
    if (at != kNone) {
      length += at;
      countTrailing(at);
      PassEnd(at);
      break;
    }
    length += end_;
    countTrailing(end_);
    end_ = 0;
  }
  line.text = head_;
  line.length = length;
  ++number_;
}

LineEndCount CountLineEnds(ByteSource& source) {
  LineEndCount count;
  std::vector<std::uint8_t> block(LineReader::kBlockSize);
  bool afterCr = false;
  for (std::size_t got; (got = source.Read(block.data(), block.size())) > 0;) {
    for (std::size_t i = 0; i < got; ++i) {
      const char c = static_cast<char>(block[i]);
      if (c == kLf)
        afterCr ? ++count.crlf : ++count.lf;
      else if (afterCr)
        ++count.cr;
      afterCr = c == kCr;
    }
  }
  if (afterCr) ++count.cr;
  return count;
}

}  // namespace kestrum
