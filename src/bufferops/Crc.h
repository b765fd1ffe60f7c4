#pragma once
// Cyclic redundancy checks, described as the published catalogue of CRC
// models describes them: width, polynomial, initial value, reflected input,
// reflected output and final XOR.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrum {

struct CrcModel {
  std::string name;
  int width = 32;  // 1 to 64 bits
  std::uint64_t poly = 0;
  std::uint64_t init = 0;
  bool refin = false;
  bool refout = false;
  std::uint64_t xorout = 0;
  std::uint64_t check = 0;  // the CRC of the ASCII bytes "123456789"
  std::string_view alias = {};

  bool operator==(const CrcModel&) const = default;
};

// The models known by name; the first is the default.
std::span<const CrcModel> CrcCatalogue();

// A catalogue model by its name or alias (ASCII case ignored), or
// "custom:WIDTH,POLY,INIT,REFIN,REFOUT,XOROUT" with the numbers in
// hexadecimal and REFIN, REFOUT "true" or "false". Nothing, with the reason
// in why, for an unknown name or parameters that don't fit the width.
std::optional<CrcModel> FindCrcModel(std::string_view text, std::string& why);

// How a CRC is worked out: the carry-less multiply instructions where the
// processor has them, else (or when asked) tables eight bytes at a time.
enum class CrcPath { Fastest, Portable };

class Crc {
 public:
  explicit Crc(const CrcModel& model, CrcPath path = CrcPath::Fastest);

  // The check value of n bytes, in the low width bits.
  std::uint64_t Compute(const std::uint8_t* data, std::size_t n) const;
  const CrcModel& model() const { return model_; }
  bool folds() const { return folds_; }

  // The constants of the carry-less fold: x^k modulo the generator at the
  // distances of four blocks and of one block of 16 bytes, in the order the
  // folding code multiplies them.
  struct FoldConstants {
    std::uint64_t by4Low, by4High, by1Low, by1High;
  };

 private:
  // The register runs 64 bits wide: a normal CRC is held at the top of it, a
  // reflected one at the bottom, so that every width shares one loop.
  std::uint64_t Update(std::uint64_t reg, const std::uint8_t* p, std::size_t n) const;
  std::uint64_t UpdateTables(std::uint64_t reg, const std::uint8_t* p, std::size_t n) const;

  CrcModel model_;
  std::array<std::array<std::uint64_t, 256>, 8> tables_{};  // slicing by 8
  FoldConstants fold_{};
  bool folds_ = false;
};

}  // namespace kestrum
