#include "bufferops/Crc.h"

#include <bit>
#include <cstring>
#include <vector>

#include "bufferops/CrcFold.h"
#include "image/Address.h"

namespace kestrum {

namespace {

// Below this many bytes the fold's set-up costs more than it saves.
constexpr std::size_t kFoldMinimum = 256;

// name, width, poly, init, refin, refout, xorout, check, alias
const CrcModel kCatalogue[] = {
    {"CRC-32/ISO-HDLC", 32, 0x04C11DB7, 0xFFFFFFFF, true, true, 0xFFFFFFFF, 0xCBF43926, "CRC-32"},
    {"CRC-32/MPEG-2", 32, 0x04C11DB7, 0xFFFFFFFF, false, false, 0, 0x0376E6E7},
    {"CRC-32/ISCSI", 32, 0x1EDC6F41, 0xFFFFFFFF, true, true, 0xFFFFFFFF, 0xE3069283, "CRC-32C"},
    {"CRC-32/BZIP2", 32, 0x04C11DB7, 0xFFFFFFFF, false, false, 0xFFFFFFFF, 0xFC891918},
    {"CRC-32/JAMCRC", 32, 0x04C11DB7, 0xFFFFFFFF, true, true, 0, 0x340BC6D9},
    {"CRC-16/ARC", 16, 0x8005, 0, true, true, 0, 0xBB3D, "CRC-16"},
    {"CRC-16/MODBUS", 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37},
    {"CRC-16/IBM-3740", 16, 0x1021, 0xFFFF, false, false, 0, 0x29B1, "CRC-16/CCITT-FALSE"},
    {"CRC-16/SPI-FUJITSU", 16, 0x1021, 0x1D0F, false, false, 0, 0xE5CC, "CRC-16/AUG-CCITT"},
    {"CRC-16/XMODEM", 16, 0x1021, 0, false, false, 0, 0x31C3},
    {"CRC-16/KERMIT", 16, 0x1021, 0, true, true, 0, 0x2189},
    {"CRC-8/SMBUS", 8, 0x07, 0, false, false, 0, 0xF4, "CRC-8"},
};

std::uint64_t Mask(int width) { return width == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1; }

// The low width bits of v in reverse order.
std::uint64_t Reflect(std::uint64_t v, int width) {
  std::uint64_t r = 0;
  for (int i = 0; i < width; ++i, v >>= 1) r = (r << 1) | (v & 1);
  return r;
}

std::uint64_t Load64(const std::uint8_t* p, bool bigEndian) {
  std::uint64_t v;
  std::memcpy(&v, p, sizeof v);
  if (bigEndian == (std::endian::native == std::endian::big)) return v;
  v = ((v & 0x00FF00FF00FF00FF) << 8) | ((v >> 8) & 0x00FF00FF00FF00FF);
  v = ((v & 0x0000FFFF0000FFFF) << 16) | ((v >> 16) & 0x0000FFFF0000FFFF);
  return (v << 32) | (v >> 32);
}

// x^k modulo the generator x^64 + poly64.
std::uint64_t XPowerMod(int k, std::uint64_t poly64) {
  std::uint64_t r = 1;
  for (int i = 0; i < k; ++i) r = (r << 1) ^ ((r >> 63) != 0 ? poly64 : 0);
  return r;
}

std::vector<std::string_view> Split(std::string_view text, char by) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0;;) {
    const std::size_t end = text.find(by, at);
    parts.push_back(text.substr(at, end == std::string_view::npos ? end : end - at));
    if (end == std::string_view::npos) return parts;
    at = end + 1;
  }
}

bool ParseHexNumber(std::string_view text, std::uint64_t& value) {
  if (text.empty() || text.size() > 16) return false;
  value = 0;
  for (char c : text) {
    const int d = HexDigitValue(c);
    if (d < 0) return false;
    value = value * 16 + static_cast<std::uint64_t>(d);
  }
  return true;
}

bool ParseFlag(std::string_view text, bool& value) {
  value = EqualsIgnoreCase(text, "true");
  return value || EqualsIgnoreCase(text, "false");
}

std::optional<CrcModel> ParseCustom(std::string_view text, std::string& why) {
  const auto p = Split(text.substr(text.find(':') + 1), ',');
  CrcModel m{std::string(text)};
  std::uint64_t width = 0;
  const char* names[] = {"WIDTH", "POLY", "INIT", "REFIN", "REFOUT", "XOROUT"};
  why = "'" + std::string(text) + "': ";
  if (p.size() != 6) {
    why += "a custom model is custom:WIDTH,POLY,INIT,REFIN,REFOUT,XOROUT";
    return std::nullopt;
  }
  std::uint64_t* numbers[] = {&width, &m.poly, &m.init, nullptr, nullptr, &m.xorout};
  bool* flags[] = {nullptr, nullptr, nullptr, &m.refin, &m.refout, nullptr};
  for (int i = 0; i < 6; ++i) {
    const bool ok = numbers[i] ? ParseHexNumber(p[i], *numbers[i]) : ParseFlag(p[i], *flags[i]);
    if (!ok) {
      why += std::string(names[i]) + " '" + std::string(p[i]) + "' is no " +
             (numbers[i] ? "hexadecimal number" : "true or false");
      return std::nullopt;
    }
  }
  if (width < 1 || width > 64) {
    why += "WIDTH " + std::string(p[0]) + " is not 1 to 40 (hexadecimal: 1 to 64 bits)";
    return std::nullopt;
  }
  m.width = static_cast<int>(width);
  for (int i : {1, 2, 5}) {
    if ((*numbers[i] & ~Mask(m.width)) != 0) {
      why += std::string(names[i]) + " " + std::string(p[i]) + " does not fit in " + std::to_string(m.width) +
             " bits";
      return std::nullopt;
    }
  }
  return m;
}

}  // namespace

