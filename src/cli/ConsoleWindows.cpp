// windows.h comes before the headers that build on it.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "cli/Console.h"
#include "image/Files.h"

namespace kestrum::cli {

// The system hands main() the words in the ANSI code page, which can't hold
// every file name: take them from the wide command line instead.
std::vector<std::string> CallWords(int argc, char** argv) {
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (!wide) return {argv + 1, argv + argc};
  std::vector<std::string> words;
  for (int i = 1; i < count; ++i) words.push_back(NameOf(wide[i]));
  LocalFree(wide);
  return words;
}

void BytesOnStandardStreams() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

}  // namespace kestrum::cli
