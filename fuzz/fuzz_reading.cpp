// The loader over arbitrary file bytes: whatever the file holds, a load
// ends with FileError 0 or -1 and one message at most, writes only inside
// its range, and never reads or writes outside the image.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "image/Platform.h"
#include "reading/LoadObjectFile.h"

using namespace kestrum;

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

class CountingPlatform : public Platform {
 public:
  int MsgBox(const std::string&, int, const std::string&) override {
    ++messages;
    return vbOK;
  }
  void SetMousePointer(int) override {}
  int messages = 0;
};

constexpr Address kFirst = 0x1000, kLast = 0x10FFF;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The first bytes choose the name, the range and the offset; the rest is the file.
  if (size < 6) return 0;
  static const char* const kNames[] = {"F.HEX", "F.S", "F.BIN", "F.DAT"};
  const std::string name = kNames[data[0] & 3];
  const Address loadFirst = kFirst + (data[1] << 8);
  const Address loadLast = kLast - (data[2] << 8);
  std::int16_t offset;
  std::memcpy(&offset, data + 3, 2);
  const std::string_view file(reinterpret_cast<const char*>(data + 5), size - 5);

  static Module1 m = [] {
    Module1 image;
    Check(SizeBuffer(image, kFirst, kLast) == SizeResult::Ok);
    return image;
  }();
  std::memset(m.Buffer.data(), 0xFF, static_cast<std::size_t>(m.BufSize));
  m.FileError = 0;
  m.LoadOffset = (data[0] & 4) ? offset * Address{16} : offset;
  m.LoadFileName = name;
  CountingPlatform platform;
  const LoadReport report = LoadObjectBytes(m, platform, loadFirst, loadLast, name, file);

  Check(report.Loaded() == (m.FileError == 0));
  Check(platform.messages == (report.Loaded() ? 0 : 1));
  for (Address a = kFirst; a <= kLast; ++a) {
    if (a < loadFirst || a > loadLast) Check(m.At(a) == 0xFF);
  }
  return 0;
}
