#include "image/ByteBuffer.h"

namespace kestrum {

ByteBuffer ByteBuffer::Allocate(std::size_t count) {
  ByteBuffer buffer;
  // Zeroed pages are handed out without being touched first.
  buffer.data_ =
      std::unique_ptr<std::uint8_t[], Free>(static_cast<std::uint8_t*>(AllocatePages(count)), Free{count});
  if (buffer.data_) buffer.size_ = count;
  return buffer;
}

}  // namespace kestrum
