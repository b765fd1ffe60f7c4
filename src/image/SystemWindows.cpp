#ifdef _WIN32
// The operating system seam on Windows: the memory the system can still
// commit and the limit of the job the process runs in, files through the C
// run-time's descriptors opened by their wide names, FlushFileBuffers, and
// the console's interrupts.
// clang-format off
#include <windows.h>
#include <aclapi.h>
#include <psapi.h>
// clang-format on

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "image/Files.h"
#include "image/System.h"

namespace kestrum::sys {

namespace {

std::error_code Errno() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

std::error_code LastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

int Descriptor(FileHandle file) { return static_cast<int>(file); }

HANDLE Native(FileHandle file) { return reinterpret_cast<HANDLE>(_get_osfhandle(Descriptor(file))); }

FileHandle Open(const std::string& path, int flags, std::error_code& ec) {
  errno = 0;
  const int fd = _wopen(PathOf(path).c_str(), flags | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
  if (fd < 0) ec = Errno();
  return fd < 0 ? kNoFile : fd;
}

// Gives the new file the access list of like, so that it is never readable
// by more users than the file it replaces while it is written.
bool TakeAccessList(const std::string& path, const std::string& like, std::error_code& ec) {
  PACL list = nullptr;
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (GetNamedSecurityInfoW(PathOf(like).c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                            &list, nullptr, &descriptor) != ERROR_SUCCESS)
    return true;  // no list to take: the folder's, as for any new file
  std::wstring name = PathOf(path).native();
  const DWORD error = SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                            nullptr, list, nullptr);
  LocalFree(descriptor);
  if (error == ERROR_SUCCESS) return true;
  ec = {static_cast<int>(error), std::system_category()};
  return false;
}

}  // namespace

std::optional<std::uint64_t> AvailableMemory(const std::string&) {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  if (!GlobalMemoryStatusEx(&status)) return std::nullopt;
  // What the system can still commit, memory and page file together: an
  // allocation beyond it fails rather than being killed later.
  std::uint64_t room = status.ullAvailPageFile;
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION job{};
  PROCESS_MEMORY_COUNTERS_EX used{};
  if (QueryInformationJobObject(nullptr, JobObjectExtendedLimitInformation, &job, sizeof job, nullptr) &&
      GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&used),
                           sizeof used)) {
    const DWORD flags = job.BasicLimitInformation.LimitFlags;
    // What the job's other processes hold can't be told: this one's own
    // use counts against both limits.
    for (const auto& [limited, limit] :
         {std::pair{flags & JOB_OBJECT_LIMIT_PROCESS_MEMORY, job.ProcessMemoryLimit},
          std::pair{flags & JOB_OBJECT_LIMIT_JOB_MEMORY, job.JobMemoryLimit}})
      if (limited)
        room = std::min<std::uint64_t>(room, limit - std::min<std::uint64_t>(limit, used.PrivateUsage));
  }
  return room;
}

FileHandle CreateExclusive(const std::string& path, const std::string& like, std::error_code& ec) {
  const FileHandle file = Open(path, _O_WRONLY | _O_CREAT | _O_EXCL, ec);
  if (file == kNoFile || like.empty() || TakeAccessList(path, like, ec)) return file;
  _close(Descriptor(file));
  DeleteFileW(PathOf(path).c_str());
  return kNoFile;
}

FileHandle OpenForWriting(const std::string& path, std::error_code& ec) { return Open(path, _O_WRONLY, ec); }

bool WriteAll(FileHandle file, const void* data, std::size_t size, std::error_code& ec) {
  const char* next = static_cast<const char*>(data);
  while (size > 0) {
    errno = 0;
    const int written =
        _write(Descriptor(file), next, static_cast<unsigned>(std::min<std::size_t>(size, INT_MAX)));
    if (written <= 0) {
      ec = written < 0 ? Errno() : std::make_error_code(std::errc::no_space_on_device);
      return false;
    }
    next += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

bool Flush(FileHandle file, std::error_code& ec) {
  if (GetFileType(Native(file)) != FILE_TYPE_DISK) return true;
  if (FlushFileBuffers(Native(file))) return true;
  ec = LastError();
  return false;
}

bool Close(FileHandle file, std::error_code& ec) {
  errno = 0;
  if (_close(Descriptor(file)) == 0) return true;
  ec = Errno();
  return false;
}

// A rename on Windows reaches the disk with its write-through (image/Files.h).
bool FlushFolder(const std::string&, std::error_code&) { return true; }

std::uint64_t LinkCount(const std::string& path) {
  const HANDLE file =
      CreateFileW(PathOf(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 1;
  BY_HANDLE_FILE_INFORMATION info{};
  const bool known = GetFileInformationByHandle(file, &info);
  CloseHandle(file);
  return known ? info.nNumberOfLinks : 1;
}

bool CopyContent(const std::string& source, const std::string& target, bool& touched, std::error_code& ec) {
  touched = false;
  const FileHandle in = Open(source, _O_RDONLY, ec);
  if (in == kNoFile) return false;
  const FileHandle out = Open(target, _O_WRONLY | _O_TRUNC, ec);
  touched = out != kNoFile;
  bool ok = out != kNoFile;
  char chunk[65536];
  for (int n; ok && (n = _read(Descriptor(in), chunk, sizeof chunk)) != 0;) {
    if (n < 0)
      ok = false, ec = Errno();
    else
      ok = WriteAll(out, chunk, static_cast<std::size_t>(n), ec);
  }
  ok = ok && Flush(out, ec);
  if (out != kNoFile && !Close(out, ec)) ok = false;
  std::error_code ignored;
  Close(in, ignored);
  return ok;
}

namespace {

// Ctrl+C, Ctrl+Break and a closed console window end the process as the
// signals SIGINT, SIGBREAK and SIGHUP would.
BOOL WINAPI RemoveListedAndEnd(DWORD event) {
  RemoveListedFiles([](const char* path) {
    wchar_t wide[32768];
    if (MultiByteToWideChar(CP_UTF8, 0, path, -1, wide, 32768) > 0) DeleteFileW(wide);
  });
  const UINT signal = event == CTRL_C_EVENT ? 2 : event == CTRL_BREAK_EVENT ? 21 : 1;
  ExitProcess(128 + signal);
}

}  // namespace

void RemoveWorkingFilesOnInterrupt() { SetConsoleCtrlHandler(RemoveListedAndEnd, TRUE); }

}  // namespace kestrum::sys
#endif
