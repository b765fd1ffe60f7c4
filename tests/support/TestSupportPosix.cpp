#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "TestSupport.h"

namespace kestrum::test {

namespace {
constexpr uid_t kNobody = 65534;

// In a child about to run unprivileged: false when the rights can't be given up.
bool DropPrivileges() {
  return geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0);
}

// Joins the control group at folder; the next exec runs in it.
bool JoinGroup(const std::string& folder) {
  std::ofstream procs(folder + "/cgroup.procs");
  return static_cast<bool>(procs << "0\n" << std::flush);
}

// Makes a memory control group with a limit under the test's own: version 2
// under /sys/fs/cgroup, version 1 under its memory folder. Gives why not.
std::string MakeGroup(std::uint64_t limit, std::string& path) {
  if (geteuid() != 0) return "only the superuser makes control groups";
  std::ifstream groups("/proc/self/cgroup");
  std::string folder, max;
  for (std::string line; std::getline(groups, line);) {
    const auto first = line.find(':'), second = line.find(':', first + 1);
    if (line.starts_with("0::") && std::filesystem::exists("/sys/fs/cgroup/cgroup.controllers"))
      folder = "/sys/fs/cgroup" + line.substr(3), max = "memory.max";
    if (("," + line.substr(first + 1, second - first - 1) + ",").find(",memory,") != std::string::npos)
      folder = "/sys/fs/cgroup/memory" + line.substr(second + 1), max = "memory.limit_in_bytes";
  }
  folder += "/kestrum-test-XXXXXX";
  if (max.empty() || !mkdtemp(folder.data())) return "no memory control group can be made here";
  if (!(std::ofstream(folder + "/" + max) << limit << std::flush)) {
    rmdir(folder.c_str());
    return "the group takes no memory limit";
  }
  path = folder;
  return "";
}
}  // namespace

FileSizeLimit::FileSizeLimit(std::uint64_t limit) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
  rlimit now{};
  getrlimit(RLIMIT_FSIZE, &now);
  old_[0] = now.rlim_cur, old_[1] = now.rlim_max;
  now.rlim_cur = limit;
  setrlimit(RLIMIT_FSIZE, &now);
}

FileSizeLimit::~FileSizeLimit() {
  const rlimit old{old_[0], old_[1]};
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, oldHandler_);
}

bool MakeFifo(const std::filesystem::path& path) { return mkfifo(path.c_str(), 0600) == 0; }

std::string Unprivileged(const std::function<std::string()>& body) {
  if (geteuid() != 0) return body();
  TempDir dir;
  const pid_t pid = fork();
  if (pid < 0) return "fork failed";
  if (pid == 0) {
    std::ofstream report(dir / "report", std::ios::binary);  // opened before the rights go
    report << (DropPrivileges() ? body() : "the rights of the superuser could not be given up");
    _exit(report.flush() ? 0 : 2);
  }
  int status = 0;
  const bool normal = waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  return ReadFile(dir / "report") + (normal ? "" : " (the child did not end normally)");
}

MemoryGroup::MemoryGroup(std::uint64_t limit) : why(MakeGroup(limit, path)) {}

MemoryGroup::~MemoryGroup() {
  for (const int pid : holders_) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  if (!path.empty()) rmdir(path.c_str());
}

bool MemoryGroup::Hold(std::uint64_t bytes) {
  const pid_t pid = path.empty() ? -1 : fork();
  if (pid == 0) {
    // Written through volatile, or the compiler drops the writes nothing reads.
    volatile char* memory = JoinGroup(path) ? static_cast<char*>(std::malloc(bytes)) : nullptr;
    if (!memory) _exit(1);
    for (std::uint64_t i = 0; i < bytes; i += 4096) memory[i] = 1;
    raise(SIGSTOP);  // holds the memory, stopped, until the group goes
    _exit(1);
  }
  if (pid < 0) return false;
  holders_.push_back(pid);
  int status = 0;
  return waitpid(pid, &status, WUNTRACED) == pid && WIFSTOPPED(status);
}

RunResult RunProgram(const std::vector<std::string>& argv, const std::filesystem::path& workdir,
                     const RunOptions& options) {
  // Output goes to files, not pipes, so a large output can't block the child.
  TempDir capture;
  // The user nobody may not enter the folder of the build (a checkout in
  // /root, say): it runs a copy from a folder that everyone can enter.
  std::vector<std::string> args = argv;
  if (options.unprivileged && geteuid() == 0) {
    std::filesystem::permissions(capture.path(), static_cast<std::filesystem::perms>(0755));
    args[0] = (capture / "program").string();
    std::filesystem::copy_file(argv[0], args[0]);
  }
  const auto meminfo = capture / "meminfo";
  if (!options.meminfo.empty()) WriteFile(meminfo, options.meminfo);
  const pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    if (!freopen("/dev/null", "r", stdin) || !freopen((capture / "out").c_str(), "w", stdout) ||
        !freopen((capture / "err").c_str(), "w", stderr) || (!workdir.empty() && chdir(workdir.c_str()) != 0))
      _exit(126);
    if (!options.meminfo.empty() &&
        (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
         mount(meminfo.c_str(), "/proc/meminfo", nullptr, MS_BIND, nullptr) != 0))
      _exit(kNoMeminfo);
    if (!options.group.empty() && !JoinGroup(options.group)) _exit(122);
    if (options.unprivileged && !DropPrivileges()) _exit(125);
    const rlimit limit{options.addressSpace, options.addressSpace};
    if (options.addressSpace != 0 && setrlimit(RLIMIT_AS, &limit) != 0) _exit(124);
    std::vector<char*> pointers;
    for (const auto& a : args) pointers.push_back(const_cast<char*>(a.c_str()));
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  wait4(pid, &status, 0, &usage);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ReadFile(capture / "out"),
          ReadFile(capture / "err"), usage.ru_maxrss};
}

}  // namespace kestrum::test
