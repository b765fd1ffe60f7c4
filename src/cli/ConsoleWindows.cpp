// windows.h comes before the headers that build on it.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "cli/Console.h"

namespace kestrum::cli {

// The system hands main() the words in the ANSI code page, which can't hold
// every file name: take them from the wide command line instead.
std::vector<std::string> CallWords(int argc, char** argv) {
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (!wide) return {argv + 1, argv + argc};
  std::vector<std::string> words;
  for (int i = 1; i < count; ++i) {
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, nullptr, 0, nullptr, nullptr);
    std::string word(static_cast<std::size_t>(length > 0 ? length - 1 : 0), '\0');
    if (length > 1) WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, word.data(), length, nullptr, nullptr);
    words.push_back(std::move(word));
  }
  LocalFree(wide);
  return words;
}

void BytesOnStandardStreams() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

}  // namespace kestrum::cli
