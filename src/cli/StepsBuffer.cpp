// Steps that change or measure the image without a file.
#include <ostream>

#include "bufferops/ClearBuffer.h"
#include "cli/Cli.h"

namespace kestrum::cli {

namespace {

int RunClear(CliContext& ctx, const Step&) {
  ClearBuffer(ctx.m);
  if (ctx.verbose) ctx.err << "clear: " << ctx.m.BufSize << " bytes set to FF\n";
  return kOk;
}

}  // namespace

std::vector<StepSpec> BufferSteps() {
  return {
      {"clear", {}, {}, {}, "fills the area with FF (Buffer Clear)", RunClear},
  };
}

}  // namespace kestrum::cli
