// Steps that write object and YSM files. They judge the range and the
// record length as the File Save dialog does, with its words, but write
// exactly the named file: no extension is added, nothing is asked, and an
// existing file is replaced whole once the new one is complete.
#include <ostream>

#include "cli/Cli.h"
#include "image/Address.h"
#include "writing/SaveFlow.h"
#include "writing/Writers.h"

namespace kestrum::cli {

namespace {

// The range of the step, the area by default, judged with the record
// length as the dialog judges them; the range goes to SaveFirst..SaveLast.
int TakeRange(CliContext& ctx, const Step& step, bool lengthFits) {
  Address first = ctx.m.BufFirst, last = ctx.m.BufLast;
  std::string why;
  if (step.Has("--range") && !ParseRange(step.Option("--range"), first, last, why))
    return Fail(ctx, kUsage, "--range: " + why);
  const Outcome range = CheckSaveRange(ctx.m, first, last, lengthFits);
  if (!range.IsDone()) return Fail(ctx, kUsage, range.words);
  ctx.m.SaveFirst = first;
  ctx.m.SaveLast = last;
  return kOk;
}

// A writer's refusal is the call's fault, a file it could not write is not.
int Written(CliContext& ctx, const Outcome& outcome) {
  if (outcome.IsDone()) return kOk;
  return Fail(ctx, outcome.ending == Ending::Refused ? kUsage : kFailed, outcome.words);
}

std::string RangeText(const Module1& m) {
  return AddressToText(m.SaveFirst) + ":" + AddressToText(m.SaveLast);
}

int RunSave(CliContext& ctx, const Step& step) {
  const std::optional<ObjectFormat> format = FromName<ObjectFormat>(step.Option("--format"));
  Address length = 0x10;
  if (step.Has("--record-length") && !ParseHex(step.Option("--record-length"), 2, length)) length = 0;
  if (const int status = TakeRange(ctx, step, LengthFitsFormat(length, format)); status != kOk) return status;
  if (!format) return Fail(ctx, kUsage, kObjectFormatError);

  ctx.m.RecordLength = static_cast<std::int16_t>(length);
  const std::string& file = step.args[0];
  ProgressLine progress(ctx.err, "save " + file, ctx.progress);
  WriteOptions options;
  options.replaceWhole = true;
  options.keepPartial = false;
  options.progress = [&progress](std::uint64_t done, std::uint64_t total) { progress(done, total); };
  const Outcome outcome = SaveObjectFile(ctx.m, *format, file, options);
  progress.Done();
  if (!outcome.IsDone()) return Written(ctx, outcome);
  if (ctx.verbose)
    ctx.err << "save: " << file << ": " << RangeText(ctx.m) << " as " << NameOf(*format) << '\n';
  return kOk;
}

int RunYsm(CliContext& ctx, const Step& step) {
  if (const int status = TakeRange(ctx, step, true); status != kOk) return status;
  const std::string sum = step.Option("--sum");
  const std::optional<SumKind> kind = SumOption(sum);
  if (!kind) return Fail(ctx, kUsage, kSumFormatError);

  const std::string& file = step.args[0];
  const Outcome outcome = SaveYsmFile(ctx.m, file, *kind);
  if (!outcome.IsDone()) return Written(ctx, outcome);
  if (ctx.verbose) ctx.err << "ysm: " << file << ": " << sum << " sum of " << RangeText(ctx.m) << '\n';
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
