// Steps that read object files into the image. The range and offset are
// judged as the File Load dialog judges them, with its words; the file is
// read in the call's reading mode, with a warning of what a pipeline would
// otherwise miss: a file that stored nothing, and under --strict a lone LF.
#include <filesystem>
#include <ostream>

#include "bufferops/ClearBuffer.h"
#include "cli/Cli.h"
#include "image/Files.h"
#include "image/Paths.h"
#include "reading/ByteSource.h"
#include "reading/LineReader.h"
#include "reading/LoadDialog.h"

namespace kestrum::cli {

namespace {

// What the offset field's key filter would have let in: hexadecimal digits
// and signs, at most 9 of them. Where the signs stand the dialog judges.
bool OffsetTyped(const std::string& text) {
  if (text.size() > 9) return false;
  for (char c : text)
    if (HexDigitValue(c) < 0 && c != '+' && c != '-') return false;
  return true;
}

bool HoldsLoneLf(const std::string& path) {
  FileSource source;
  return source.Open(path) && CountLineEnds(source).lf > 0;
}

std::string Count(std::uint64_t n, const char* what) {
  return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

// What a load that stored nothing read, for its warning.
std::string WhatWasRead(const LoadReport& report, const std::string& offset) {
  if (report.format == ObjectFormat::BIN)
    return "read as BIN, " + Count(report.length, "byte") + ", all outside the range at offset " + offset;
  std::string what = "read as " + std::string(NameOf(report.format)) + ", " + Count(report.lines, "line") +
                     " with " + Count(report.dataRecords, "data record");
  if (report.dataRecords > 0) what += ", no byte of them inside the range at offset " + offset;
  return what;
}

// The name the file is read by, as the dialog joins its folder and name,
// and the name its extension comes from. A name that ends in a separator
// names a folder: the load says so.
void NameFile(const std::string& file, std::string& path, std::string& bareName) {
  const std::filesystem::path given = PathOf(file);
  bareName = NameOf(given.filename());
  path = bareName.empty() ? file : JoinPath(NameOf(given.parent_path()), bareName);
  if (bareName.empty()) bareName = file;
}

// The range and offset of the step, judged with the dialog's words.
int ReadRequest(CliContext& ctx, const Step& step, Address& first, Address& last, Address& offset) {
  std::string why;
  if (step.Has("--range") && !ParseRange(step.Option("--range"), first, last, why))
    return Fail(ctx, kUsage, "--range: " + why);
  if (step.Has("--offset")) {
    const std::string text = step.Option("--offset");
    if (!OffsetTyped(text)) return Fail(ctx, kUsage, "--offset: '" + text + "' is no offset [+|-]HEX");
    if (const Outcome judged = ReadOffset(text, offset); !judged.IsDone())
      return Fail(ctx, kUsage, judged.words);
  }
  const Outcome range = CheckLoadRange(ctx.m, first, last);
  return range.IsDone() ? kOk : Fail(ctx, kUsage, range.words);
}

int RunLoad(CliContext& ctx, const Step& step) {
  const std::string& file = step.args[0];
  Address first = ctx.m.BufFirst, last = ctx.m.BufLast, offset = 0;
  if (const int status = ReadRequest(ctx, step, first, last, offset); status != kOk) return status;
  std::string bareName;
  NameFile(file, ctx.m.LoadFileName, bareName);
  ctx.m.LoadOffset = offset;
  LoadReport report;
  {
    ProgressLine progress(ctx.err, "load " + file, ctx.progress);
    report = LoadObjectFile(ctx.m, first, last, bareName, ReadingOptions(ctx, progress));
  }
  // A load empties the dump whatever its outcome.
  ResetDump(ctx.m.frmsumtool);
  const std::string range = AddressToText(first) + ':' + AddressToText(last);
  const bool recordError = report.outcome.line != 0;
  if ((report.Loaded() || recordError) && report.format != ObjectFormat::BIN &&
      ctx.mode == ReadingMode::Window && HoldsLoneLf(ctx.m.LoadFileName)) {
    ctx.err << "kestrum-cli: warning: " << file << ": a lone LF ends no line under --strict\n";
  }
  if (recordError) {
    ctx.err << file << ':' << report.outcome.line << ": " << report.outcome.words << '\n';
    return kFailed;
  }
  if (!report.Loaded()) return Fail(ctx, kFailed, report.outcome.words);
  if (ctx.verbose) {
    ctx.err << "load: " << file << " as " << NameOf(report.format) << " by " << BasisText(report.basis)
            << " into " << range << ", " << report.stored << " bytes stored\n";
  }
  if (report.length > 0 && report.stored == 0) {
    ctx.err << "kestrum-cli: warning: " << file << " stored no byte in " << range << ": "
            << WhatWasRead(report, step.Option("--offset", "0")) << '\n';
  }
  return kOk;
}

}  // namespace

const char* BasisText(FormatBasis basis) {
  switch (basis) {
    case FormatBasis::Extension:
      return "extension";
    case FormatBasis::Content:
      break;
    case FormatBasis::ContentOverExtension:
      return "content, not by its extension";
  }
  return "content";
}

std::vector<StepSpec> LoadSteps() {
  return {
      {"load",
       {"FILE"},
       "",
       {{"--range", "FIRST:LAST"}, {"--offset", "[+|-]HEX"}},
       "loads FILE into the image: format by extension (.hex, .s, .bin), else by content; only addresses in "
       "the range (default the area) are written, each shifted by the offset (default 0; for a binary file "
       "counted from FIRST)",
       RunLoad},
  };
}

}  // namespace kestrum::cli
