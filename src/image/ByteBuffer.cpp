#include "image/ByteBuffer.h"

namespace kestrum {

ByteBuffer ByteBuffer::Allocate(std::size_t count) {
  ByteBuffer buffer;
  // calloc hands out zeroed pages without touching them first.
  buffer.data_.reset(static_cast<std::uint8_t*>(std::calloc(count == 0 ? 1 : count, 1)));
  if (buffer.data_) buffer.size_ = count;
  return buffer;
}

}  // namespace kestrum
