#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "image/Files.h"

namespace kestrum {

namespace {

std::wstring Wide(const std::string& text) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), length);
  return wide;
}

std::string Narrow(const std::wstring& wide) {
  if (wide.empty()) return {};
  const int size = static_cast<int>(wide.size());
  const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<std::size_t>(length), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), length, nullptr, nullptr);
  return text;
}

// The system's words for a failure.
std::string SystemText(DWORD error) { return std::system_category().message(static_cast<int>(error)); }

}  // namespace

std::filesystem::path PathOf(const std::string& name) { return Wide(name); }

std::string NameOf(const std::filesystem::path& path) { return Narrow(path.native()); }

std::FILE* OpenBytes(const std::string& name, const char* mode) {
  return _wfopen(Wide(name).c_str(), Wide(mode).c_str());
}

bool SeekBytes(std::FILE* file, std::int64_t offset, int origin) {
  return _fseeki64(file, offset, origin) == 0;
}

bool MoveIntoPlace(const std::string& working, const std::string& target, std::string& reason) {
  // Wine's ReplaceFileW takes whole paths only.
  std::error_code ec;
  const std::wstring from = std::filesystem::absolute(PathOf(working), ec).native();
  const std::wstring to = std::filesystem::absolute(PathOf(target), ec).native();
  // Over an existing file the system keeps what the old one carried: its
  // security, attributes, creation time and other streams.
  const DWORD old = GetFileAttributesW(to.c_str());
  if (old != INVALID_FILE_ATTRIBUTES && !(old & FILE_ATTRIBUTE_DIRECTORY)) {
    if (ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr))
      return true;
    // When the replacement could not take the name, the old file may
    // already be gone: a plain move still puts the new one in its place.
    const DWORD error = GetLastError();
    if (error != ERROR_UNABLE_TO_MOVE_REPLACEMENT && error != ERROR_UNABLE_TO_MOVE_REPLACEMENT_2) {
      reason = SystemText(error);
      return false;
    }
  }
  if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) return true;
  reason = SystemText(GetLastError());
  return false;
}

}  // namespace kestrum
