#pragma once
// How a fuzz target reports a broken property: it names it and aborts, so
// that the fuzzer keeps the input.
#include <cstdio>
#include <cstdlib>

inline void Check(bool ok, const char* what) {
  if (ok) return;
  std::fprintf(stderr, "property broken: %s\n", what);
  std::abort();
}
