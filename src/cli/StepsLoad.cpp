// Steps that read object files into the image. The load fills the fields of
// the File Load dialog and presses Load, so the range and offset are judged
// with the dialog's words.
#include <filesystem>
#include <ostream>

#include "cli/Cli.h"
#include "image/Settings.h"
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

int RunLoad(CliContext& ctx, const Step& step) {
  const std::string& file = step.args[0];
  const std::filesystem::path path(file);
  LoadFields f;
  f.File1 = path.filename().string();
  f.Dir1 = f.File1.empty() ? file : path.parent_path().string();
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
  Command1_Click(f, ctx.m, ctx.platform, scratch, &report);
  switch (report.outcome) {
    case LoadReport::Outcome::Loaded:
      if (ctx.verbose) {
        ctx.err << "load: " << file << " as " << FormatName(report.format) << " into " << f.Text4 << ':'
                << f.Text3 << '\n';
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
