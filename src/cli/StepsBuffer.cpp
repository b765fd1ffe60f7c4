// Steps that change or measure the image without a file. Each one runs the
// engine behind the matching dialog, so the checks and their words are the
// window's.
#include <ostream>

#include "bufferops/ClearBuffer.h"
#include "bufferops/Dump.h"
#include "bufferops/StoreBlock.h"
#include "bufferops/SumDialog.h"
#include "cli/Cli.h"

namespace kestrum::cli {

namespace {

// FIRST:LAST, refused when it is no range of hexadecimal addresses: the
// window's filter would never have let such text in.
bool ReadRange(CliContext& ctx, const std::string& text, AddressRange& range, int& status) {
  std::string why;
  if (ParseRange(text, range.first, range.last, why)) return true;
  status = Fail(ctx, kUsage, why);
  return false;
}

// A refusal of the engine, with the window's words.
int Refused(CliContext& ctx, const Outcome& outcome) { return Fail(ctx, kUsage, outcome.words); }

int RunClear(CliContext& ctx, const Step&) {
  ClearBuffer(ctx.m);
  if (ctx.verbose) ctx.err << "clear: " << ctx.m.BufSize << " bytes set to FF\n";
  return kOk;
}

int RunFill(CliContext& ctx, const Step& step) {
  BlockStoreRequest request;
  int status = kOk;
  if (!ReadRange(ctx, step.args[0], request.range, status)) return status;
  Address value = 0;
  if (!ParseHex(step.args[1], 2, value)) return Fail(ctx, kUsage, "Data Error!");
  request.data = static_cast<int>(value);
  if (const Outcome checked = CheckBlockStore(ctx.m, request); !checked.IsDone())
    return Refused(ctx, checked);
  StoreBlock(ctx.m, request);
  if (ctx.verbose) {
    const auto [first, last] = request.range;
    const Address count = first <= last ? last - first + 1 : ctx.m.BufSize - (first - last) + 1;
    ctx.err << "fill: " << count << " bytes set to " << HexByteText(request.data) << '\n';
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
  AddressRange range{ctx.m.BufFirst, ctx.m.BufLast};
  int status = kOk;
  if (!step.args.empty() && !ReadRange(ctx, step.args[0], range, status)) return status;
  StoreRequest store;
  SumKind kind = SumKind::Sum8_8;
  Complement complement = Complement::None;
  if (status = ReadSumStore(ctx, step, store, kind, complement); status != kOk) return status;
  if (const Outcome checked = CheckSumRange(ctx.m, range); !checked.IsDone()) return Refused(ctx, checked);
  const int count = ValueBytes(kind);
  if (status = CheckPlace(ctx, store, count, range.first, range.last); status != kOk) return status;
  const Sums sums = SumRange(ctx.m, range.first, range.last);
  SumFields f;
  ShowSums(f, sums);
  ctx.out << "8-8bit=" << f.Text1 << " 8-16bit=" << f.Text2 << " 16-16bit=" << f.Text3 << '\n';
  Store(ctx, store, SumValue(sums, kind, complement), count);
  return kOk;
}

int RunDump(CliContext& ctx, const Step& step) {
  Address value = 0;
  if (!ParseHex(step.args[0], 8, value)) return Fail(ctx, kUsage, "Dump Address Error!");
  const Outcome shown = DumpPage(ctx.m, value, DumpStep::Here);
  if (!shown.IsDone()) return Refused(ctx, shown);
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
