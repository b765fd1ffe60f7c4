#include <windows.h>

#include <stdexcept>

#include "TestSupport.h"
#include "image/Files.h"

namespace kestrum::test {

// Windows has no limit on the size of a file a process writes, no named
// pipe in the file system, no control groups, and no superuser who reads
// past permissions.
FileSizeLimit::FileSizeLimit(std::uint64_t) {}
FileSizeLimit::~FileSizeLimit() = default;
bool MakeFifo(const std::filesystem::path&) { return false; }
MemoryGroup::MemoryGroup(std::uint64_t) : why("Windows has no control groups") {}
MemoryGroup::~MemoryGroup() = default;
bool MemoryGroup::Hold(std::uint64_t) { return false; }
std::string Unprivileged(const std::function<std::string()>& body) { return body(); }

namespace {

// One word of a command line as the C run-time splits it again: in quotes,
// the backslashes before the closing one doubled. No word here holds a quote.
std::wstring Quoted(const std::wstring& word) {
  if (word.find(L'"') != std::wstring::npos) throw std::invalid_argument("a quote in a program's argument");
  const std::size_t backslashes = word.size() - (word.find_last_not_of(L'\\') + 1);
  return L"\"" + word + std::wstring(backslashes, L'\\') + L"\"";
}

struct Handle {
  HANDLE h = nullptr;
  ~Handle() {
    if (h && h != INVALID_HANDLE_VALUE) CloseHandle(h);
  }
};

HANDLE Inheritable(const std::filesystem::path& path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
  return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, disposition,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

}  // namespace

// Tells no peak memory: Wine's working-set figures are no resident memory.
RunResult RunProgram(const std::vector<std::string>& argv, const std::filesystem::path& workdir,
                     const RunOptions& options) {
  // Another /proc/meminfo, a control group or a limit of the address space have no meaning here.
  if (!options.meminfo.empty() || !options.group.empty() || options.addressSpace != 0) return {kNoMeminfo};
  TempDir capture;
  const std::filesystem::path program = std::filesystem::absolute(PathOf(argv.at(0)));
  std::wstring line = Quoted(program.native());
  for (std::size_t i = 1; i < argv.size(); ++i) line += L" " + Quoted(PathOf(argv[i]).native());
  DWORD status = 0;
  {
    Handle in{Inheritable(L"NUL", GENERIC_READ, OPEN_EXISTING)};
    Handle out{Inheritable(capture / "out", GENERIC_WRITE, CREATE_ALWAYS)};
    Handle err{Inheritable(capture / "err", GENERIC_WRITE, CREATE_ALWAYS)};
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.h, startup.hStdOutput = out.h, startup.hStdError = err.h;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        workdir.empty() ? nullptr : workdir.c_str(), &startup, &process))
      throw std::runtime_error("cannot start " + argv[0]);
    Handle processHandle{process.hProcess}, thread{process.hThread};
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &status);
  }
  return {static_cast<int>(status), ReadFile(capture / "out"), ReadFile(capture / "err")};
}

}  // namespace kestrum::test
