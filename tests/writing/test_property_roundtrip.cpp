// Random images, ranges, record lengths and offsets: what each writer
// writes, the loader puts back at the shifted addresses and nowhere else,
// and the YSM file holds the sum that a plain count of the bytes gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "TestSupport.h"
#include "reading/LoadObjectFile.h"
#include "writing/Writers.h"

namespace kestrum {
namespace {

struct Trial {
  Address areaFirst, areaLast, saveFirst, saveLast, offset;
  int recordLength;
};

Trial RandomTrial(std::mt19937_64& random) {
  auto in = [&](Address low, Address high) {
    return std::uniform_int_distribution<Address>(low, high)(random);
  };
  Trial t;
  const Address size = in(1, 0x20000);
  // Now and then near the ends of the address space, where the record types change.
  const Address places[] = {0, 0xFFF0, 0xFFFFF0, in(0, 0xFFFFFFFF - size), 0x100000000 - size};
  t.areaFirst = std::min(places[random() % 5], 0x100000000 - size);
  t.areaLast = t.areaFirst + size - 1;
  t.saveFirst = in(t.areaFirst, t.areaLast);
  t.saveLast = in(t.saveFirst, std::min(t.areaLast, t.saveFirst + in(0, 0x8000)));
  t.recordLength = static_cast<int>(in(1, 0xFF));
  // The shifted range stays in the address space, with room for a HEX
  // record that runs past the end of the range.
  t.offset =
      in(-std::min<Address>(t.saveFirst, 0x1000000), std::min<Address>(0xFFFFFFFF - t.areaLast, 0x1000000));
  return t;
}

// The S writer's one failure: a record whose count, with the address bytes
// of its type, would pass 255.
bool SRecordTooLong(const Trial& t) {
  for (Address a = t.saveFirst; a <= t.saveLast; a += t.recordLength) {
    const Address n = std::min<Address>(t.recordLength, t.saveLast - a + 1);
    if (n + (a <= 0xFFFF ? 3 : a <= 0xFFFFFF ? 4 : 5) > 255) return true;
  }
  return false;
}

int PlainSum(const Module1& m, Address first, Address last, int kind) {
  std::uint64_t sum = 0;
  for (Address a = first; a <= last; ++a) sum += kind == 2 && a % 2 == 0 ? m.At(a) * 256u : m.At(a);
  return static_cast<int>(sum % (kind == 0 ? 256 : 65536));
}

TEST(PropertyRoundTrip, RandomSavesLoadBackAtTheirShiftedAddresses) {
  std::mt19937_64 random(20240611);
  for (int round = 0; round < 60; ++round) {
    const Trial t = RandomTrial(random);
    Module1 source = test::MakeImage(t.areaFirst, t.areaLast);
    for (Address a = t.areaFirst; a <= t.areaLast; ++a) source.At(a) = static_cast<std::uint8_t>(random());
    source.SaveFirst = t.saveFirst;
    source.SaveLast = t.saveLast;
    source.RecordLength = static_cast<std::int16_t>(t.recordLength);
    const Address records = (t.saveLast - t.saveFirst) / t.recordLength + 1;
    const Address hexEnd = std::min(t.saveFirst + records * t.recordLength - 1, t.areaLast);
    SCOPED_TRACE(testing::Message() << std::hex << "area " << t.areaFirst << ":" << t.areaLast << " save "
                                    << t.saveFirst << ":" << t.saveLast << " length " << t.recordLength
                                    << " offset " << t.offset);
    test::TempDir dir;

    const struct {
      const char* name;
      Address writtenLast;  // the HEX writer fills its last record up to the area's end
    } formats[] = {{"image.BIN", t.saveLast}, {"image.HEX", hexEnd}, {"image.S", t.saveLast}};
    for (const auto& format : formats) {
      SCOPED_TRACE(format.name);
      const std::string path = (dir / format.name).string();
      test::ScriptedPlatform platform;
      const std::string kind = format.name;
      const SaveOutcome saved = kind == "image.BIN"   ? SaveBinFile(source, platform, path)
                                : kind == "image.HEX" ? SaveHexFile(source, platform, path)
                                                      : SaveSFile(source, platform, path);
      if (kind == "image.S" && SRecordTooLong(t)) {
        EXPECT_EQ(saved, SaveOutcome::RecordLengthError);
        continue;
      }
      ASSERT_EQ(saved, SaveOutcome::Done) << testing::PrintToString(platform.Texts());

      // Into an image a little wider than the shifted range, over a load
      // range that may cut it at either end.
      const Address backFirst = std::max<Address>(0, t.saveFirst + t.offset - 0x20);
      const Address backLast = std::min<Address>(0xFFFFFFFF, hexEnd + t.offset + 0x20);
      Module1 back = test::MakeImage(backFirst, backLast);
      auto shiftedSource = [&](Address a) {
        const Address s = a - t.offset;
        return s >= t.areaFirst && s <= t.areaLast ? source.At(s) : 0xA5;
      };
      // Every byte starts as the complement of what it would be given, so a
      // byte stored or left wrongly shows.
      for (Address a = backFirst; a <= backLast; ++a)
        back.At(a) = static_cast<std::uint8_t>(~shiftedSource(a));
      const Address loadFirst =
          std::uniform_int_distribution<Address>(backFirst, t.saveLast + t.offset)(random);
      const Address loadLast = std::uniform_int_distribution<Address>(
          std::max(loadFirst, t.saveFirst + t.offset), backLast)(random);
      // A BIN file's offset counts from the start of the load range.
      back.LoadOffset = kind == "image.BIN" ? t.saveFirst + t.offset - loadFirst : t.offset;
      back.LoadFileName = path;
      const LoadReport report = LoadObjectFile(back, platform, loadFirst, loadLast, format.name);
      ASSERT_TRUE(report.Loaded()) << report.message;

      std::size_t wrong = 0;
      for (Address a = backFirst; a <= backLast; ++a) {
        const Address s = a - t.offset;
        const bool stored = a >= loadFirst && a <= loadLast && s >= t.saveFirst && s <= format.writtenLast;
        const auto want = static_cast<std::uint8_t>(stored ? shiftedSource(a) : ~shiftedSource(a));
        if (back.At(a) != want && wrong++ < 4) ADD_FAILURE() << "byte at " << std::hex << a;
      }
    }

    const struct {
      const char* format;
      int kind, digits;
    } sums[] = {{"8-8SUM", 0, 2}, {"8-16SUM", 1, 4}, {"16-16SUM", 2, 4}};
    for (const auto& sum : sums) {
      test::ScriptedPlatform platform;
      const auto path = dir / "image.YSM";
      ASSERT_EQ(SaveYsmFile(source, platform, path.string(), sum.format), SaveOutcome::Done);
      EXPECT_EQ(test::ReadFile(path).substr(12, static_cast<std::size_t>(sum.digits)),
                HexText(static_cast<std::uint64_t>(PlainSum(source, t.saveFirst, t.saveLast, sum.kind)),
                        sum.digits))
          << sum.format;
    }
  }
}

}  // namespace
}  // namespace kestrum
