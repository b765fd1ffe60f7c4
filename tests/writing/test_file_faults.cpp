// The Load button over a file it can't read: the message names the file and
// the reason, the dialog stays open with FileError, the pointer and the
// buttons back, nothing is stored, the dump is emptied and the image untouched.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "TestSupport.h"
#include "reading/LoadDialog.h"

namespace kestrum {
namespace {

TEST(FileFaults, LoadStopsAtAFileItCannotRead) {
  const struct { const char* name; std::string file1; const char* reason; } cases[] = {
      {"a listed file that vanished", "gone.hex", "No such file or directory"},
      {"a pick the file list lost with a change of folder, the name box keeping it", "", "Is a directory"},
      {"a pipe", "pipe.hex", "not a regular file"},
      {"a name holding a NUL character", std::string("x.hex\0.s", 8), "the name holds a NUL character"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::TempDir dir;
    test::WriteFile(dir / "x.hex", ":0410000001020304E2\r\n");
    ASSERT_EQ(mkfifo((dir / "pipe.hex").c_str(), 0600), 0);
    LoadFields f;
    f.Text1 = c.file1.empty() ? "x.hex" : c.file1, f.File1 = c.file1, f.Dir1 = dir.path().string();
    f.Text4 = "0", f.Text3 = "FFFF";
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
