// CRCs over 64 MiB: the fold with carry-less multiplies where the processor
// has them, and the tables eight bytes at a time that every processor runs.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "bufferops/Crc.h"

namespace {

constexpr std::size_t kBytes = std::size_t{64} << 20;

const std::vector<std::uint8_t>& Data() {
  static const std::vector<std::uint8_t> data = [] {
    std::vector<std::uint8_t> bytes(kBytes);
    std::mt19937 random(1);
    for (auto& b : bytes) b = static_cast<std::uint8_t>(random());
    return bytes;
  }();
  return data;
}

// Arguments: the catalogue's index of the model, and 1 for the tables only.
void BM_Crc(benchmark::State& state) {
  const auto& model = kestrum::CrcCatalogue()[static_cast<std::size_t>(state.range(0))];
  const kestrum::Crc crc(model, state.range(1) ? kestrum::CrcPath::Portable : kestrum::CrcPath::Fastest);
  state.SetLabel(model.name + (crc.folds() ? " folded" : " tables"));
  const auto& data = Data();
  for (auto _ : state) benchmark::DoNotOptimize(crc.Compute(data.data(), data.size()));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * kBytes));
}
// CRC-32/ISO-HDLC (reflected), CRC-32/MPEG-2 (normal), CRC-16/XMODEM, each both ways.
BENCHMARK(BM_Crc)->ArgsProduct({{0, 1, 9}, {0, 1}})->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
