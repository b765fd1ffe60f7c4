#pragma once
// The one place where the writers touch the disk. A file being written is
// made beside its target, named after it (.NAME.kestrum-XXXXXX.tmp), with
// the target's rights from the start, and takes the target's name only when
// it is whole and on the disk, so a failure at any point leaves whatever
// stood under that name untouched. A target with more than one name gets
// the new content through its own file once that content is safe on the
// disk, so that all its names keep showing one file.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "image/Memory.h"
#include "image/PageMemory.h"
#include "image/System.h"

namespace kestrum {

class OutputFile {
 public:
  OutputFile() = default;
  OutputFile(OutputFile&& other) noexcept;
  OutputFile& operator=(OutputFile&& other) noexcept;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // A file that was never committed is closed and removed.
  ~OutputFile();

  // Starts a new file for path. A regular file (or nothing) at path is
  // replaced on Commit; anything else there (a device, a pipe) is written
  // in place. A symbolic link is followed, also one that points nowhere
  // yet: the file is made where it points, and the link stays. ok() is false, with failure() telling why,
  // when it can't.
  static OutputFile Create(const std::string& path);

  // Each gives false, with failure() set, when the file can't take it; a
  // failed file takes nothing more.
  bool Write(const void* data, std::size_t size);
  // Appends what the file at path held from offset on, if it held more.
  bool AppendOldTail(std::uint64_t offset);
  // Flushes the file to the disk, closes it and gives it the target's name
  // (or content), and flushes the folder's names.
  bool Commit();

  // Gives up the file: it is removed unless written in place, and failure()
  // names the file, what was being done and the reason. Always false.
  bool Fail(const char* doing, const std::string& reason);

  bool ok() const { return failure_.empty(); }
  const std::string& failure() const { return failure_; }
  const std::string& path() const { return path_; }

 private:
  void Discard();
  bool Replace();

  std::string path_;     // the name the user gave
  std::string target_;   // the file that takes the content: path_ with links resolved
  std::string working_;  // the file being written; equals target_ when written in place
  sys::FileHandle file_ = sys::kNoFile;
  sys::ListedName listed_;  // working_, removed if the process is interrupted
  std::string failure_;
  bool committed_ = false;
};

// Text built in a block of memory and handed to the file in pieces of the
// block's size. Writers ask for room for one record at a time. One large page
// is enough for the system to take each piece in one call, and stays in the
// cache while it is filled.
class TextOutput {
 public:
  static constexpr std::size_t kBlock = kLargePage;
  static_assert(kBlock + (std::size_t{8} << 20) <= kOperationReserve, "the image leaves room for the block");
  explicit TextOutput(OutputFile& file);

  // Room for at least size more characters (size <= kBlock / 2); nullptr
  // once the file has failed.
  char* Room(std::size_t size) {
    if (static_cast<std::size_t>(end_ - next_) < size && !Spill()) return nullptr;
    return next_;
  }
  // The characters up to end have been written into the room.
  void Used(char* end) { next_ = end; }
  bool Put(const char* text, std::size_t size);
  // Hands all the block holds to the file.
  bool Flush();

 private:
  // Hands the file the whole pieces (sys::kWholePiece) the block holds and
  // keeps the rest at its start, so that every piece but the file's last
  // may go to the disk directly.
  bool Spill();

  struct Release {
    void operator()(char* p) const { ReleasePages(p, kBlock); }
  };
  OutputFile& file_;
  std::unique_ptr<char[], Release> block_;
  char* next_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace kestrum
