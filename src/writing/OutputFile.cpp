#include "writing/OutputFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>
#include <random>
#include <system_error>
#include <utility>

namespace kestrum {

namespace fs = std::filesystem;

namespace {

std::string Reason(int error) {
  return error != 0 ? std::generic_category().message(error) : std::string("unknown failure");
}

// A name that no user file is likely to have, hidden from the file lists.
std::string WorkingName(std::mt19937_64& random) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string name = ".kestrum-";
  std::uint64_t bits = random();
  for (int i = 0; i < 12; ++i, bits >>= 4) name += kDigits[bits & 0xF];
  return name + ".tmp";
}

}  // namespace

OutputFile::OutputFile(OutputFile&& other) noexcept { *this = std::move(other); }

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  if (this != &other) {
    if (!committed_) Discard();
    path_ = std::move(other.path_);
    target_ = std::move(other.target_);
    working_ = std::move(other.working_);
    file_ = std::move(other.file_);
    failure_ = std::move(other.failure_);
    committed_ = other.committed_;
    other.working_.clear();
    other.committed_ = true;
  }
  return *this;
}

OutputFile::~OutputFile() {
  if (!committed_) Discard();
}

bool OutputFile::Fail(const char* doing, const std::string& reason) {
  if (failure_.empty()) failure_ = std::string("Can't ") + doing + " " + path_ + ": " + reason;
  Discard();
  return false;
}

void OutputFile::Discard() {
  file_.reset();
  if (!working_.empty() && working_ != target_) {
    std::error_code ec;
    fs::remove(working_, ec);
  }
  working_.clear();
}

OutputFile OutputFile::Create(const std::string& path) {
  OutputFile out;
  out.path_ = path;
  out.target_ = path;
  if (path.empty()) {
    out.Fail("create", "the name is empty");
    return out;
  }
  // The system would end the name at the NUL and write another file.
  if (path.find('\0') != std::string::npos) {
    out.Fail("create", "the name holds a NUL character");
    return out;
  }
  std::error_code ec;
  // Through a link the content goes to the file it points at; the link stays.
  if (fs::is_symlink(fs::symlink_status(path, ec))) {
    fs::path resolved = fs::weakly_canonical(path, ec);
    if (!ec) out.target_ = resolved.string();
  }
  const fs::file_status status = fs::status(out.target_, ec);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    errno = 0;
    out.file_.reset(std::fopen(out.target_.c_str(), "wb"));
    if (!out.file_) {
      out.Fail("create", Reason(errno));
      return out;
    }
    out.working_ = out.target_;
  } else {
    // A file the user may not write stays protected, though its folder
    // would let a new file take its name.
    if (fs::is_regular_file(status)) {
      errno = 0;
      std::unique_ptr<std::FILE, Close> probe(std::fopen(out.target_.c_str(), "ab"));
      if (!probe) {
        out.Fail("create", Reason(errno));
        return out;
      }
    }
    fs::path folder = fs::path(out.target_).parent_path();
    if (folder.empty()) folder = ".";
    std::mt19937_64 random(std::random_device{}() ^ reinterpret_cast<std::uintptr_t>(&out));
    int error = 0;
    for (int attempt = 0; attempt < 100 && !out.file_; ++attempt) {
      const std::string candidate = (folder / WorkingName(random)).string();
      errno = 0;
      out.file_.reset(std::fopen(candidate.c_str(), "wbx"));
      error = errno;
      if (out.file_) out.working_ = candidate;
      else if (error != EEXIST) break;
    }
    if (!out.file_) {
      out.Fail("create", Reason(error));
      return out;
    }
  }
  // The writers hand over large blocks; a second buffer would only copy them.
  std::setvbuf(out.file_.get(), nullptr, _IONBF, 0);
  return out;
}

bool OutputFile::Write(const void* data, std::size_t size) {
  if (!ok()) return false;
  if (size == 0) return true;
  errno = 0;
  if (std::fwrite(data, 1, size, file_.get()) != size) return Fail("write", Reason(errno));
  return true;
}

bool OutputFile::AppendOldTail(std::uint64_t offset) {
  if (!ok()) return false;
  if (working_ == target_) return true;
  std::error_code ec;
  const fs::file_status status = fs::status(target_, ec);
  if (!fs::is_regular_file(status)) return true;
  const std::uintmax_t size = fs::file_size(target_, ec);
  if (ec || size <= offset) return true;
  std::unique_ptr<std::FILE, Close> old(std::fopen(target_.c_str(), "rb"));
  if (!old) return Fail("keep the end of", Reason(errno));
  if (std::fseek(old.get(), static_cast<long>(offset), SEEK_SET) != 0)
    return Fail("keep the end of", Reason(errno));
  constexpr std::size_t kChunk = std::size_t{1} << 20;
  std::unique_ptr<char[]> chunk(new (std::nothrow) char[kChunk]);
  if (!chunk) return Fail("keep the end of", "out of memory");
  std::uint64_t left = size - offset;
  while (left > 0) {
    const std::size_t want = left < kChunk ? static_cast<std::size_t>(left) : kChunk;
    errno = 0;
    const std::size_t got = std::fread(chunk.get(), 1, want, old.get());
    if (got == 0) return Fail("keep the end of", std::ferror(old.get()) ? Reason(errno) : "it became shorter");
    if (!Write(chunk.get(), got)) return false;
    left -= got;
  }
  return true;
}

bool OutputFile::Commit() {
  if (!ok()) return false;
  errno = 0;
  std::FILE* f = file_.release();
  if (std::fclose(f) != 0) return Fail("write", Reason(errno));
  if (working_ != target_) {
    std::error_code ec;
    const fs::file_status old = fs::status(target_, ec);
    if (fs::is_regular_file(old)) fs::permissions(working_, old.permissions(), ec);
    fs::rename(working_, target_, ec);
    if (ec) return Fail("create", ec.message());
  }
  committed_ = true;
  return true;
}

TextOutput::TextOutput(OutputFile& file)
    : file_(file), block_(static_cast<char*>(AllocatePages(kBlock))) {
  next_ = block_.get();
  end_ = block_ ? next_ + kBlock : next_;
  if (!block_) file_.Fail("write", "out of memory");
}

bool TextOutput::Flush() {
  if (!block_) return false;
  const bool written = file_.Write(block_.get(), static_cast<std::size_t>(next_ - block_.get()));
  next_ = block_.get();
  return written;
}

bool TextOutput::Put(const char* text, std::size_t size) {
  char* room = Room(size);
  if (!room) return false;
  std::memcpy(room, text, size);
  Used(room + size);
  return true;
}

}  // namespace kestrum
