#include "reading/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include "image/Files.h"

namespace kestrum {

namespace {
std::string ErrnoText(int code) { return std::generic_category().message(code); }
}  // namespace

std::size_t MemorySource::Read(std::uint8_t* dst, std::size_t count) {
  const std::size_t n = std::min(count, bytes_.size() - pos_);
  if (n > 0) std::memcpy(dst, bytes_.data() + pos_, n);
  pos_ += n;
  return n;
}

bool MemorySource::Skip(std::uint64_t count) {
  pos_ += static_cast<std::size_t>(std::min<std::uint64_t>(count, bytes_.size() - pos_));
  return true;
}

bool MemorySource::Rewind() {
  pos_ = 0;
  return true;
}

bool FileSource::Open(const std::string& path) {
  errno = 0;
  file_.reset(OpenBytes(path, "rb"));
  if (!file_) {
    Fail(ErrnoText(errno != 0 ? errno : EIO));
    return false;
  }
  // Every read asks for a large block: a buffer of the stream's own would
  // only add a copy.
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  return true;
}

std::size_t FileSource::Read(std::uint8_t* dst, std::size_t count) {
  if (!file_ || Failed()) return 0;
  errno = 0;
  const std::size_t n = std::fread(dst, 1, count, file_.get());
  if (n < count && std::ferror(file_.get())) Fail(ErrnoText(errno != 0 ? errno : EIO));
  return n;
}

bool FileSource::Skip(std::uint64_t count) {
  if (!file_ || Failed()) return false;
  // A seek can pass the end of the file without a word; that is what a
  // short read afterwards finds.
  while (count > 0) {
    const auto step = static_cast<std::int64_t>(std::min<std::uint64_t>(count, INT64_MAX));
    errno = 0;
    if (!SeekBytes(file_.get(), step, SEEK_CUR)) {
      Fail(ErrnoText(errno != 0 ? errno : EIO));
      return false;
    }
    count -= static_cast<std::uint64_t>(step);
  }
  return true;
}

bool FileSource::Rewind() {
  if (!file_ || Failed()) return false;
  errno = 0;
  if (std::fseek(file_.get(), 0, SEEK_SET) != 0) {
    Fail(ErrnoText(errno != 0 ? errno : EIO));
    return false;
  }
  return true;
}

bool ProgressSource::Follow(bool ok) {
  if (inner_.Failed()) Fail(inner_.Failure());
  return ok && !Failed();
}

std::size_t ProgressSource::Read(std::uint8_t* dst, std::size_t count) {
  const std::size_t n = inner_.Read(dst, count);
  Follow(true);
  done_ += n;
  report_(done_, total_);
  return n;
}

bool ProgressSource::Skip(std::uint64_t count) {
  done_ += count;
  return Follow(inner_.Skip(count));
}

bool ProgressSource::Rewind() {
  done_ = 0;
  return Follow(inner_.Rewind());
}

bool FileLength(const std::string& path, std::uint64_t& length, std::string& reason) {
  namespace fs = std::filesystem;
  // The system would end the name at the NUL and read another file.
  if (path.find('\0') != std::string::npos) {
    reason = "the name holds a NUL character";
    return false;
  }
  std::error_code ec;
  const fs::path name = PathOf(path);
  const fs::file_status status = fs::status(name, ec);
  if (ec || !fs::exists(status)) {
    reason = ec ? ec.message() : std::make_error_code(std::errc::no_such_file_or_directory).message();
    return false;
  }
  if (fs::is_directory(status)) {
    reason = std::make_error_code(std::errc::is_a_directory).message();
    return false;
  }
  if (!fs::is_regular_file(status)) {
    // A pipe or a device has no length to read an image by.
    reason = "not a regular file";
    return false;
  }
  length = fs::file_size(name, ec);
  if (ec) {
    reason = ec.message();
    return false;
  }
  return true;
}

}  // namespace kestrum
