// windows.h comes before the headers that build on it.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

#include <random>
#include <stdexcept>

#include "TestSupport.h"
#include "image/Files.h"

namespace kestrum::test {

TempDir::TempDir() {
  std::mt19937_64 random(std::random_device{}());
  for (int attempt = 0; attempt < 100 && path_.empty(); ++attempt) {
    const auto candidate =
        std::filesystem::temp_directory_path() / ("kestrum-test-" + std::to_string(random()));
    if (std::filesystem::create_directory(candidate)) path_ = candidate;
  }
  if (path_.empty()) throw std::runtime_error("no temporary folder");
}

// Windows has no limit on the size of a file a process writes, and no
// superuser who reads past permissions.
FileSizeLimit::FileSizeLimit(std::uint64_t) {}
FileSizeLimit::~FileSizeLimit() = default;

bool MakeFifo(const std::filesystem::path&) { return false; }

MemoryGroup::MemoryGroup(std::uint64_t) : why("Windows has no control groups") {}
MemoryGroup::~MemoryGroup() = default;
bool MemoryGroup::Hold(std::uint64_t) { return false; }

std::string Unprivileged(const std::function<std::string()>& body) { return body(); }

namespace {

// One word of a command line as the C run-time splits it again.
std::wstring Quoted(const std::wstring& word) {
  if (!word.empty() && word.find_first_of(L" \t\n\v\"") == std::wstring::npos) return word;
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (wchar_t c : word) {
    if (c == L'\\') {
      ++backslashes;
      continue;
    }
    quoted.append(c == L'"' ? 2 * backslashes + 1 : backslashes, L'\\');
    backslashes = 0;
    quoted += c;
  }
  quoted.append(2 * backslashes, L'\\');
  return quoted + L"\"";
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

RunResult RunProgram(const std::vector<std::string>& argv, const std::filesystem::path& workdir,
                     const RunOptions& options) {
  RunResult result;
  // Another /proc/meminfo has no meaning here, nor a control group.
  if (!options.meminfo.empty() || !options.group.empty()) {
    result.status = kNoMeminfo;
    return result;
  }
  TempDir capture;
  const auto outPath = capture / "out", errPath = capture / "err";
  const std::filesystem::path program = std::filesystem::absolute(PathOf(argv.at(0)));
  std::wstring line = Quoted(program.native());
  for (std::size_t i = 1; i < argv.size(); ++i) line += L" " + Quoted(PathOf(argv[i]).native());
  {
    Handle in{Inheritable(L"NUL", GENERIC_READ, OPEN_EXISTING)};
    Handle out{Inheritable(outPath, GENERIC_WRITE, CREATE_ALWAYS)};
    Handle err{Inheritable(errPath, GENERIC_WRITE, CREATE_ALWAYS)};
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.h, startup.hStdOutput = out.h, startup.hStdError = err.h;
    PROCESS_INFORMATION process{};
    // A memory limit is the job's, as a user's job object would set it.
    Handle job{options.addressSpace != 0 ? CreateJobObjectW(nullptr, nullptr) : nullptr};
    if (job.h) {
      JOBOBJECT_EXTENDED_LIMIT_INFORMATION limit{};
      limit.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_PROCESS_MEMORY;
      limit.ProcessMemoryLimit = options.addressSpace;
      SetInformationJobObject(job.h, JobObjectExtendedLimitInformation, &limit, sizeof limit);
    }
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                        workdir.empty() ? nullptr : workdir.c_str(), &startup, &process))
      throw std::runtime_error("cannot start " + argv[0]);
    Handle processHandle{process.hProcess}, thread{process.hThread};
    if (job.h) AssignProcessToJobObject(job.h, process.hProcess);
    ResumeThread(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    result.status = static_cast<int>(status);
    PROCESS_MEMORY_COUNTERS memory{};
    if (GetProcessMemoryInfo(process.hProcess, &memory, sizeof memory))
      result.peakKiB = static_cast<long>(memory.PeakWorkingSetSize / 1024);
  }
  result.out = ReadFile(outPath);
  result.err = ReadFile(errPath);
  return result;
}

}  // namespace kestrum::test
