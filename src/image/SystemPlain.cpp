#if !defined(__unix__) && !defined(__APPLE__) && !defined(_WIN32)
// The operating system seam with the standard library alone, for systems
// that have no implementation of their own: no memory figures, rights
// limited to what std::filesystem can copy, flushing to the C library only.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "image/System.h"

namespace kestrum::sys {

namespace fs = std::filesystem;

namespace {

std::FILE* Stream(FileHandle file) { return reinterpret_cast<std::FILE*>(file); }

FileHandle Handle(std::FILE* f, std::error_code& ec) {
  if (!f) ec = {errno != 0 ? errno : EIO, std::generic_category()};
  return f ? reinterpret_cast<FileHandle>(f) : kNoFile;
}

}  // namespace

std::optional<std::uint64_t> AvailableMemory(const std::string&) { return std::nullopt; }

FileHandle CreateExclusive(const std::string& path, const std::string& like, std::error_code& ec) {
  errno = 0;
  std::FILE* f = std::fopen(path.c_str(), "wbx");
  if (!f || like.empty()) return Handle(f, ec);
  const fs::file_status old = fs::status(like, ec);
  fs::permissions(path, ec ? fs::perms::owner_read | fs::perms::owner_write : old.permissions(), ec);
  if (!ec) return Handle(f, ec);
  std::fclose(f);
  std::remove(path.c_str());
  return kNoFile;
}

FileHandle OpenForWriting(const std::string& path, std::error_code& ec) {
  errno = 0;
  return Handle(std::fopen(path.c_str(), "r+b"), ec);
}

bool WriteAll(FileHandle file, const void* data, std::size_t size, std::error_code& ec) {
  errno = 0;
  if (std::fwrite(data, 1, size, Stream(file)) == size) return true;
  ec = {errno != 0 ? errno : EIO, std::generic_category()};
  return false;
}

bool Flush(FileHandle file, std::error_code& ec) {
  errno = 0;
  if (std::fflush(Stream(file)) == 0) return true;
  ec = {errno != 0 ? errno : EIO, std::generic_category()};
  return false;
}

bool Close(FileHandle file, std::error_code& ec) {
  errno = 0;
  if (std::fclose(Stream(file)) == 0) return true;
  ec = {errno != 0 ? errno : EIO, std::generic_category()};
  return false;
}

bool FlushFolder(const std::string&, std::error_code&) { return true; }

std::uint64_t LinkCount(const std::string& path) {
  std::error_code ec;
  const auto count = fs::hard_link_count(path, ec);
  return ec ? 1 : count;
}

bool CopyContent(const std::string& source, const std::string& target, bool& touched, std::error_code& ec) {
  touched = false;
  std::FILE* in = std::fopen(source.c_str(), "rb");
  if (!in) return Handle(in, ec), false;
  std::FILE* out = std::fopen(target.c_str(), "wb");
  touched = out != nullptr;
  char chunk[65536];
  bool ok = out != nullptr;
  for (std::size_t n; ok && (n = std::fread(chunk, 1, sizeof chunk, in)) > 0;)
    ok = std::fwrite(chunk, 1, n, out) == n;
  ok = ok && !std::ferror(in);
  if (out && std::fclose(out) != 0) ok = false;
  std::fclose(in);
  if (!ok) ec = {errno != 0 ? errno : EIO, std::generic_category()};
  return ok;
}

namespace {

void RemoveListedAndEnd(int signal) {
  RemoveListedFiles([](const char* path) { std::remove(path); });
  std::_Exit(128 + signal);
}

}  // namespace

void RemoveWorkingFilesOnInterrupt() {
  for (int signal : {SIGINT, SIGTERM}) std::signal(signal, RemoveListedAndEnd);
}

}  // namespace kestrum::sys
#endif
