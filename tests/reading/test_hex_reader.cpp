#include "LoadCase.h"
#include "reading/HexReader.h"

namespace kestrum::test {
namespace {

const std::string kRecord = ":0410000001020304E2";  // 01 02 03 04 at 1000
const std::string kBadSum = ":0410000001020304E3";
const std::string kNext = ":0410100005060708C2";    // 05 06 07 08 at 1010

TEST(HexReader, RecordsAsTheTablesTell) {
  const LoadCase cases[] = {
      {"data record", Lines({kRecord}), {{0x1000, {1, 2, 3, 4}}}},
      {"clipped at the front", Lines({kRecord}), {{0x1002, {3, 4}}}, "", 0, 0x1002},
      {"clipped at the back", Lines({kRecord}), {{0x1000, {1, 2}}}, "", 0, 0, 0x1001},
      {"negative offset", Lines({kRecord}), {{0, {1, 2, 3, 4}}}, "", 0, 0, kImageLast, -0x1000},
      {"positive offset", Lines({kRecord}), {{0x3000, {1, 2, 3, 4}}}, "", 0, 0, kImageLast, 0x2000},
      {"offset below zero drops", Lines({kRecord}), {{0, {3, 4}}}, "", 0, 0, kImageLast, -0x1002},
      {"passed over", Lines({kRecord}), {}, "", 0, 0, 0xFFF},
      {"passed over: checksum untested", Lines({kBadSum}), {}, "", 0, 0, 0xFFF},
      {"bad checksum stores first", Lines({kRecord, kBadSum, kNext}), {{0x1000, {1, 2, 3, 4}}}, "SUM Error", 2},
      {"clipped record: checksum over all", Lines({kBadSum}), {{0x1002, {3, 4}}}, "SUM Error", 1, 0x1002},
      {"segment base", Lines({":020000021000EC", kRecord}), {{0x11000, {1, 2, 3, 4}}}},
      {"linear base", Lines({":020000040001F9", kRecord}), {{0x11000, {1, 2, 3, 4}}}},
      {"last base replaces", Lines({":020000021000EC", ":020000040002F8", kRecord}), {{0x21000, {1, 2, 3, 4}}}},
      {"base beyond the area", Lines({":02000004FFFFFC", kRecord}), {}},
      {"bad base checksum", Lines({kRecord, ":020000021000ED", kNext}), {{0x1000, {1, 2, 3, 4}}}, "SUM Error", 2},
      {"end record does not end", Lines({":00000001FF", kRecord}), {{0x1000, {1, 2, 3, 4}}}},
      {"any start mark", Lines({" 0410000001020304E2", "x0410100005060708C2"}),
       {{0x1000, {1, 2, 3, 4}}, {0x1010, {5, 6, 7, 8}}}},
      {"lower case", Lines({":0410000001020304e2", ":04100000010a0b0cca"}), {{0x1000, {1, 0xA, 0xB, 0xC}}}},
      {"count too low", Lines({kRecord, ":0310000001020304E2"}), {{0x1000, {1, 2, 3, 4}}}, "Format Error", 2},
      {"digit too many", Lines({kRecord + "0"}), {}, "Format Error", 1},
      {"empty line", Lines({kRecord, "", kNext}), {{0x1000, {1, 2, 3, 4}}}, "Format Error", 2},
      {"short line", Lines({":00"}), {}, "Format Error", 1},
      {"other type, bad checksum", Lines({":00000006FF", ":0100000600FF", kRecord}), {{0x1000, {1, 2, 3, 4}}}},
      {"other type, wrong length", Lines({":0100000600"}), {}, "Format Error", 1},
      {"count 0 in range, checksum tested", Lines({":00100000F0", ":00100000F1"}), {}, "SUM Error", 2},
      {"record past FFFF does not wrap",
       Lines({":20FFF000000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F01"}),
       {{0xFFF0, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,
                  16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31}}}},
      {"CR alone ends a line", Lines({kRecord, kNext}, "\r"), {{0x1000, {1, 2, 3, 4}}, {0x1010, {5, 6, 7, 8}}}},
      {"last line without an end", Lines({kRecord}) + kNext, {{0x1000, {1, 2, 3, 4}}, {0x1010, {5, 6, 7, 8}}}},
      {"lone LF is text", Lines({kRecord, kNext}, "\n"), {}, "Format Error", 1},
      {"two CRs make an empty line", Lines({kRecord, kNext}, "\r\r"), {{0x1000, {1, 2, 3, 4}}}, "Format Error", 2},
      // A field that is no hexadecimal number stops like a malformed line.
      {"bad count digit", Lines({":G410000001020304E2"}), {}, "Format Error", 1},
      {"bad data digit stores the bytes before it", Lines({":04100000010203G4E2"}), {{0x1000, {1, 2, 3}}},
       "Format Error", 1},
      {"bad digit clipped off the front", Lines({":04100000G1020304E2"}), {{0x1002, {3, 4}}}, "Format Error", 1,
       0x1002},
      {"bad address digit", Lines({":0410G00001020304E2"}), {}, "Format Error", 1},
      {"bad checksum digit of an end record", Lines({":00000001GG"}), {}, "Format Error", 1},
      {"base record of count 0", Lines({":00000004FC"}), {}, "Format Error", 1},
  };
  for (const auto& c : cases) CheckLoad(c, "T.HEX");
}

TEST(HexReader, EitherExtendedRecordGivesTheOneBase) {
  const struct {
    std::vector<std::string> lines;
    Address base;
  } cases[] = {
      {{":020000021000EC"}, 0x10000},
      {{":020000040001F9"}, 0x10000},
      {{":02000004FFFFFC"}, 0xFFFF0000},
      {{":02000002FFFF"}, 0},  // a line of wrong length changes nothing
      {{":02000004FFFFFC", ":020000020000FC"}, 0},
      {{":020000040002F8", kRecord, ":00000001FF"}, 0x20000},
  };
  for (const auto& c : cases) {
    Module1 m = MakeImage(0, kImageLast);
    HexReader reader;
    for (const auto& text : c.lines) reader.ReadLine(m, Line{text, text.size()}, 0, kImageLast);
    EXPECT_EQ(reader.base(), c.base) << c.lines.front();
  }
}

}  // namespace
}  // namespace kestrum::test
