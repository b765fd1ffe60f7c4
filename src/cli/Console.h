#pragma once
// What the command line needs of its process: the words of the call as
// UTF-8, and standard output and error that pass bytes unchanged. One
// implementation per platform (ConsolePosix.cpp, ConsoleWindows.cpp).
#include <string>
#include <vector>

namespace kestrum::cli {

// The words after the program's name.
std::vector<std::string> CallWords(int argc, char** argv);

// Lines end in LF on standard output and error, as on every platform.
void BytesOnStandardStreams();

}  // namespace kestrum::cli
