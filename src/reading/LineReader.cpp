#include "reading/LineReader.h"

#include <algorithm>
#include <cstring>

namespace kestrum {

namespace {
constexpr char kCr = '\r';
constexpr char kLf = '\n';
}  // namespace

LineReader::LineReader(ByteSource& source, std::size_t blockSize)
    : source_(source), block_(std::max<std::size_t>(blockSize, 1)) {}

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

bool LineReader::Next(Line& line) {
  if (!SkipPendingLf()) return false;
  std::size_t scanned = begin_;  // [begin_, scanned) holds no CR
  for (;;) {
    const char* from = block_.data() + scanned;
    const auto* cr = static_cast<const char*>(std::memchr(from, kCr, end_ - scanned));
    if (cr) {
      const std::size_t at = static_cast<std::size_t>(cr - block_.data());
      line.text = std::string_view(block_.data() + begin_, at - begin_);
      line.length = line.text.size();
      begin_ = at + 1;
      if (begin_ < end_) {
        if (block_[begin_] == kLf) ++begin_;
      } else {
        pendingLf_ = true;
      }
      ++number_;
      return true;
    }
    scanned = end_;
    if (atEnd_) {
      if (begin_ == end_) return false;
      line.text = std::string_view(block_.data() + begin_, end_ - begin_);
      line.length = line.text.size();
      begin_ = end_;
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
      ReadLongLine(line);
      return !source_.Failed();
    }
    Fill();
    if (source_.Failed()) return false;
  }
}

void LineReader::ReadLongLine(Line& line) {
  head_.assign(block_.data(), std::min(end_, kLongLineHead));
  std::uint64_t length = end_;
  begin_ = end_ = 0;
  for (;;) {
    if (!Fill()) break;
    const auto* cr = static_cast<const char*>(std::memchr(block_.data(), kCr, end_));
    if (cr) {
      const std::size_t at = static_cast<std::size_t>(cr - block_.data());
      length += at;
      begin_ = at + 1;
      if (begin_ < end_) {
        if (block_[begin_] == kLf) ++begin_;
      } else {
        pendingLf_ = true;
      }
      break;
    }
    length += end_;
    end_ = 0;
  }
  line.text = head_;
  line.length = length;
  ++number_;
}

}  // namespace kestrum
