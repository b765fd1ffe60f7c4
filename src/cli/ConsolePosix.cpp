#include "cli/Console.h"

namespace kestrum::cli {

std::vector<std::string> CallWords(int argc, char** argv) { return {argv + 1, argv + argc}; }

void BytesOnStandardStreams() {}

}  // namespace kestrum::cli
