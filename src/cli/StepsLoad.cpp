// Steps that read object files into the image. The load fills the fields of
// the File Load dialog and presses Load, so the range and offset are judged
// with the dialog's words; it reads in the call's reading mode, and warns of
// what a pipeline would otherwise miss: a file that stored nothing, and under
// --strict a lone LF.
#include <filesystem>
#include <ostream>

#include "cli/Cli.h"
#include "image/Files.h"
#include "image/Settings.h"
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

int RunLoad(CliContext& ctx, const Step& step) {
  const std::string& file = step.args[0];
  const std::filesystem::path path = PathOf(file);
  LoadFields f;
  f.File1 = NameOf(path.filename());
  f.Dir1 = f.File1.empty() ? file : NameOf(path.parent_path());
  // A name that ends in a separator names a folder: let the load say so.
  f.Text1 = f.File1.empty() ? file : f.File1;
  f.Text4 = ctx.m.frmsumtool.txtbuffaddr;
  f.Text3 = ctx.m.frmsumtool.txtbufladdr;
  if (step.Has("--range")) {
    const std::string range = step.Option("--range");
    Address first = 0, last = 0;
    std::string why;
    if (!ParseRange(range, first, last, why)) return Fail(ctx, kUsage, "--range: " + why);
    const auto colon = range.find(':');
    f.Text4 = range.substr(0, colon);
    f.Text3 = range.substr(colon + 1);
  }
  if (step.Has("--offset")) {
    const std::string offset = step.Option("--offset");
    if (!OffsetTyped(offset)) return Fail(ctx, kUsage, "--offset: '" + offset + "' is no offset [+|-]HEX");
    f.Check1 = f.Text2Visible = true;
    f.Text2 = offset;
  }

  // The command line keeps nothing between runs: the dialog's settings go
  // to a store that is dropped.
  MemorySettings scratch;
  LoadReport report;
  {
    ProgressLine progress(ctx.err, "load " + file, ctx.progress);
    Command1_Click(f, ctx.m, ctx.platform, scratch, &report, ReadingOptions(ctx, progress));
  }
  const std::string range = f.Text4 + ':' + f.Text3;
  if (report.outcome != LoadReport::Outcome::Refused && report.outcome != LoadReport::Outcome::FileFailure &&
      report.format != ObjectFormat::BIN && ctx.mode == ReadingMode::Window &&
      HoldsLoneLf(ctx.m.LoadFileName)) {
    ctx.err << "kestrum-cli: warning: " << file << ": a lone LF ends no line under --strict\n";
  }
  switch (report.outcome) {
    case LoadReport::Outcome::Loaded:
      if (ctx.verbose) {
        ctx.err << "load: " << file << " as " << NameOf(report.format) << " by " << BasisText(report.basis)
                << " into " << range << ", " << report.stored << " bytes stored\n";
      }
      if (report.length > 0 && report.stored == 0) {
        ctx.err << "kestrum-cli: warning: " << file << " stored no byte in " << range << ": "
                << WhatWasRead(report, step.Option("--offset", "0")) << '\n';
      }
      return kOk;
    case LoadReport::Outcome::Refused:
      return Fail(ctx, kUsage, report.message);
    case LoadReport::Outcome::RecordError:
      ctx.err << file << ':' << report.line << ": " << report.message << '\n';
      return kFailed;
    case LoadReport::Outcome::FileFailure:
      break;
  }
  return Fail(ctx, kFailed, report.message);
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
