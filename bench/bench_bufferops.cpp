// Clear, fill and sum over a 256 MiB image: each should run at the speed
// of memory.
#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

#include "bufferops/ClearBuffer.h"
#include "bufferops/StoreBlock.h"
#include "bufferops/Sum.h"

namespace {

using kestrum::Address;
using kestrum::Module1;

constexpr Address kImageBytes = Address{256} << 20;

// One image for all benchmarks, touched once so that page faults don't count.
Module1& Image() {
  static Module1 m = [] {
    Module1 image;
    if (kestrum::SizeBuffer(image, 0, kImageBytes - 1) != kestrum::SizeResult::Ok) std::abort();
    std::mt19937 random(1);
    for (Address i = 0; i < image.BufSize; i += 4096)
      image.Buffer[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(random());
    return image;
  }();
  return m;
}

void SetBytes(benchmark::State& state, Address bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * bytes);
}

void BM_ClearBuffer(benchmark::State& state) {
  Module1& m = Image();
  for (auto _ : state) {
    kestrum::ClearBuffer(m);
    benchmark::ClobberMemory();
  }
  SetBytes(state, m.BufSize);
}
BENCHMARK(BM_ClearBuffer)->Unit(benchmark::kMillisecond);

void BM_StoreBlockWholeArea(benchmark::State& state) {
  Module1& m = Image();
  int data = 0;
  for (auto _ : state) {
    kestrum::StoreBlock(m, m.BufFirst, m.BufLast, ++data);
    benchmark::ClobberMemory();
  }
  SetBytes(state, m.BufSize);
}
BENCHMARK(BM_StoreBlockWholeArea)->Unit(benchmark::kMillisecond);

void BM_StoreBlockWrapping(benchmark::State& state) {
  Module1& m = Image();
  int data = 0;
  for (auto _ : state) {
    kestrum::StoreBlock(m, m.BufLast / 2 + 1, m.BufLast / 2, ++data);
    benchmark::ClobberMemory();
  }
  SetBytes(state, m.BufSize);
}
BENCHMARK(BM_StoreBlockWrapping)->Unit(benchmark::kMillisecond);

// Reference point: the memset the clear and the fill are measured against.
void BM_Memset(benchmark::State& state) {
  Module1& m = Image();
  int data = 0;
  for (auto _ : state) {
    std::memset(m.Buffer.data(), ++data, static_cast<std::size_t>(m.BufSize));
    benchmark::ClobberMemory();
  }
  SetBytes(state, m.BufSize);
}
BENCHMARK(BM_Memset)->Unit(benchmark::kMillisecond);

void BM_CalculateSum(benchmark::State& state) {
  Module1& m = Image();
  // An odd first address and an even last one: half words at both ends.
  m.SumFirst = m.BufFirst + state.range(0);
  m.SumLast = m.BufLast - state.range(0);
  for (auto _ : state) benchmark::DoNotOptimize(kestrum::CalculateSum(m));
  SetBytes(state, m.SumLast - m.SumFirst + 1);
}
BENCHMARK(BM_CalculateSum)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
