// The loader over arbitrary files, bare names, ranges and offsets, held
// against a plain model of the reading rules that goes line by line and
// byte by byte: the image, the outcome, the message and the failing line
// must agree exactly. As the model stops at the first bad line, so must the
// loader, and a byte outside the range can change in neither. The same
// bytes loaded from a file on disk give the same result as from memory,
// and the line splitter gives the model's lines at any block size. Both
// reading modes, window and tolerant, are held to the model, and every load
// runs twice: with the quick road through whole records and with the exact
// reader alone.
//
// Input: a header of 10 bytes, the bare name, then the file.
//   [0] flags: bits 0-1 the area, bits 2-3 how the offset is read, bit 4 its
//       sign, bit 5 tolerant mode
//   [1] length of the bare name (mod 33)
//   [2..3] LoadFirst - BufFirst, [4..5] LoadLast - LoadFirst (clamped to the area)
//   [6..9] the offset
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "FuzzCheck.h"
#include "image/Address.h"
#include "reading/LineReader.h"
#include "reading/LoadObjectFile.h"

using namespace kestrum;

namespace {

// ---- The model: the rules as plainly as they can be written ----

struct ModelLine {
  std::string_view text;
  std::uint64_t number;  // counted from 1, passed-over lines included
};

bool Blank(char c) { return c == ' ' || c == '\t'; }

// Window mode: CR or CR LF ends a line. Tolerant mode: LF too; blank lines
// go, trailing blanks go, and a last line without an end of Ctrl-Z, blanks
// and tabs goes.
std::vector<ModelLine> SplitLines(std::string_view bytes, bool tolerant) {
  std::vector<ModelLine> lines;
  std::uint64_t number = 0;
  const auto add = [&](std::string_view text, bool atEof) {
    ++number;
    if (tolerant) {
      while (!text.empty() && Blank(text.back())) text.remove_suffix(1);
      if (text.empty()) return;
      if (atEof && text.find_first_not_of("\x1A \t") == std::string_view::npos) return;
    }
    lines.push_back({text, number});
  };
  std::size_t begin = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] != '\r' && !(tolerant && bytes[i] == '\n')) continue;
    add(bytes.substr(begin, i - begin), false);
    if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
    begin = i + 1;
  }
  if (begin < bytes.size()) add(bytes.substr(begin), true);
  return lines;
}

// The pair at a column counted from 1, or -1.
int Pair(std::string_view line, std::size_t column) {
  if (column < 1 || column + 1 > line.size()) return -1;
  const int high = HexDigitValue(line[column - 1]), low = HexDigitValue(line[column]);
  return high < 0 || low < 0 ? -1 : high * 16 + low;
}

enum class Status { Ok, Format, Sum };

struct Model {
  std::vector<std::uint8_t>& image;
  Address bufFirst, loadFirst, loadLast, offset;
  Address base = 0;

  // Stores the bytes of a record that the range clip keeps, each from its
  // pair, up to the first pair that is no pair of digits; false if any of
  // the n pairs is none.
  bool Store(std::string_view line, std::size_t dataColumn, Address R, Address n) {
    const Address E = R + n - 1;
    const Address F = R < loadFirst ? loadFirst : R;
    const Address L = E < loadLast ? E : loadLast;
    for (Address A = F; A <= L; ++A) {
      const int value = Pair(line, dataColumn + 2 * static_cast<std::size_t>(A - R));
      if (value < 0) return false;
      image[static_cast<std::size_t>(A - bufFirst)] = static_cast<std::uint8_t>(value);
    }
    for (Address i = 0; i < n; ++i)
      if (Pair(line, dataColumn + 2 * static_cast<std::size_t>(i)) < 0) return false;
    return true;
  }
  bool PassedOver(Address R, Address n) const {
    const Address E = R + n - 1;
    return R < loadFirst ? E < loadFirst : R > loadLast;
  }

