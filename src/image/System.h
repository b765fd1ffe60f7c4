#pragma once
// What the core asks of the operating system beyond the standard library:
// the memory left to the process, files written with their final rights
// from the start and flushed to the disk, and working files removed when
// the process is interrupted. One source file per platform implements it
// (SystemPosix.cpp, SystemWindows.cpp; SystemPlain.cpp, with the standard
// library only, where the platform has none of its own).
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace kestrum::sys {

// Bytes the process can still take without being stopped by the system:
// free memory and swap, no more than the room its control group leaves.
// Nothing where it can't be told; nothing throws. root is put in front of
// the system files where the platform reads memory from files (tests give
// a tree of their own); empty for the real ones.
std::optional<std::uint64_t> AvailableMemory(const std::string& root = {});

// An open file of the platform; kNoFile when none.
using FileHandle = std::intptr_t;
inline constexpr FileHandle kNoFile = -1;

// Makes the file path, which must not exist yet, and opens it for writing.
// Its rights are final before it holds a byte: those of like, the file it
// is to replace (mode, owner and group where the user may, access lists
// and extended attributes), or a new file's when like is empty. Rights
// that would only go wider than like's fail it, and the file is removed.
FileHandle CreateExclusive(const std::string& path, const std::string& like, std::error_code& ec);
// Opens an existing file for writing from its start, without cutting it short.
FileHandle OpenForWriting(const std::string& path, std::error_code& ec);
// Pieces in whole multiples of kWholePiece bytes, from memory and at file
// offsets on that boundary, may go to the disk directly, past the system's
// cache; any other piece goes through it.
inline constexpr std::size_t kWholePiece = 4096;
bool WriteAll(FileHandle file, const void* data, std::size_t size, std::error_code& ec);
// Puts what was written on the disk; a file that has no disk (a device, a
// pipe) counts as flushed.
bool Flush(FileHandle file, std::error_code& ec);
bool Close(FileHandle file, std::error_code& ec);
// Puts the names in a folder (a rename just made) on the disk.
bool FlushFolder(const std::string& folder, std::error_code& ec);

// How many names the file has; 1 where that can't be told.
std::uint64_t LinkCount(const std::string& path);
// Gives target the content of source through target's own file, so that
// every name of it shows the new content, and flushes it. Room for it is
// reserved first where the platform can, so a full disk stops it before
// target changes; touched says whether target changed.
bool CopyContent(const std::string& source, const std::string& target, bool& touched, std::error_code& ec);

// Working files that an interruption removes (SIGINT, SIGTERM, SIGHUP
// where the platform has them) once RemoveWorkingFilesOnInterrupt ran.
// A handler can only look at memory that no one frees under it, so the
// names live in a small fixed table of atomic pointers: the one mutable
// global of the program. Gives false when the table is full.
bool ListWorkingFile(const char* path);
void UnlistWorkingFile(const char* path);
// Calls remove on each listed name; safe in a signal handler.
void RemoveListedFiles(void (*remove)(const char* path));
// From then on an interruption removes the listed files and ends the
// process with status 128 + the signal's number.
void RemoveWorkingFilesOnInterrupt();

// Lists a copy of a working file's name while it lives; moving it keeps
// the same copy listed.
class ListedName {
 public:
  ListedName() = default;
  explicit ListedName(const std::string& path) : name_(new char[path.size() + 1]) {
    path.copy(name_, path.size());
    name_[path.size()] = '\0';
    if (!ListWorkingFile(name_)) Reset();
  }
  ListedName(ListedName&& other) noexcept : name_(std::exchange(other.name_, nullptr)) {}
  ListedName& operator=(ListedName&& other) noexcept {
    if (this != &other) {
      Reset();
      name_ = std::exchange(other.name_, nullptr);
    }
    return *this;
  }
  ListedName(const ListedName&) = delete;
  ListedName& operator=(const ListedName&) = delete;
  ~ListedName() { Reset(); }

  // An interruption leaves the file from now on.
  void Reset() {
    if (!name_) return;
    UnlistWorkingFile(name_);
    delete[] name_;
    name_ = nullptr;
  }

 private:
  char* name_ = nullptr;
};

}  // namespace kestrum::sys
