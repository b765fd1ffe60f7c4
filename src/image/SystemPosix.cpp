#if defined(__unix__) || defined(__APPLE__)
// The operating system seam on POSIX systems (Linux first: /proc, control
// groups, extended attributes).
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

#include "image/Memory.h"
#include "image/System.h"

namespace kestrum::sys {

namespace {

std::error_code Error(int error) { return {error, std::generic_category()}; }

// A small system file, or empty where it can't be read; never throws.
std::string ReadText(const std::string& path) {
  std::string text;
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return text;
  char chunk[4096];
  for (ssize_t n; text.size() < (std::size_t{1} << 20);) {
    n = read(fd, chunk, sizeof chunk);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      if (n < 0) text.clear();
      break;
    }
    text.append(chunk, static_cast<std::size_t>(n));
  }
  close(fd);
  return text;
}

bool IsFolder(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// The least room of the group's folder under base and of each folder above
// it up to base; a group the file system doesn't show counts from base.
void WalkGroup(const std::string& base, std::string group, const char* limit, const char* usage,
               std::optional<std::uint64_t>& room) {
  if (!IsFolder(base)) return;
  while (!group.empty() && group.back() == '/') group.pop_back();
  std::string dir = IsFolder(base + group) ? base + group : base;
  for (;;) {
    const auto own =
        GroupRoom(ReadText(dir + "/" + limit), ReadText(dir + "/" + usage), ReadText(dir + "/memory.stat"));
    if (own) room = room ? std::min(*room, *own) : own;
    if (dir.size() <= base.size()) break;
    dir.erase(dir.rfind('/'));
  }
}

}  // namespace

std::optional<std::uint64_t> AvailableMemory(const std::string& root) {
  // Lines "ID:CONTROLLERS:PATH": version 2 has the ID 0 and no controllers,
  // version 1 names "memory" among them.
  std::string v2, v1;
  bool hasV2 = false, hasV1 = false;
  const std::string groups = ReadText(root + "/proc/self/cgroup");
  for (std::size_t at = 0; at < groups.size();) {
    const std::size_t end = std::min(groups.find('\n', at), groups.size());
    const std::string_view line = std::string_view(groups).substr(at, end - at);
    at = end + 1;
    const std::size_t first = line.find(':'), second = line.find(':', first + 1);
    if (second == std::string_view::npos) continue;
    const std::string_view controllers = line.substr(first + 1, second - first - 1);
    const std::string path(line.substr(second + 1));
    if (line.substr(0, first) == "0" && controllers.empty()) {
      v2 = path;
      hasV2 = true;
    }
    const std::string list = "," + std::string(controllers) + ",";
    if (list.find(",memory,") != std::string::npos) {
      v1 = path;
      hasV1 = true;
    }
  }
  std::optional<std::uint64_t> room;
  if (hasV2) WalkGroup(root + "/sys/fs/cgroup", v2, "memory.max", "memory.current", room);
  if (hasV1)
    WalkGroup(root + "/sys/fs/cgroup/memory", v1, "memory.limit_in_bytes", "memory.usage_in_bytes", room);
  return AvailableFrom(ReadText(root + "/proc/meminfo"), room);
}

namespace {

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

// Copies the extended attributes of like, its access lists among them, to
// fd. Labels that only the system may set are left to it; anything else
// that can't be copied is an error, for a file without its access list
// would give its owning group the rights that the list's mask shows.
int CopyAttributes(const std::string& like, int fd) {
#ifndef __linux__
  return 0;
#else
  const ssize_t size = listxattr(like.c_str(), nullptr, 0);
  if (size < 0) return errno == ENOTSUP ? 0 : errno;
  std::string names(static_cast<std::size_t>(size), '\0');
  const ssize_t got = listxattr(like.c_str(), names.data(), names.size());
  if (got < 0) return errno;
  names.resize(static_cast<std::size_t>(got));
  std::string value;
  for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
    const char* name = names.c_str() + at;
    const bool systemOnly = StartsWith(name, "security.") || StartsWith(name, "trusted.");
    const ssize_t length = getxattr(like.c_str(), name, nullptr, 0);
    if (length >= 0) {
      value.resize(static_cast<std::size_t>(length));
      const ssize_t read = getxattr(like.c_str(), name, value.data(), value.size());
      if (read >= 0 && fsetxattr(fd, name, value.data(), static_cast<std::size_t>(read), 0) == 0) continue;
    }
    if (errno == ENODATA || (systemOnly && (errno == EPERM || errno == ENOTSUP))) continue;
    return errno;
  }
  return 0;
#endif
}

// A new file is written past the system's cache where its file system allows it: the
// content goes from our memory to the disk, which a save waits for anyway, without being
// copied into pages the system must first find and clear. Such a file takes only whole
// pieces (kWholePiece); at the first other piece (a file's end, as a rule) it goes on
// through the cache.
constexpr std::uintptr_t kDirect = kWholePiece;

bool Direct([[maybe_unused]] int fd) {
#ifdef O_DIRECT
  const int flags = fcntl(fd, F_GETFL);
  return flags >= 0 && (flags & O_DIRECT) != 0;
#else
  return false;
#endif
}

// Turns direct transfers on or off; tells whether they are on afterwards (a
// file system without them refuses to turn them on).
bool SetDirect([[maybe_unused]] int fd, [[maybe_unused]] bool on) {
#ifdef O_DIRECT
  const int flags = fcntl(fd, F_GETFL);
  if (flags < 0) return false;
  const int wanted = on ? flags | O_DIRECT : flags & ~O_DIRECT;
  return ((fcntl(fd, F_SETFL, wanted) == 0 ? wanted : flags) & O_DIRECT) != 0;
#else
  return false;
#endif
}

bool Aligned(int fd, const char* data, std::size_t size) {
  const off_t at = lseek(fd, 0, SEEK_CUR);
  return reinterpret_cast<std::uintptr_t>(data) % kDirect == 0 && size % kDirect == 0 && at >= 0 &&
         static_cast<std::uintptr_t>(at) % kDirect == 0;
}

}  // namespace