  Status HexLine(std::string_view line) {
    const int count = Pair(line, 2);
    if (count < 0 || line.size() != 11 + 2 * static_cast<std::size_t>(count)) return Status::Format;
    const int checksum = Pair(line, line.size() - 1);
    if (checksum < 0) return Status::Format;
    if (line[7] != '0' || (line[8] != '0' && line[8] != '2' && line[8] != '4')) return Status::Ok;
    const int type = line[8] - '0';
    const int addressHigh = Pair(line, 4), addressLow = Pair(line, 6);
    int sum = count + addressHigh + addressLow + type;
    if (type == 0) {
      if (addressHigh < 0 || addressLow < 0) return Status::Format;
      const Address R = addressHigh * 256 + addressLow + base + offset;
      if (PassedOver(R, count)) return Status::Ok;
      if (!Store(line, 10, R, count)) return Status::Format;
      for (int i = 0; i < count; ++i) sum += Pair(line, 10 + 2 * static_cast<std::size_t>(i));
    } else {
      const int high = Pair(line, 10), low = Pair(line, 12);
      if (high < 0 || low < 0 || addressHigh < 0 || addressLow < 0) return Status::Format;
      base = (high * 256 + low) * Address{type == 2 ? 16 : 65536};
      sum += high + low;
    }
    return (256 - sum % 256) % 256 == checksum ? Status::Ok : Status::Sum;
  }

  Status SLine(std::string_view line) {
    if (line.size() < 2 || (line[0] != 'S' && line[0] != 's')) return Status::Format;
    if (std::string_view("05789").find(line[1]) != std::string_view::npos) return Status::Ok;
    if (line[1] < '1' || line[1] > '3') return Status::Format;
    const int K = line[1] - '0';
    const int count = Pair(line, 3);
    if (count < 0) return Status::Format;
    std::string padded =
        "000000" + std::string(line.substr(std::min<std::size_t>(4, line.size()), 2 * K + 2));
    if (padded.size() > 8) padded = padded.substr(padded.size() - 8);
    const Address R = AddressFromText(padded) + offset;
    const Address n = count - K - 2;
    if (line.size() != 4 + 2 * static_cast<std::size_t>(count)) return Status::Format;
    if (PassedOver(R, n)) return Status::Ok;
    if (!Store(line, 7 + 2 * static_cast<std::size_t>(K), R, n)) return Status::Format;
    int sum = 0;
    for (int i = 0; i < count; ++i) {
      const int value = Pair(line, 3 + 2 * static_cast<std::size_t>(i));
      if (value < 0) return Status::Format;
      sum += value;
    }
    const int checksum = Pair(line, line.size() - 1);
    if (checksum < 0) return Status::Format;
    return 255 - sum % 256 == checksum ? Status::Ok : Status::Sum;
  }
};

struct ModelOutcome {
  ObjectFormat format = ObjectFormat::BIN;
  Status status = Status::Ok;
  std::uint64_t line = 0;
};

ObjectFormat ModelFormat(std::string_view name, std::string_view file, bool tolerant) {
  const auto dot = name.find('.');
  const std::string_view extension =
      dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
  if (tolerant) {
    // The loader looks at the head of the file only.
    file = file.substr(0, kFormatProbeBytes);
    file.remove_prefix(std::min(file.find_first_not_of(" \t\r\n"), file.size()));
  }
  const bool colon = !file.empty() && file[0] == ':';
  const bool sRecord = file.size() >= 2 && file[0] == 'S' && file[1] >= '0' && file[1] <= '9';
  if (EqualsIgnoreCase(extension, "HEX")) return tolerant && sRecord ? ObjectFormat::S : ObjectFormat::HEX;
  if (EqualsIgnoreCase(extension, "BIN")) return ObjectFormat::BIN;
  if (EqualsIgnoreCase(extension, "S")) return tolerant && colon ? ObjectFormat::HEX : ObjectFormat::S;
  if (file.empty()) return ObjectFormat::BIN;
  const auto lineEndWithin = [&](std::size_t span) {
    return file.substr(0, span).find_first_of("\r\n") != std::string_view::npos;
  };
  if (file[0] == 'S' && lineEndWithin(514)) return ObjectFormat::S;
  if (file[0] == ':' && lineEndWithin(523)) return ObjectFormat::HEX;
  return ObjectFormat::BIN;
}

