// Steps that write object and YSM files.
#include "cli/Cli.h"

namespace kestrum::cli {

std::vector<StepSpec> SaveSteps() { return {}; }

}  // namespace kestrum::cli
