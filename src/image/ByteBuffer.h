#pragma once
// The memory behind the image: one zero-filled allocation on large pages
// that reports a failure instead of throwing, and is moved, never copied.
#include <cstddef>
#include <cstdint>
#include <memory>

#include "image/PageMemory.h"

namespace kestrum {

class ByteBuffer {
 public:
  ByteBuffer() = default;

  // Zero-filled bytes, or an empty buffer with ok() false when memory is short.
  static ByteBuffer Allocate(std::size_t count);

  std::uint8_t& operator[](std::size_t i) { return data_[i]; }
  const std::uint8_t& operator[](std::size_t i) const { return data_[i]; }
  std::uint8_t* data() { return data_.get(); }
  const std::uint8_t* data() const { return data_.get(); }
  std::size_t size() const { return size_; }
  bool ok() const { return data_ != nullptr; }

 private:
  struct Free {
    std::size_t count;  // what was asked for; zero in an empty buffer
    void operator()(std::uint8_t* p) const { ReleasePages(p, count); }
  };
  std::unique_ptr<std::uint8_t[], Free> data_;
  std::size_t size_ = 0;
};

}  // namespace kestrum