ModelOutcome ModelLoad(Model& model, std::string_view name, std::string_view file, bool tolerant) {
  ModelOutcome outcome;
  if (file.empty()) return outcome;
  outcome.format = ModelFormat(name, file, tolerant);
  if (outcome.format == ObjectFormat::BIN) {
    for (std::size_t k = 0; k < file.size(); ++k) {
      const Address A = model.loadFirst + model.offset + static_cast<Address>(k);
      if (A > model.loadLast) break;
      if (A >= model.loadFirst)
        model.image[static_cast<std::size_t>(A - model.bufFirst)] = static_cast<std::uint8_t>(file[k]);
    }
    return outcome;
  }
  for (const ModelLine& line : SplitLines(file, tolerant)) {
    outcome.line = line.number;
    outcome.status = outcome.format == ObjectFormat::HEX ? model.HexLine(line.text) : model.SLine(line.text);
    if (outcome.status != Status::Ok) return outcome;
  }
  outcome.line = 0;
  return outcome;
}

// ---- The loader under test ----

constexpr Address kAreaSize = 0x10000;
constexpr Address kAreaBases[] = {0, 0x10000, 0x7FFF8000, 0xFFFF0000};

// What the image holds before each load: unlike FF, a stored FF shows.
const std::vector<std::uint8_t>& Pattern() {
  static const std::vector<std::uint8_t> pattern = [] {
    std::vector<std::uint8_t> p(static_cast<std::size_t>(kAreaSize));
    for (std::size_t i = 0; i < p.size(); ++i) p[i] = static_cast<std::uint8_t>(i ^ (i >> 8) ^ 0x5A);
    return p;
  }();
  return pattern;
}

Module1& Image() {
  static Module1 m = [] {
    Module1 image;
    Check(SizeBuffer(image, 0, kAreaSize - 1) == SizeResult::Ok, "an image of 64 KiB");
    return image;
  }();
  return m;
}

void Reset(Module1& m) {
  std::memcpy(m.Buffer.data(), Pattern().data(), Pattern().size());
  m.FileError = 0;
}

// Removed when the process ends through exit(), as libFuzzer ends a timed
// run: a static object's destructor, for the text it removes must still
// be there then.
struct Scratch {
  std::string path;
  ~Scratch() { std::remove(path.c_str()); }
};

const std::string& ScratchFile() {
  static const Scratch scratch{
      (std::filesystem::temp_directory_path() / ("kestrum-fuzz-" + std::to_string(getpid()) + ".load"))
          .string()};
  return scratch.path;
}

