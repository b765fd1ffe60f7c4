// Steps that read object files into the image.
#include "cli/Cli.h"

namespace kestrum::cli {

std::vector<StepSpec> LoadSteps() { return {}; }

}  // namespace kestrum::cli
