// Steps that write object and YSM files. They check what the File Save
// dialog checks, with its words, but write exactly the named file: no
// extension is added, nothing is asked, and an existing file is replaced
// whole once the new one is complete.
#include <ostream>

#include "cli/Cli.h"
#include "image/Address.h"
#include "writing/Writers.h"

namespace kestrum::cli {

namespace {

// The range of the step, the area by default, checked in the dialog's order
// around the record length test that falls between its checks.
struct RangeCheck {
  int status = kOk;
  Address first = 0, last = 0;
};

RangeCheck CheckRange(CliContext& ctx, const Step& step, bool recordLengthOk) {
  RangeCheck r;
  r.first = ctx.m.BufFirst;
  r.last = ctx.m.BufLast;
  if (step.Has("--range")) {
    std::string why;
    if (!ParseRange(step.Option("--range"), r.first, r.last, why)) {
      r.status = Fail(ctx, kUsage, "--range: " + why);
      return r;
    }
  }
  if (r.first > r.last)
    r.status = Fail(ctx, kUsage, "Address Error!");
  else if (!recordLengthOk)
    r.status = Fail(ctx, kUsage, "RecordLength Error!");
  else if (!ctx.m.InArea(r.first))
    r.status = Fail(ctx, kUsage, "FirstAddress Error!");
  else if (!ctx.m.InArea(r.last))
    r.status = Fail(ctx, kUsage, "LastAddress Error!");
  return r;
}

// A writer's failure: its message, already shown to the platform.
int Failed(CliContext& ctx, SaveOutcome outcome) {
  ctx.m.FileError = 0;
  const std::string words = ctx.platform.messages.empty() ? "save failed" : ctx.platform.messages.back();
  return Fail(ctx, outcome == SaveOutcome::RecordLengthError ? kUsage : kFailed, words);
}

int RunSave(CliContext& ctx, const Step& step) {
  const std::string format = step.Option("--format");
  const bool bin = EqualsIgnoreCase(format, "bin");
  Address length = 0x10;
  const bool lengthOk = bin || !step.Has("--record-length") ||
                        (ParseHex(step.Option("--record-length"), 2, length) && length != 0);
  const RangeCheck range = CheckRange(ctx, step, lengthOk);
  if (range.status != kOk) return range.status;
  const bool hex = EqualsIgnoreCase(format, "hex"), s = EqualsIgnoreCase(format, "s");
  if (!bin && !hex && !s) return Fail(ctx, kUsage, "Format Error!");

  ctx.m.SaveFirst = range.first;
  ctx.m.SaveLast = range.last;
  ctx.m.RecordLength = static_cast<std::int16_t>(length);
  const std::string& file = step.args[0];
  ProgressLine progress(ctx.err, "save " + file, ctx.progress);
  WriteOptions options;
  options.replaceWhole = true;
  options.keepPartial = false;
  options.progress = [&progress](std::uint64_t done, std::uint64_t total) { progress(done, total); };
  const SaveOutcome outcome = bin   ? SaveBinFile(ctx.m, ctx.platform, file, options)
                              : hex ? SaveHexFile(ctx.m, ctx.platform, file, options)
                                    : SaveSFile(ctx.m, ctx.platform, file, options);
  progress.Done();
  if (outcome != SaveOutcome::Done) return Failed(ctx, outcome);
  if (ctx.verbose) {
    ctx.err << "save: " << file << ": " << AddressToText(range.first) << ":" << AddressToText(range.last)
            << " as "
            << (bin   ? "BIN"
                : hex ? "HEX"
                      : "S")
            << '\n';
  }
  return kOk;
}

int RunYsm(CliContext& ctx, const Step& step) {
  const RangeCheck range = CheckRange(ctx, step, true);
  if (range.status != kOk) return range.status;
  const std::string sum = step.Option("--sum");
  if (!EqualsIgnoreCase(sum, "8-8") && !EqualsIgnoreCase(sum, "8-16") && !EqualsIgnoreCase(sum, "16-16"))
    return Fail(ctx, kUsage, "YSM File Format Error!");

  ctx.m.SaveFirst = range.first;
  ctx.m.SaveLast = range.last;
  const std::string& file = step.args[0];
  const SaveOutcome outcome = SaveYsmFile(ctx.m, ctx.platform, file, sum + "SUM");
  if (outcome != SaveOutcome::Done) return Failed(ctx, outcome);
  if (ctx.verbose) {
    ctx.err << "ysm: " << file << ": " << sum << " sum of " << AddressToText(range.first) << ":"
            << AddressToText(range.last) << '\n';
  }
  return kOk;
}

}  // namespace

std::vector<StepSpec> SaveSteps() {
  return {
      {"save",
       {"FILE"},
       {},
       {{"--format", "bin|hex|s", true}, {"--range", "FIRST:LAST"}, {"--record-length", "HEX"}},
       "writes exactly FILE in the format, over the range (the area by default), HEX and S records of "
       "--record-length bytes (10 by default); an existing file is replaced whole (File Save)",
       RunSave},
      {"ysm",
       {"FILE"},
       {},
       {{"--sum", "8-8|8-16|16-16", true}, {"--range", "FIRST:LAST"}},
       "writes the three-line YSM file with the chosen sum of the range, the area by default (File Save)",
       RunYsm},
  };
}

}  // namespace kestrum::cli
