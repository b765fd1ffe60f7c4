// Hostile files at growing sizes: a line of many megabytes, lines that a
// lone LF never ends, records that all fall outside the range. The time per
// byte must stay flat as the file grows; the fitted complexity says so.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "reading/LoadObjectFile.h"

namespace {

using kestrum::Module1;

std::string Make(int kind, std::size_t size) {
  std::string text;
  text.reserve(size + 64);
  switch (kind) {
    case 0:  // one header line of the whole size, passed over
      text = "S0" + std::string(size, '7') + "\r\n";
      break;
    case 1:  // a HEX file whose lines end with a lone LF: one line
      while (text.size() < size) text += ":10000000000102030405060708090A0B0C0D0E0F78\n";
      break;
    default:  // every record above the area
      text = ":020000040001F9\r\n";
      while (text.size() < size) text += ":10000000000102030405060708090A0B0C0D0E0F78\r\n";
      break;
  }
  return text;
}

template <int kind>
void BM_Hostile(benchmark::State& state) {
  const std::string text = Make(kind, static_cast<std::size_t>(state.range(0)));
  static const char* const kNames[] = {"long.s", "lf.hex", "outside.hex"};
  Module1 m;
  if (kestrum::SizeBuffer(m, 0, 0xFFFF) != kestrum::SizeResult::Ok) std::abort();
  for (auto _ : state) {
    const auto report = kestrum::LoadObjectBytes(m, 0, 0xFFFF, kNames[kind], text);
    benchmark::DoNotOptimize(report);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size()));
  state.SetComplexityN(state.range(0));
}

}  // namespace

#define KESTRUM_HOSTILE(kind)          \
  BENCHMARK_TEMPLATE(BM_Hostile, kind) \
      ->RangeMultiplier(4)             \
      ->Range(1 << 20, 64 << 20)       \
      ->Complexity(benchmark::oN)      \
      ->Unit(benchmark::kMillisecond)
KESTRUM_HOSTILE(0);
KESTRUM_HOSTILE(1);
KESTRUM_HOSTILE(2);

BENCHMARK_MAIN();
