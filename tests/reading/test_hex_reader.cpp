#include "LoadCase.h"

namespace kestrum::test {
namespace {

const std::string kRecord = ":0410000001020304E2";  // 01 02 03 04 at 1000
const std::string kBadSum = ":0410000001020304E3";
const std::string kNext = ":0410100005060708C2";  // 05 06 07 08 at 1010

TEST(HexReader, RecordsAsTheTablesTell) {
  const std::vector<std::uint8_t> b1234 = {1, 2, 3, 4}, b5678 = {5, 6, 7, 8};
  const LoadCase cases[] = {
      {"data record", Lines({kRecord}), {{0x1000, b1234}}},
      {"clipped to its last byte", Lines({kRecord}), {{0x1003, {4}}}, "", 0, 0x1003},
      {"clipped to its first byte", Lines({kRecord}), {{0x1000, {1}}}, "", 0, 0, 0x1000},
      {"offset below zero drops", Lines({kRecord}), {{0, {3, 4}}}, "", 0, 0, kImageLast, -0x1002},
      {"passed over: checksum untested", Lines({kBadSum}), {}, "", 0, 0, 0xFFF},
      {"bad checksum stores first", Lines({kRecord, kBadSum, kNext}), {{0x1000, b1234}}, "SUM Error", 2},
      {"clipped record: checksum over all", Lines({kBadSum}), {{0x1002, {3, 4}}}, "SUM Error", 1, 0x1002},
      {"segment base", Lines({":020000021000EC", kRecord}), {{0x11000, b1234}}},
      {"linear base", Lines({":020000040001F9", kRecord}), {{0x11000, b1234}}},
      {"linear base FFFF",
       Lines({":02000004FFFFFC", kRecord}),
       {{0x1000, b1234}},
       "",
       0,
       0,
       kImageLast,
       -Address{0xFFFF0000}},
      {"last base replaces", Lines({":020000021000EC", ":020000040002F8", kRecord}), {{0x21000, b1234}}},
      {"bad base checksum", Lines({kRecord, ":020000021000ED", kNext}), {{0x1000, b1234}}, "SUM Error", 2},
      {"end record does not end", Lines({":00000001FF", kRecord}), {{0x1000, b1234}}},
      {"any start mark",
       Lines({" 0410000001020304E2", "x0410100005060708C2"}),
       {{0x1000, b1234}, {0x1010, b5678}}},
      {"lower case", Lines({":0410000001020304e2", ":04100000010a0b0cca"}), {{0x1000, {1, 0xA, 0xB, 0xC}}}},
      {"count too low", Lines({kRecord, ":0310000001020304E2"}), {{0x1000, b1234}}, "Format Error", 2},
      {"digit too many", Lines({kRecord + "0"}), {}, "Format Error", 1},
      {"empty line", Lines({kRecord, "", kNext}), {{0x1000, b1234}}, "Format Error", 2},
      {"short line", Lines({":00"}), {}, "Format Error", 1},
      {"other type, bad checksum", Lines({":00000006FF", ":0100000600FF", kRecord}), {{0x1000, b1234}}},
      {"other type, wrong length", Lines({":0100000600"}), {}, "Format Error", 1},
      {"count 0 in range, checksum tested", Lines({":00100000F0", ":00100000F1"}), {}, "SUM Error", 2},
      {"record past FFFF does not wrap", Lines({":04FFFE0001020304F5"}), {{0xFFFE, b1234}}},
      {"last line without an end", Lines({kRecord}) + kNext, {{0x1000, b1234}, {0x1010, b5678}}},
      {"lone LF is text", Lines({kRecord, kNext}, "\n"), {}, "Format Error", 1},
      // A field that is no hexadecimal number stops like a malformed line.
      {"bad count digit", Lines({":G410000001020304E2"}), {}, "Format Error", 1},
      {"bad data digit stores the bytes before it",
       Lines({":04100000010203G4E2"}),
       {{0x1000, {1, 2, 3}}},
       "Format Error",
       1},
      {"bad digit clipped off the front",
       Lines({":04100000G1020304E2"}),
       {{0x1002, {3, 4}}},
       "Format Error",
       1,
       0x1002},
      {"bad address digit", Lines({":0410G00001020304E2"}), {}, "Format Error", 1},
      {"base record of count 0", Lines({":00000004FC"}), {}, "Format Error", 1},
  };
  for (const auto& c : cases) CheckLoad(c, "T.HEX");
}

}  // namespace
}  // namespace kestrum::test
