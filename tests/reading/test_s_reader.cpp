#include "LoadCase.h"

namespace kestrum::test {
namespace {

const std::string kRecord = "S107100001020304DE";  // 01 02 03 04 at 1000
const std::string kBadSum = "S107100001020304DF";
const std::string kNext = "S107101005060708BE";  // 05 06 07 08 at 1010

TEST(SReader, RecordsAsTheTablesTell) {
  const std::vector<std::uint8_t> b1234 = {1, 2, 3, 4}, b5678 = {5, 6, 7, 8};
  const LoadCase cases[] = {
      {"S1 record", Lines({kRecord}), {{0x1000, b1234}}},
      {"S2 and S1", Lines({"S20801200001020304CC", kNext}), {{0x12000, b1234}, {0x1010, b5678}}},
      {"S3 record", Lines({"S3090001200001020304CB"}), {{0x12000, b1234}}},
      {"clipped at the front", Lines({kRecord}), {{0x1002, {3, 4}}}, "", 0, 0x1002},
      {"clipped at the back", Lines({kRecord}), {{0x1000, {1, 2}}}, "", 0, 0, 0x1001},
      {"S3 near the top with an offset",
       Lines({"S309FFFFFFFE01020304F1"}),
       {{0xFFE, b1234}},
       "",
       0,
       0,
       kImageLast,
       -Address{0xFFFFF000}},
      {"offset does not wrap at 32 bits", Lines({"S309FFFFFFFE01020304F1"}), {}, "", 0, 0, kImageLast, 2},
      {"S1 at FFFE does not wrap", Lines({"S107FFFE01020304F1"}), {{0xFFFE, b1234}}},
      {"passed over: checksum untested", Lines({kBadSum}), {}, "", 0, 0, 0xFFF},
      {"passed over: length still tested", Lines({kRecord + "0"}), {}, "Format Error", 1, 0, 0xFFF},
      {"bad checksum stores first", Lines({kRecord, kBadSum, kNext}), {{0x1000, b1234}}, "SUM Error", 2},
      {"clipped record: checksum over all", Lines({kBadSum}), {{0x1002, {3, 4}}}, "SUM Error", 1, 0x1002},
      {"lower case", Lines({"s107100001020304de"}), {{0x1000, b1234}}},
      {"other records unread",
       Lines({"S0", "S5zz", "S7", "S8 anything", "S9030000FF", kRecord}),
       {{0x1000, b1234}}},
      {"S4", Lines({kRecord, "S4030000FC"}), {{0x1000, b1234}}, "Format Error", 2},
      {"S6", Lines({"S6030000FC"}), {}, "Format Error", 1},
      {"empty line", Lines({kRecord, "", kNext}), {{0x1000, b1234}}, "Format Error", 2},
      {"other text", Lines({"hello"}), {}, "Format Error", 1},
      {"count too low", Lines({"S106100001020304DE"}), {}, "Format Error", 1},
      {"no data byte, checksum tested", Lines({"S1031000EC", "S1031000ED"}), {}, "SUM Error", 2},
      {"CR alone ends a line", Lines({kRecord, kNext}, "\r"), {{0x1000, b1234}, {0x1010, b5678}}},
      {"lone LF: one long S1 line", Lines({kRecord, kNext}, "\n"), {}, "Format Error", 1},
      {"lone LF: one long S0 line", Lines({"S00600004844521B", kRecord}, "\n"), {}},
      // A field that is no hexadecimal number stops like a malformed line;
      // the address is address text, where a bad character ends a group.
      {"bad count digit", Lines({"S1G7100001020304DE"}), {}, "Format Error", 1},
      {"bad data digit stores the bytes before it",
       Lines({"S10710000102G304DE"}),
       {{0x1000, {1, 2}}},
       "Format Error",
       1},
      {"bad checksum digit", Lines({"S107100001020304GE"}), {{0x1000, b1234}}, "Format Error", 1},
      {"bad address digit: group ends", Lines({"S10710G001020304DE"}), {{0x0010, b1234}}, "Format Error", 1},
  };
  for (const auto& c : cases) CheckLoad(c, "T.S");
}

}  // namespace
}  // namespace kestrum::test
