// The CRC engine: the catalogue's check values, models of other widths by
// their parameters, and the fold giving the tables' value at every length.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "TestSupport.h"
#include "bufferops/Crc.h"

namespace kestrum {
namespace {

std::uint64_t CrcOf(const std::string& model, const std::string& bytes, CrcPath path = CrcPath::Fastest) {
  std::string why;
  const auto m = FindCrcModel(model, why);
  EXPECT_TRUE(m) << why;
  return m ? Crc(*m, path).Compute(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()) : 0;
}

// The check value over "123456789" of each catalogue model and of models of
// other widths by their parameters; and where the processor folds, the
// fold's value is the table's at lengths around its minimum (256) and its
// 64-byte steps, from an address that is not aligned.
TEST(Crc, CheckValuesAndTheFoldAtEveryLength) {
  const bool folds = !test::SkipCase(!Crc(CrcCatalogue()[0]).folds(), "no carry-less multiply here");
  std::string bytes(100001, '\0');
  std::mt19937 random(7);
  for (auto& b : bytes) b = static_cast<char>(random());
  const std::pair<const char*, std::uint64_t> cases[] = {
      {"CRC-32/ISO-HDLC", 0xCBF43926},
      {"CRC-32/MPEG-2", 0x0376E6E7},
      {"CRC-32/ISCSI", 0xE3069283},
      {"crc-32c", 0xE3069283},  // an alias, in any case
      {"CRC-32/BZIP2", 0xFC891918},
      {"CRC-32/JAMCRC", 0x340BC6D9},
      {"CRC-16/ARC", 0xBB3D},
      {"CRC-16/MODBUS", 0x4B37},
      {"CRC-16/IBM-3740", 0x29B1},
      {"CRC-16/SPI-FUJITSU", 0xE5CC},
      {"CRC-16/XMODEM", 0x31C3},
      {"CRC-16/KERMIT", 0x2189},
      {"CRC-8/SMBUS", 0xF4},
      {"custom:20,04C11DB7,FFFFFFFF,true,true,FFFFFFFF", 0xCBF43926},
      {"custom:3,3,7,TRUE,true,0", 0x6},       // CRC-3/ROHC: narrower than a byte, reflected
      {"custom:5,5,1F,true,true,1F", 0x19},    // CRC-5/USB
      {"custom:7,09,0,false,false,0", 0x75},   // CRC-7/MMC: narrower than a byte, normal
      {"custom:C,80F,0,false,true,0", 0xDAF},  // CRC-12/UMTS: only the output reflected
      {"custom:40,42F0E1EBA9EA3693,0,false,false,0", 0x6C40DF5F0B497347},  // CRC-64/ECMA-182
      {"custom:40,42F0E1EBA9EA3693,FFFFFFFFFFFFFFFF,true,true,FFFFFFFFFFFFFFFF", 0x995DC9BBDF1939FA},  // /XZ
  };
  for (const auto& [model, check] : cases) {
    EXPECT_EQ(CrcOf(model, "123456789"), check) << model;
    for (const std::size_t n : {255, 256, 257, 319, 320, 383, 4109, 100000}) {
      if (!folds) break;
      const std::string part = bytes.substr(1, n);
      EXPECT_EQ(CrcOf(model, part), CrcOf(model, part, CrcPath::Portable)) << model << " over " << n;
    }
  }
  EXPECT_EQ(CrcCatalogue().size(), 12u) << "a model without its row above";
}

}  // namespace
}  // namespace kestrum
