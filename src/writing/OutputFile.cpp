#include "writing/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <random>
#include <system_error>
#include <utility>

#include "image/Files.h"

namespace kestrum {

namespace fs = std::filesystem;

namespace {

std::string Reason(int error) {
  return error != 0 ? std::generic_category().message(error) : std::string("unknown failure");
}

struct CloseStream {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

// A name that tells the user which file it belongs to, hidden from the file
// lists, that no user file is likely to have.
std::string WorkingName(const fs::path& target, std::mt19937_64& random) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string name = "." + NameOf(target.filename()).substr(0, 200) + ".kestrum-";
  std::uint64_t bits = random();
  for (int i = 0; i < 6; ++i, bits >>= 4) name += kDigits[bits & 0xF];
  return name + ".tmp";
}

// Follows symbolic links, also to a file that doesn't exist yet.
bool ResolveLinks(std::string& path, std::error_code& ec) {
  for (int hops = 0; hops < 40; ++hops) {
    if (!fs::is_symlink(fs::symlink_status(PathOf(path), ec))) return true;
    const fs::path to = fs::read_symlink(PathOf(path), ec);
    if (ec) return false;
    path = NameOf(to.is_absolute() ? to : PathOf(path).parent_path() / to);
  }
  ec = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  return false;
}

std::string FolderOf(const std::string& path) {
  const fs::path folder = PathOf(path).parent_path();
  return folder.empty() ? std::string(".") : NameOf(folder);
}

}  // namespace

OutputFile::OutputFile(OutputFile&& other) noexcept { *this = std::move(other); }

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  if (this != &other) {
    if (!committed_) Discard();
    path_ = std::move(other.path_);
    target_ = std::move(other.target_);
    working_ = std::move(other.working_);
    file_ = std::exchange(other.file_, sys::kNoFile);
    listed_ = std::move(other.listed_);
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
  std::error_code ec;
  if (file_ != sys::kNoFile) sys::Close(std::exchange(file_, sys::kNoFile), ec);
  if (!working_.empty() && working_ != target_) fs::remove(PathOf(working_), ec);
  working_.clear();
  listed_.Reset();
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
  if (!ResolveLinks(out.target_, ec)) {
    out.Fail("create", ec.message());
    return out;
  }
  const fs::file_status status = fs::status(PathOf(out.target_), ec);
  // Every system refuses a folder, not every one in the same words.
  if (fs::is_directory(status)) {
    out.Fail("create", std::make_error_code(std::errc::is_a_directory).message());
    return out;
  }
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    out.file_ = sys::OpenForWriting(out.target_, ec);
    out.working_ = out.target_;
    if (out.file_ == sys::kNoFile) out.Fail("create", ec.message());
    return out;
  }
  const bool replaces = fs::is_regular_file(status);
  // A file the user may not write stays protected, though its folder
  // would let a new file take its name.
  if (replaces) {
    const sys::FileHandle probe = sys::OpenForWriting(out.target_, ec);
    if (probe == sys::kNoFile) {
      out.Fail("create", ec.message());
      return out;
    }
    sys::Close(probe, ec);
  }
  const fs::path folder = PathOf(FolderOf(out.target_));
  std::mt19937_64 random(std::random_device{}() ^ reinterpret_cast<std::uintptr_t>(&out));
  for (int attempt = 0; attempt < 100 && out.file_ == sys::kNoFile; ++attempt) {
    const std::string candidate = NameOf(folder / WorkingName(PathOf(out.target_), random));
    ec.clear();
    // Listed before it is made: an interruption while the file takes the
    // old one's owner and attributes would otherwise leave it behind.
    sys::ListedName listed(candidate);
    out.file_ = sys::CreateExclusive(candidate, replaces ? out.target_ : std::string(), ec);
    if (out.file_ != sys::kNoFile) {
      out.working_ = candidate;
      out.listed_ = std::move(listed);
    } else if (ec != std::errc::file_exists) {
      break;
    }
  }
  if (out.file_ == sys::kNoFile) out.Fail("create", ec.message());
  return out;
}

bool OutputFile::Write(const void* data, std::size_t size) {
  if (!ok()) return false;
  std::error_code ec;
  if (size != 0 && !sys::WriteAll(file_, data, size, ec)) return Fail("write", ec.message());
  return true;
}

bool OutputFile::AppendOldTail(std::uint64_t offset) {
  if (!ok()) return false;
  if (working_ == target_) return true;
  std::error_code ec;
  const fs::file_status status = fs::status(PathOf(target_), ec);
  if (!fs::is_regular_file(status)) return true;
  const std::uintmax_t size = fs::file_size(PathOf(target_), ec);
  if (ec || size <= offset) return true;
  std::unique_ptr<std::FILE, CloseStream> old(OpenBytes(target_, "rb"));
  if (!old) return Fail("keep the end of", Reason(errno));
  if (!SeekBytes(old.get(), static_cast<std::int64_t>(offset), SEEK_SET))
    return Fail("keep the end of", Reason(errno));
  constexpr std::size_t kChunk = std::size_t{1} << 20;
  std::unique_ptr<char[]> chunk(new (std::nothrow) char[kChunk]);
  if (!chunk) return Fail("keep the end of", "out of memory");
  std::uint64_t left = size - offset;
  while (left > 0) {
    const std::size_t want = left < kChunk ? static_cast<std::size_t>(left) : kChunk;
    errno = 0;
    const std::size_t got = std::fread(chunk.get(), 1, want, old.get());
    if (got == 0)
      return Fail("keep the end of", std::ferror(old.get()) ? Reason(errno) : "it became shorter");
    if (!Write(chunk.get(), got)) return false;
    left -= got;
  }
  return true;
}

bool OutputFile::Commit() {
  if (!ok()) return false;
  std::error_code ec;
  const sys::FileHandle file = std::exchange(file_, sys::kNoFile);
  if (!sys::Flush(file, ec)) {
    std::error_code ignored;
    sys::Close(file, ignored);
    return Fail("write", ec.message());
  }
  if (!sys::Close(file, ec)) return Fail("write", ec.message());
  if (working_ != target_ && !Replace()) return false;
  committed_ = true;
  listed_.Reset();
  return true;
}

bool OutputFile::Replace() {
  std::error_code ec;
  if (sys::LinkCount(target_) > 1) {
    bool touched = false;
    if (sys::CopyContent(working_, target_, touched, ec)) {
      fs::remove(PathOf(working_), ec);
      return true;
    }
    if (!touched) return Fail("write", ec.message());
    // The target may hold part of each content now: the whole new one stays.
    failure_ = "Can't write " + path_ + ": " + ec.message() + "; the new content is in " + working_;
    working_.clear();
    return Fail("write", ec.message());
  }
  std::string reason;
  if (!MoveIntoPlace(working_, target_, reason)) return Fail("create", reason);
  working_ = target_;
  if (!sys::FlushFolder(FolderOf(target_), ec)) return Fail("flush the folder of", ec.message());
  return true;
}

TextOutput::TextOutput(OutputFile& file) : file_(file), block_(static_cast<char*>(AllocatePages(kBlock))) {
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

bool TextOutput::Spill() {
  if (!block_) return false;
  const auto held = static_cast<std::size_t>(next_ - block_.get());
  const std::size_t whole = held - held % sys::kWholePiece;
  const bool written = file_.Write(block_.get(), whole);
  std::memmove(block_.get(), block_.get() + whole, held - whole);
  next_ = block_.get() + (held - whole);
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