std::span<const CrcModel> CrcCatalogue() { return kCatalogue; }

std::optional<CrcModel> FindCrcModel(std::string_view text, std::string& why) {
  if (EqualsIgnoreCase(text.substr(0, 7), "custom:")) return ParseCustom(text, why);
  for (const CrcModel& m : kCatalogue)
    if (EqualsIgnoreCase(text, m.name) || (!m.alias.empty() && EqualsIgnoreCase(text, m.alias))) return m;
  why = "unknown CRC model '" + std::string(text) + "' (crc --help lists the models)";
  return std::nullopt;
}

Crc::Crc(const CrcModel& model, CrcPath path) : model_(model) {
  const int w = model.width;
  const std::uint64_t poly64 = model.poly << (64 - w);
  const std::uint64_t reflectedPoly = Reflect(model.poly, w);
  auto& t0 = tables_[0];
  for (std::uint64_t i = 0; i < 256; ++i) {
    std::uint64_t r = model.refin ? i : i << 56;
    for (int bit = 0; bit < 8; ++bit) {
      if (model.refin)
        r = (r >> 1) ^ ((r & 1) != 0 ? reflectedPoly : 0);
      else
        r = (r << 1) ^ ((r >> 63) != 0 ? poly64 : 0);
    }
    t0[i] = r;
  }
  for (std::size_t k = 1; k < tables_.size(); ++k) {
    for (std::size_t i = 0; i < 256; ++i) {
      const std::uint64_t prev = tables_[k - 1][i];
      tables_[k][i] = model.refin ? (prev >> 8) ^ t0[prev & 0xFF] : (prev << 8) ^ t0[prev >> 56];
    }
  }
  // A reflected product comes out one bit up, which x^(k-1) makes good.
  const int shift = model.refin ? 1 : 0;
  auto constant = [&](int k) {
    const std::uint64_t c = XPowerMod(k - shift, poly64);
    return model.refin ? Reflect(c, 64) : c;
  };
  fold_ = model.refin ? FoldConstants{constant(576), constant(512), constant(192), constant(128)}
                      : FoldConstants{constant(512), constant(576), constant(128), constant(192)};
  folds_ = path == CrcPath::Fastest && crcfold::Available();
}

std::uint64_t Crc::UpdateTables(std::uint64_t reg, const std::uint8_t* p, std::size_t n) const {
  const auto& t = tables_;
  if (model_.refin) {
    for (; n >= 8; p += 8, n -= 8) {
      const std::uint64_t v = reg ^ Load64(p, false);
      reg = t[7][v & 0xFF] ^ t[6][(v >> 8) & 0xFF] ^ t[5][(v >> 16) & 0xFF] ^ t[4][(v >> 24) & 0xFF] ^
            t[3][(v >> 32) & 0xFF] ^ t[2][(v >> 40) & 0xFF] ^ t[1][(v >> 48) & 0xFF] ^ t[0][v >> 56];
    }
    for (; n > 0; ++p, --n) reg = (reg >> 8) ^ t[0][(reg ^ *p) & 0xFF];
  } else {
    for (; n >= 8; p += 8, n -= 8) {
      const std::uint64_t v = reg ^ Load64(p, true);
      reg = t[7][v >> 56] ^ t[6][(v >> 48) & 0xFF] ^ t[5][(v >> 40) & 0xFF] ^ t[4][(v >> 32) & 0xFF] ^
            t[3][(v >> 24) & 0xFF] ^ t[2][(v >> 16) & 0xFF] ^ t[1][(v >> 8) & 0xFF] ^ t[0][v & 0xFF];
    }
    for (; n > 0; ++p, --n) reg = (reg << 8) ^ t[0][(reg >> 56) ^ *p];
  }
  return reg;
}

std::uint64_t Crc::Update(std::uint64_t reg, const std::uint8_t* p, std::size_t n) const {
  if (folds_ && n >= kFoldMinimum) {
    const std::size_t whole = n & ~std::size_t{63};
    std::uint8_t rest[16];
    crcfold::Fold(fold_, model_.refin, reg, p, whole, rest);
    reg = UpdateTables(0, rest, sizeof rest);
    p += whole;
    n -= whole;
  }
  return UpdateTables(reg, p, n);
}

std::uint64_t Crc::Compute(const std::uint8_t* data, std::size_t n) const {
  const int w = model_.width;
  const std::uint64_t start = model_.refin ? Reflect(model_.init, w) : model_.init << (64 - w);
  const std::uint64_t reg = Update(start, data, n);
  // The register as the catalogue's normal form: reflected at the end when
  // refout says so.
  const std::uint64_t normal = model_.refin ? Reflect(reg, w) : reg >> (64 - w);
  return ((model_.refout ? Reflect(normal, w) : normal) ^ model_.xorout) & Mask(w);
}

}  // namespace kestrum