FileHandle CreateExclusive(const std::string& path, const std::string& like, std::error_code& ec) {
  struct stat old {};
  const bool replaces = !like.empty();
  const bool known = replaces && stat(like.c_str(), &old) == 0;
  // A new file gets what the user's mask allows; a replacing one no more
  // than the old one had, and only the owner's rights when that is unknown.
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, replaces ? 0600 : 0666);
  if (fd < 0) {
    ec = Error(errno);
    return kNoFile;
  }
  SetDirect(fd, true);
  if (!known) return fd;
  mode_t mode = old.st_mode & 0777;
  // The group's rights are for the old file's group, never for another one.
  if (fchown(fd, old.st_uid, old.st_gid) != 0 && fchown(fd, static_cast<uid_t>(-1), old.st_gid) != 0)
    mode &= ~070;
  int error = fchmod(fd, mode) == 0 ? CopyAttributes(like, fd) : errno;
  if (error == 0) return fd;
  close(fd);
  unlink(path.c_str());
  ec = Error(error);
  return kNoFile;
}

FileHandle OpenForWriting(const std::string& path, std::error_code& ec) {
  const int fd = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (fd < 0) ec = Error(errno);
  return fd < 0 ? kNoFile : fd;
}

bool WriteAll(FileHandle file, const void* data, std::size_t size, std::error_code& ec) {
  const int fd = static_cast<int>(file);
  const char* next = static_cast<const char*>(data);
  bool direct = Direct(fd);
  while (size > 0) {
    if (direct && !Aligned(fd, next, size)) direct = SetDirect(fd, false);
    const ssize_t n = write(fd, next, size);
    const int error = n < 0 ? errno : ENOSPC;
    if (error == EINTR) continue;
    // A direct transfer refused (a disk with blocks larger than kDirect, a file system that
    // takes the flag but not the transfer): the piece goes through the cache, and its
    // failure there, if it fails again, is the one told.
    if (n < 0 && direct) {
      direct = SetDirect(fd, false);
      if (!direct) continue;
    }
    if (n <= 0) {
      ec = Error(error);
      return false;
    }
    next += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

bool Flush(FileHandle file, std::error_code& ec) {
  // EINVAL: a device or pipe, which has nothing to flush.
  if (fsync(static_cast<int>(file)) == 0 || errno == EINVAL) return true;
  ec = Error(errno);
  return false;
}

bool Close(FileHandle file, std::error_code& ec) {
  // After EINTR the descriptor is gone all the same.
  if (close(static_cast<int>(file)) == 0 || errno == EINTR) return true;
  ec = Error(errno);
  return false;
}

bool FlushFolder(const std::string& folder, std::error_code& ec) {
  // A folder the user may not read can't be opened to flush; its entry was
  // made all the same.
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) {
    if (errno == EACCES) return true;
    ec = Error(errno);
    return false;
  }
  const bool flushed = Flush(fd, ec);
  close(fd);
  return flushed;
}

std::uint64_t LinkCount(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0 ? st.st_nlink : 1;
}

bool CopyContent(const std::string& source, const std::string& target, bool& touched, std::error_code& ec) {
  touched = false;
  const int in = open(source.c_str(), O_RDONLY | O_CLOEXEC);
  if (in < 0) {
    ec = Error(errno);
    return false;
  }
  const int out = open(target.c_str(), O_WRONLY | O_CLOEXEC);
  struct stat st {};
  int error = out < 0 || fstat(in, &st) != 0 ? errno : 0;
#ifdef __linux__
  if (error == 0 && st.st_size > 0 && fallocate(out, FALLOC_FL_KEEP_SIZE, 0, st.st_size) != 0 &&
      errno != EOPNOTSUPP && errno != ENOSYS)
    error = errno;
#endif
  constexpr std::size_t kChunk = std::size_t{1} << 20;
  const std::unique_ptr<char[]> chunk(error == 0 ? new (std::nothrow) char[kChunk] : nullptr);
  if (error == 0 && !chunk) error = ENOMEM;
  touched = error == 0;
  while (error == 0) {
    const ssize_t n = read(in, chunk.get(), kChunk);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) error = errno;
    if (n <= 0) break;
    if (!WriteAll(out, chunk.get(), static_cast<std::size_t>(n), ec)) error = ec.value();
  }
  if (error == 0 && ftruncate(out, st.st_size) != 0) error = errno;
  if (error == 0 && !Flush(out, ec)) error = ec.value();
  if (out >= 0 && close(out) != 0 && error == 0 && errno != EINTR) error = errno;
  close(in);
  ec = Error(error);
  return error == 0;
}

namespace {

void RemoveListedAndEnd(int signal) {
  RemoveListedFiles([](const char* path) { unlink(path); });
  _exit(128 + signal);
}

}  // namespace

void RemoveWorkingFilesOnInterrupt() {
  struct sigaction action {};
  action.sa_handler = RemoveListedAndEnd;
  sigemptyset(&action.sa_mask);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&action.sa_mask, signal);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
}

}  // namespace kestrum::sys
#endif