// The splitter's lines at a small block size: each the model's line, whole
// while it fits the block, else its head and full length.
void CheckLines(std::string_view file, const std::vector<ModelLine>& expected, std::size_t blockSize,
                ReadingMode mode) {
  MemorySource source(file);
  LineReader reader(source, blockSize, mode);
  Line line;
  std::size_t i = 0;
  while (reader.Next(line)) {
    Check(i < expected.size(), "no more lines than the model's");
    const std::string_view want = expected[i].text;
    Check(line.length == want.size(), "a line's full length");
    Check(want.substr(0, line.text.size()) == line.text, "a line's head");
    Check(line.Whole() || want.size() >= blockSize || mode == ReadingMode::Tolerant,
          "a line that fits the block is whole");
    Check(reader.LineNumber() == expected[i++].number, "lines counted from 1");
  }
  Check(i == expected.size(), "every line of the model");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 10) return 0;
  const auto u16 = [&](std::size_t at) { return static_cast<Address>(data[at] | data[at + 1] << 8); };
  const std::uint32_t raw = static_cast<std::uint32_t>(data[6] | data[7] << 8 | data[8] << 16) |
                            static_cast<std::uint32_t>(data[9]) << 24;
  const std::size_t nameLength = std::min<std::size_t>(data[1] % 33, size - 10);
  const std::string name(reinterpret_cast<const char*>(data + 10), nameLength);
  const std::string_view file(reinterpret_cast<const char*>(data + 10 + nameLength), size - 10 - nameLength);

  Module1& m = Image();
  m.BufFirst = kAreaBases[data[0] & 3];
  m.BufLast = m.BufFirst + kAreaSize - 1;
  const Address loadFirst = m.BufFirst + u16(2);
  const Address loadLast = std::min(loadFirst + u16(4), m.BufLast);
  Address offset = 0;
  switch ((data[0] >> 2) & 3) {
    case 0:
      offset = 0;
      break;
    case 1:
      offset = static_cast<std::int16_t>(raw & 0xFFFF);
      break;
    case 2:
      offset = static_cast<Address>(raw & 0xFFFF0000);
      break;
    default:
      offset = raw;
      break;
  }
  if (data[0] & 0x10) offset = -offset;
  m.LoadOffset = offset;
  m.LoadFileName = "memory/" + name;
  const bool tolerant = (data[0] & 0x20) != 0;
  LoadOptions options;
  options.mode = tolerant ? ReadingMode::Tolerant : ReadingMode::Window;

  static std::vector<std::uint8_t> expected;
  expected = Pattern();
  Model model{expected, m.BufFirst, loadFirst, loadLast, offset};
  const ModelOutcome want = ModelLoad(model, name, file, tolerant);

  Reset(m);
  const LoadReport got = LoadObjectBytes(m, loadFirst, loadLast, name, file, options);
  const bool failed = want.status != Status::Ok;
  Check(std::memcmp(m.Buffer.data(), expected.data(), expected.size()) == 0, "the model's image");
  Check(got.Loaded() == !failed, "the model's outcome");
  Check(m.FileError == 0, "FileError left to the dialog");
  if (failed) {
    Check(got.outcome.ending == Ending::Failed, "a record error");
    Check(got.outcome.line == want.line, "the model's failing line");
    Check(got.outcome.words == (want.status == Status::Format ? "Format Error" : "SUM Error"),
          "the model's message");
  }
  if (!file.empty()) Check(got.format == want.format, "the model's format");

  // The exact reader alone, without the quick road through whole records.
  {
    Reset(m);
    LoadOptions exactOnly = options;
    exactOnly.quick = false;
    const LoadReport exact = LoadObjectBytes(m, loadFirst, loadLast, name, file, exactOnly);
    Check(std::memcmp(m.Buffer.data(), expected.data(), expected.size()) == 0,
          "the image without the quick road");
    Check(exact.outcome == got.outcome && exact.lines == got.lines && exact.dataRecords == got.dataRecords &&
              exact.stored == got.stored,
          "the same outcome without the quick road");
  }

  // The same bytes from a file on disk.
  {
    std::FILE* f = std::fopen(ScratchFile().c_str(), "wb");
    Check(f != nullptr && std::fwrite(file.data(), 1, file.size(), f) == file.size() && std::fclose(f) == 0,
          "the scratch file is written");
    Reset(m);
    m.LoadFileName = ScratchFile();
    const LoadReport disk = LoadObjectFile(m, loadFirst, loadLast, name, options);
    Check(std::memcmp(m.Buffer.data(), expected.data(), expected.size()) == 0, "the same image from disk");
    Check(disk.outcome.words == got.outcome.words && disk.outcome.line == got.outcome.line,
          "the same outcome from disk");
  }

  CheckLines(file, SplitLines(file, tolerant), 1 + data[5] % 64, options.mode);
  return 0;
}
