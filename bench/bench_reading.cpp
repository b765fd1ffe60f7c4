// Loading a 64 MiB image from HEX, S and BIN files that the benchmark makes
// itself. Throughput is counted in bytes of file text (of file bytes for BIN):
// from disk through the file layer, and from memory to see the readers alone;
// each text format in window mode and in the command line's tolerant mode.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "reading/LoadObjectFile.h"

namespace {

namespace fs = std::filesystem;
using kestrum::Address;
using kestrum::Module1;

constexpr Address kImageBytes = Address{64} << 20;
constexpr int kRecordBytes = 16;

const char kHex[] = "0123456789ABCDEF";

void PutByte(std::string& out, unsigned value) {
  out += kHex[(value >> 4) & 0xF];
  out += kHex[value & 0xF];
}

std::string HexText(const std::string& image) {
  std::string text;
  text.reserve(image.size() * 45 / kRecordBytes + 1024);
  for (std::size_t at = 0; at < image.size(); at += kRecordBytes) {
    if (at % 0x10000 == 0) {
      const unsigned upper = static_cast<unsigned>(at >> 16);
      text += ":02000004";
      PutByte(text, upper >> 8);
      PutByte(text, upper & 0xFF);
      PutByte(text, (256 - ((2 + 4 + (upper >> 8) + (upper & 0xFF)) & 0xFF)) & 0xFF);
      text += "\r\n";
    }
    unsigned sum = kRecordBytes + ((at >> 8) & 0xFF) + (at & 0xFF);
    text += ':';
    PutByte(text, kRecordBytes);
    PutByte(text, (at >> 8) & 0xFF);
    PutByte(text, at & 0xFF);
    PutByte(text, 0);
    for (int i = 0; i < kRecordBytes; ++i) {
      const auto b = static_cast<unsigned char>(image[at + i]);
      PutByte(text, b);
      sum += b;
    }
    PutByte(text, (256 - (sum & 0xFF)) & 0xFF);
    text += "\r\n";
  }
  text += ":00000001FF\r\n";
  return text;
}

std::string SText(const std::string& image) {
  std::string text;
  text.reserve(image.size() * 49 / kRecordBytes + 1024);
  for (std::size_t at = 0; at < image.size(); at += kRecordBytes) {
    const unsigned count = 4 + kRecordBytes + 1;
    unsigned sum = count;
    text += "S3";
    PutByte(text, count);
    for (int shift = 24; shift >= 0; shift -= 8) {
      PutByte(text, (at >> shift) & 0xFF);
      sum += (at >> shift) & 0xFF;
    }
    for (int i = 0; i < kRecordBytes; ++i) {
      const auto b = static_cast<unsigned char>(image[at + i]);
      PutByte(text, b);
      sum += b;
    }
    PutByte(text, 255 - (sum & 0xFF));
    text += "\r\n";
  }
  text += "S70500000000FA\r\n";
  return text;
}

// The files, made once and removed at exit.
struct Files {
  fs::path dir = fs::temp_directory_path() / ("kestrum-bench-reading-" + std::to_string(getpid()));
  std::string bin, hex, s;
  Files() {
    fs::create_directories(dir);
    std::mt19937_64 random(7);
    bin.resize(static_cast<std::size_t>(kImageBytes));
    for (std::size_t i = 0; i < bin.size(); i += 8) {
      const auto r = random();
      std::memcpy(&bin[i], &r, 8);
    }
    hex = HexText(bin);
    s = SText(bin);
    for (const auto& [name, bytes] : {std::pair{"image.bin", &bin}, {"image.hex", &hex}, {"image.s", &s}}) {
      std::ofstream(dir / name, std::ios::binary)
          .write(bytes->data(), static_cast<std::streamsize>(bytes->size()));
    }
  }
  ~Files() {
    std::error_code ec;
    fs::remove_all(dir, ec);
  }
};

Files& TheFiles() {
  static Files files;
  return files;
}

Module1& Image() {
  static Module1 m = [] {
    Module1 image;
    if (kestrum::SizeBuffer(image, 0, kImageBytes - 1) != kestrum::SizeResult::Ok) std::abort();
    std::memset(image.Buffer.data(), 0xFF, static_cast<std::size_t>(image.BufSize));
    return image;
  }();
  return m;
}

void Check(const Module1& m) {
  if (std::memcmp(m.Buffer.data(), TheFiles().bin.data(), TheFiles().bin.size()) != 0) {
    std::fprintf(stderr, "loaded image differs\n");
    std::abort();
  }
}

kestrum::LoadOptions ReadIn(kestrum::ReadingMode mode) {
  kestrum::LoadOptions options;
  options.mode = mode;
  return options;
}

void LoadFromDisk(benchmark::State& state, const char* name, const std::string& bytes,
                  kestrum::ReadingMode mode = kestrum::ReadingMode::Window) {
  Files& files = TheFiles();
  Module1& m = Image();
  m.LoadFileName = (files.dir / name).string();
  for (auto _ : state) {
    if (!kestrum::LoadObjectFile(m, m.BufFirst, m.BufLast, name, ReadIn(mode)).Loaded()) std::abort();
    benchmark::ClobberMemory();
  }
  Check(m);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(bytes.size()));
}

void LoadFromMemory(benchmark::State& state, const char* name, const std::string& bytes,
                    kestrum::ReadingMode mode = kestrum::ReadingMode::Window) {
  Module1& m = Image();
  for (auto _ : state) {
    if (!kestrum::LoadObjectBytes(m, m.BufFirst, m.BufLast, name, bytes, ReadIn(mode)).Loaded()) std::abort();
    benchmark::ClobberMemory();
  }
  Check(m);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(bytes.size()));
}

void BM_LoadHexFile(benchmark::State& state) { LoadFromDisk(state, "image.hex", TheFiles().hex); }
void BM_LoadSFile(benchmark::State& state) { LoadFromDisk(state, "image.s", TheFiles().s); }
void BM_LoadBinFile(benchmark::State& state) { LoadFromDisk(state, "image.bin", TheFiles().bin); }
void BM_ReadHexText(benchmark::State& state) { LoadFromMemory(state, "image.hex", TheFiles().hex); }
void BM_ReadSText(benchmark::State& state) { LoadFromMemory(state, "image.s", TheFiles().s); }
constexpr auto kTolerant = kestrum::ReadingMode::Tolerant;
void BM_LoadHexFileTolerant(benchmark::State& state) {
  LoadFromDisk(state, "image.hex", TheFiles().hex, kTolerant);
}
void BM_LoadSFileTolerant(benchmark::State& state) {
  LoadFromDisk(state, "image.s", TheFiles().s, kTolerant);
}
void BM_ReadHexTextTolerant(benchmark::State& state) {
  LoadFromMemory(state, "image.hex", TheFiles().hex, kTolerant);
}
void BM_ReadSTextTolerant(benchmark::State& state) {
  LoadFromMemory(state, "image.s", TheFiles().s, kTolerant);
}

BENCHMARK(BM_LoadHexFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LoadSFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LoadBinFile)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadHexText)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadSText)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LoadHexFileTolerant)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_LoadSFileTolerant)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadHexTextTolerant)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReadSTextTolerant)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
