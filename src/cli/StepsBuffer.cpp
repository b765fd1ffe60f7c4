// Steps that change or measure the image without a file. Each one fills the
// fields of the matching dialog and presses its button, so the checks and
// their words are the window's.
#include <ostream>

#include "bufferops/ClearBuffer.h"
#include "bufferops/Dump.h"
#include "bufferops/StoreBlock.h"
#include "bufferops/SumDialog.h"
#include "cli/Cli.h"
#include "image/Settings.h"

namespace kestrum::cli {

namespace {

// The two address texts of FIRST:LAST, refused when they are no hexadecimal
// addresses: the window's filter would never have let such text in.
bool SplitRange(CliContext& ctx, const std::string& text, std::string& first, std::string& last,
                int& status) {
  Address a = 0, b = 0;
  std::string why;
  if (!ParseRange(text, a, b, why)) {
    status = Fail(ctx, kUsage, why);
    return false;
  }
  const auto colon = text.find(':');
  first = text.substr(0, colon);
  last = text.substr(colon + 1);
  return true;
}

// The dialog's message, which the core has just shown, as a refusal.
int Refused(CliContext& ctx) {
  const std::string words = ctx.platform.messages.empty() ? "refused" : ctx.platform.messages.back();
  return Fail(ctx, kUsage, words);
}

int RunClear(CliContext& ctx, const Step&) {
  ClearBuffer(ctx.m);
  if (ctx.verbose) ctx.err << "clear: " << ctx.m.BufSize << " bytes set to FF\n";
  return kOk;
}

int RunFill(CliContext& ctx, const Step& step) {
  StoreFields f;
  int status = kOk;
  if (!SplitRange(ctx, step.args[0], f.Text1, f.Text2, status)) return status;
  Address value = 0;
  if (!ParseHex(step.args[1], 2, value)) return Fail(ctx, kUsage, "Data Error!");
  f.Text3 = step.args[1];
  // The command line keeps nothing between runs: the dialog's settings go
  // to a store that is dropped.
  MemorySettings scratch;
  if (!Command2_Click(f, ctx.m, ctx.platform, scratch)) return Refused(ctx);
  if (ctx.verbose) {
    const Address first = AddressFromText(f.Text1), last = AddressFromText(f.Text2);
    const Address count = first <= last ? last - first + 1 : ctx.m.BufSize - (first - last) + 1;
    ctx.err << "fill: " << count << " bytes set to " << HexByteText(static_cast<int>(value)) << '\n';
  }
  return kOk;
}

// The sum to store, its kind and complement; refuses them without --store.
int ReadSumStore(CliContext& ctx, const Step& step, StoreRequest& store, SumKind& kind,
                 Complement& complement) {
  if (int status = ReadStore(ctx, step, store); status != kOk) return status;
  for (const char* option : {"--kind", "--complement"})
    if (!store.wanted && step.Has(option))
      return Fail(ctx, kUsage, std::string(option) + " goes with --store");
  if (!store.wanted) return kOk;
  const std::string k = step.Option("--kind"), c = step.Option("--complement", "none");
  if (!step.Has("--kind")) return Fail(ctx, kUsage, "--store needs --kind 8-8|8-16|16-16");
  if (k != "8-8" && k != "8-16" && k != "16-16")
    return Fail(ctx, kUsage, "--kind: '" + k + "' is none of 8-8, 8-16 and 16-16");
  if (c != "none" && c != "ones" && c != "twos")
    return Fail(ctx, kUsage, "--complement: '" + c + "' is none of none, ones and twos");
  kind = k == "8-8" ? SumKind::Sum8_8 : k == "8-16" ? SumKind::Sum8_16 : SumKind::Sum16_16;
  complement = c == "none" ? Complement::None : c == "ones" ? Complement::Ones : Complement::Twos;
  return kOk;
}

int RunSum(CliContext& ctx, const Step& step) {
  SumFields f;
  f.Text6 = ctx.m.frmsumtool.txtbuffaddr;
  f.Text7 = ctx.m.frmsumtool.txtbufladdr;
  int status = kOk;
  if (!step.args.empty() && !SplitRange(ctx, step.args[0], f.Text6, f.Text7, status)) return status;
  StoreRequest store;
  SumKind kind = SumKind::Sum8_8;
  Complement complement = Complement::None;
  if (status = ReadSumStore(ctx, step, store, kind, complement); status != kOk) return status;
  if (!Command1_Click(f, ctx.m, ctx.platform)) return Refused(ctx);
  const int count = ValueBytes(kind);
  if (status = CheckPlace(ctx, store, count, ctx.m.SumFirst, ctx.m.SumLast); status != kOk) return status;
  ctx.out << "8-8bit=" << f.Text1 << " 8-16bit=" << f.Text2 << " 16-16bit=" << f.Text3 << '\n';
  Store(ctx, store, SumValue(CalculateSum(ctx.m), kind, complement), count);
  return kOk;
}

int RunDump(CliContext& ctx, const Step& step) {
  Address value = 0;
  if (!ParseHex(step.args[0], 8, value)) return Fail(ctx, kUsage, "Dump Address Error!");
  ctx.m.frmsumtool.txteditaddr = step.args[0];
  cmdedit_Click(ctx.m, ctx.platform);
  if (!ctx.platform.messages.empty()) return Refused(ctx);
  for (const auto& row : ctx.m.frmsumtool.List1) ctx.out << row << '\n';
  return kOk;
}

}  // namespace

std::vector<StepSpec> BufferSteps() {
  return {
      {"fill",
       {"FIRST:LAST", "BYTE"},
       {},
       {},
       "stores BYTE over the range; FIRST above LAST wraps past the end of the area (Block Store)",
       RunFill},
      {"clear", {}, {}, {}, "fills the area with FF (Buffer Clear)", RunClear},
      {"sum",
       {},
       "FIRST:LAST",
       {{"--store", "ADDRESS"},
        {"--kind", "8-8|8-16|16-16"},
        {"--order", "be|le"},
        {"--complement", "none|ones|twos"}},
       "prints 8-8bit=XX 8-16bit=XXXX 16-16bit=XXXX over the range, the area by default (Buffer SUM); with "
       "--store (which needs --kind and --order), writes the sum of that kind (1 byte for 8-8, else 2) from "
       "ADDRESS in the order given, as is or as its ones' or twos' complement (the twos' makes the range and "
       "the value sum to zero)",
       RunSum},
      {"dump", {"ADDRESS"}, {}, {}, "prints the page of 7 rows of 16 bytes at ADDRESS (Dump)", RunDump},
  };
}

}  // namespace kestrum::cli
