// Saving a 64 MiB range as BIN, HEX and S: throughput in bytes of file
// written, to a file in the system's temporary folder, replaced each time
// as a save replaces it. For comparison, srec_cat turns the same 64 MiB of
// binary into HEX or S text at 35 to 50 MB/s on these machines.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>

#include "writing/OutputFile.h"
#include "writing/Writers.h"

namespace {

using kestrum::Address;
using kestrum::Module1;

constexpr Address kRangeBytes = Address{64} << 20;

// Random bytes, so that no writer gains from a uniform image.
Module1& Image() {
  static Module1 m = [] {
    Module1 image;
    if (kestrum::SizeBuffer(image, 0, kRangeBytes - 1) != kestrum::SizeResult::Ok) std::abort();
    std::mt19937_64 random(1);
    for (Address i = 0; i < image.BufSize; i += 8) {
      const std::uint64_t bits = random();
      std::memcpy(&image.Buffer[static_cast<std::size_t>(i)], &bits, 8);
    }
    image.SaveFirst = 0;
    image.SaveLast = image.BufLast;
    return image;
  }();
  return m;
}

// Arg 1 writes a file in the temporary folder; arg 0 writes to /dev/null,
// which measures building the records alone.
std::string OutputPath(bool toFile) {
  if (!toFile) return "/dev/null";
  return (std::filesystem::temp_directory_path() / ("kestrum-bench-" + std::to_string(getpid()))).string();
}

template <typename Save>
void Run(benchmark::State& state, int recordLength, Save save) {
  Module1& m = Image();
  m.RecordLength = static_cast<std::int16_t>(recordLength);
  const bool toFile = state.range(0) != 0;
  // The size of the text comes from a file, also when the runs go to /dev/null.
  const std::string sizing = OutputPath(true);
  if (!save(m, sizing).IsDone()) std::abort();
  const auto size = static_cast<std::int64_t>(std::filesystem::file_size(sizing));
  if (!toFile) std::filesystem::remove(sizing);
  const std::string path = OutputPath(toFile);
  for (auto _ : state) {
    if (!save(m, path).IsDone()) std::abort();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * size);
  state.counters["file_MiB"] = static_cast<double>(size) / (1 << 20);
  if (toFile) std::filesystem::remove(path);
}

void BM_SaveBin(benchmark::State& state) {
  kestrum::WriteOptions whole;
  whole.replaceWhole = true;
  Run(state, 0, [&](Module1& m, const std::string& f) { return kestrum::SaveBinFile(m, f, whole); });
}
BENCHMARK(BM_SaveBin)->ArgNames({"file"})->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_SaveHex(benchmark::State& state) {
  Run(state, static_cast<int>(state.range(1)),
      [](Module1& m, const std::string& f) { return kestrum::SaveHexFile(m, f); });
}
BENCHMARK(BM_SaveHex)
    ->ArgNames({"file", "length"})
    ->ArgsProduct({{1, 0}, {0x10, 0xFF}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_SaveS(benchmark::State& state) {
  Run(state, static_cast<int>(state.range(1)),
      [](Module1& m, const std::string& f) { return kestrum::SaveSFile(m, f); });
}
BENCHMARK(BM_SaveS)
    ->ArgNames({"file", "length"})
    ->ArgsProduct({{1, 0}, {0x10, 0xFA}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The same 180 MiB that HEX with length 10 writes, handed over from memory:
// what the file system itself allows on this machine.
void BM_FileSystemCeiling(benchmark::State& state) {
  const std::size_t size = std::size_t{180} << 20;
  const std::string text(size, 'F');
  const std::string path = OutputPath(true);
  for (auto _ : state) {
    kestrum::OutputFile file = kestrum::OutputFile::Create(path);
    for (std::size_t done = 0; done < size; done += kestrum::TextOutput::kBlock)
      file.Write(text.data() + done, std::min(kestrum::TextOutput::kBlock, size - done));
    if (!file.Commit()) std::abort();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
  std::filesystem::remove(path);
}
BENCHMARK(BM_FileSystemCeiling)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
