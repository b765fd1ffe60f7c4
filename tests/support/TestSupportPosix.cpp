#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "TestSupport.h"

namespace kestrum::test {

TempDir::TempDir() {
  std::string name = (std::filesystem::temp_directory_path() / "kestrum-test-XXXXXX").string();
  if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
  path_ = name;
}

namespace {
std::string Slurp(int fd) {
  std::string text;
  char chunk[65536];
  ssize_t n;
  while ((n = read(fd, chunk, sizeof chunk)) > 0) text.append(chunk, static_cast<std::size_t>(n));
  close(fd);
  return text;
}

constexpr uid_t kNobody = 65534;

// In a child about to run unprivileged: false when the rights can't be given up.
bool DropPrivileges() {
  return geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0);
}
}  // namespace

FileSizeLimit::FileSizeLimit(std::uint64_t limit) {
  oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  old_[0] = old.rlim_cur;
  old_[1] = old.rlim_max;
  old.rlim_cur = limit;
  setrlimit(RLIMIT_FSIZE, &old);
}

FileSizeLimit::~FileSizeLimit() {
  const rlimit old{old_[0], old_[1]};
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, oldHandler_);
}

namespace {
// Runs body in a child process once enter has given it its world; gives
// what body gives, or what enter says when it could not.
std::string InChild(const std::function<std::string()>& enter, const std::function<std::string()>& body) {
  int pipeFds[2];
  if (pipe(pipeFds) != 0) return "no pipe";
  const pid_t pid = fork();
  if (pid < 0) return "fork failed";
  if (pid == 0) {
    close(pipeFds[0]);
    std::string result = enter();
    if (result.empty()) result = body();
    if (!result.empty() && write(pipeFds[1], result.data(), result.size()) < 0) _exit(2);
    _exit(0);
  }
  close(pipeFds[1]);
  std::string result = Slurp(pipeFds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) result += " (the child did not end normally)";
  return result;
}
}  // namespace

bool MakeFifo(const std::filesystem::path& path) { return mkfifo(path.c_str(), 0600) == 0; }

std::string Unprivileged(const std::function<std::string()>& body) {
  if (geteuid() != 0) return body();
  return InChild([] { return DropPrivileges() ? "" : "the rights of the superuser could not be given up"; },
                 body);
}

namespace {
// Joins the control group at folder; the next exec runs in it.
bool JoinGroup(const std::string& folder) {
  std::ofstream procs(folder + "/cgroup.procs");
  return static_cast<bool>(procs << "0\n" << std::flush);
}
}  // namespace

MemoryGroup::MemoryGroup(std::uint64_t limit) {
  if (geteuid() != 0) {
    why = "only the superuser makes control groups";
    return;
  }
  // The test's own group: version 2 under /sys/fs/cgroup, version 1 under its memory folder.
  std::ifstream groups("/proc/self/cgroup");
  std::string candidate;
  for (std::string line; std::getline(groups, line);) {
    const auto second = line.find(':', line.find(':') + 1);
    const std::string controllers = line.substr(line.find(':') + 1, second - line.find(':') - 1);
    if (line.rfind("0::", 0) == 0 && std::filesystem::exists("/sys/fs/cgroup/cgroup.controllers"))
      candidate = "/sys/fs/cgroup" + line.substr(3) + "|memory.max";
    if (("," + controllers + ",").find(",memory,") != std::string::npos)
      candidate = "/sys/fs/cgroup/memory" + line.substr(second + 1) + "|memory.limit_in_bytes";
  }
  const auto bar = candidate.find('|');
  std::string folder = candidate.substr(0, bar) + "/kestrum-test-XXXXXX";
  if (bar == std::string::npos || !mkdtemp(folder.data())) {
    why = "no memory control group can be made here";
    return;
  }
  std::ofstream max(folder + "/" + candidate.substr(bar + 1));
  if (!(max << limit << std::flush)) {
    rmdir(folder.c_str());
    why = "the group takes no memory limit";
    return;
  }
  path = folder;
}

MemoryGroup::~MemoryGroup() {
  for (const int pid : holders_) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
  }
  if (!path.empty()) rmdir(path.c_str());
}

bool MemoryGroup::Hold(std::uint64_t bytes) {
  int ready[2];
  if (path.empty() || pipe(ready) != 0) return false;
  const pid_t pid = fork();
  if (pid == 0) {
    close(ready[0]);
    if (!JoinGroup(path)) _exit(1);
    // Written through volatile, or the compiler drops the writes nothing reads.
    volatile char* memory = static_cast<char*>(std::malloc(bytes));
    if (!memory) _exit(1);
    for (std::uint64_t i = 0; i < bytes; i += 4096) memory[i] = 1;
    if (write(ready[1], "", 1) != 1) _exit(1);
    for (;;) pause();
  }
  close(ready[1]);
  char byte;
  const bool held = pid > 0 && read(ready[0], &byte, 1) == 1;
  close(ready[0]);
  if (pid > 0) holders_.push_back(pid);
  return held;
}

RunResult RunProgram(const std::vector<std::string>& argv, const std::filesystem::path& workdir,
                     const RunOptions& options) {
  // Output goes to files, not pipes, so a large output can't block the child.
  TempDir capture;
  // The user nobody may not enter the folder of the build (a checkout in
  // /root, say): it runs a copy from a folder that everyone can enter.
  std::vector<std::string> args = argv;
  if (options.unprivileged && geteuid() == 0) {
    std::filesystem::permissions(
        capture.path(), std::filesystem::perms::owner_all | std::filesystem::perms::group_read |
                            std::filesystem::perms::group_exec | std::filesystem::perms::others_read |
                            std::filesystem::perms::others_exec);
    args[0] = (capture / "program").string();
    std::filesystem::copy_file(argv[0], args[0]);
  }
  const auto outPath = capture / "out", errPath = capture / "err";
  const auto meminfoPath = capture / "meminfo";
  if (!options.meminfo.empty()) WriteFile(meminfoPath, options.meminfo);
  pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    int in = open("/dev/null", O_RDONLY);
    dup2(in, 0);
    dup2(out, 1);
    dup2(err, 2);
    if (!workdir.empty() && chdir(workdir.c_str()) != 0) _exit(126);
    if (!options.meminfo.empty() &&
        (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
         mount(meminfoPath.c_str(), "/proc/meminfo", nullptr, MS_BIND, nullptr) != 0))
      _exit(kNoMeminfo);
    if (!options.group.empty() && !JoinGroup(options.group)) _exit(122);
    if (options.unprivileged && !DropPrivileges()) _exit(125);
    if (options.addressSpace != 0) {
      const rlimit limit{options.addressSpace, options.addressSpace};
      if (setrlimit(RLIMIT_AS, &limit) != 0) _exit(124);
    }
    std::vector<char*> pointers;
    for (const auto& a : args) pointers.push_back(const_cast<char*>(a.c_str()));
    pointers.push_back(nullptr);
    execv(pointers[0], pointers.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  wait4(pid, &status, 0, &usage);
  RunResult result;
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.peakKiB = usage.ru_maxrss;
  result.out = Slurp(open(outPath.c_str(), O_RDONLY));
  result.err = Slurp(open(errPath.c_str(), O_RDONLY));
  return result;
}

}  // namespace kestrum::test
