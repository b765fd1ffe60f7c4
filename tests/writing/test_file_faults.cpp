// The Load button over a file it can't read: the message names the file and
// the reason, the dialog stays open with FileError, the pointer and the
// buttons back, nothing is stored, the dump is emptied and the image untouched.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "TestSupport.h"
#include "reading/LoadDialog.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;

TEST(FileFaults, LoadStopsAtAFileItCannotRead) {
  const struct {
    const char *name, *reason;
    void (*prepare)(const fs::path& dir, LoadFields& f);  // Dir1 and File1 start at dir and x.hex
  } cases[] = {
      {"a listed file that vanished", "No such file or directory",
       [](const fs::path& d, LoadFields&) { fs::remove(d / "x.hex"); }},
      {"a pick the file list lost with a change of folder, the name box keeping it", "Is a directory",
       [](const fs::path&, LoadFields& f) { f.File1.clear(); }},
      {"a pipe", "not a regular file",
       [](const fs::path& d, LoadFields& f) { f.File1 = f.Text1 = "pipe.hex", mkfifo((d / "pipe.hex").c_str(), 0600); }},
      {"a name holding a NUL character", "the name holds a NUL character",
       [](const fs::path&, LoadFields& f) { f.File1 = f.Text1 = std::string("x.hex\0.s", 8); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::TempDir dir;
    test::WriteFile(dir / "x.hex", ":0410000001020304E2\r\n");
    LoadFields f;
    f.Text1 = f.File1 = "x.hex", f.Text4 = "0", f.Text3 = "FFFF", f.Drive1 = "/", f.Dir1 = dir.path().string();
    c.prepare(dir.path(), f);
    Module1 m = test::MakeImage(0, 0xFFFF);
    m.frmsumtool.Text1 = "before.bin", m.frmsumtool.List1 = {"a row"};
    test::ScriptedPlatform platform;
    MemorySettings store;
    EXPECT_FALSE(Command1_Click(f, m, platform, store)) << "the dialog stays open";
    EXPECT_EQ(platform.Texts(), std::vector<std::string>{"Cannot read " + f.Dir1 + "/" + f.File1 + ": " + c.reason});
    EXPECT_TRUE(m.FileError == 0 && platform.pointer == vbDefault && f.Command1Enabled && f.Command2Enabled);
    EXPECT_TRUE(store.values.empty() && m.frmsumtool.Text1 == "before.bin" && m.frmsumtool.List1.empty());
    EXPECT_EQ(std::count(m.Buffer.data(), m.Buffer.data() + m.BufSize, 0xFF), m.BufSize) << "the image untouched";
  }
}

}  // namespace
}  // namespace kestrum
