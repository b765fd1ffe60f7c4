// Check values: a CRC over a range, and the storing of it or of a sum into
// the image at an address, in a stated byte order.
#include <ostream>

#include "bufferops/SumDialog.h"
#include "cli/Cli.h"

namespace kestrum::cli {

namespace {

std::string PlaceText(Address first, Address last) {
  return AddressToText(first) + ".." + AddressToText(last);
}

// The catalogue as crc --help shows it, each model's parameters as custom:
// takes them.
std::string ModelTable() {
  std::string table =
      "\nModels: NAME (ALIAS)  WIDTH,POLY,INIT,REFIN,REFOUT,XOROUT  and the CRC of \"123456789\".\n"
      "Any other: custom:WIDTH,POLY,INIT,REFIN,REFOUT,XOROUT, the numbers in hexadecimal\n"
      "(WIDTH too: 20 is 32 bits), REFIN and REFOUT true or false.\n";
  for (const CrcModel& m : CrcCatalogue()) {
    const int digits = (m.width + 3) / 4;
    std::string name = m.name + (m.alias.empty() ? "" : " (" + std::string(m.alias) + ")");
    name.resize(std::max<std::size_t>(name.size(), 40), ' ');
    table += "  " + name + HexText(static_cast<std::uint64_t>(m.width), 2) + "," + HexText(m.poly, digits) +
             "," + HexText(m.init, digits) + (m.refin ? ",true," : ",false,") +
             (m.refout ? "true," : "false,") + HexText(m.xorout, digits) + "  " + HexText(m.check, digits) +
             "\n";
  }
  return table;
}

int RunCrc(CliContext& ctx, const Step& step) {
  std::string why;
  const auto model = FindCrcModel(step.Option("--model", CrcCatalogue()[0].name), why);
  if (!model) return Fail(ctx, kUsage, "--model: " + why);
  StoreRequest store;
  if (int status = ReadStore(ctx, step, store); status != kOk) return status;
  Address first = 0, last = 0;
  if (!ParseRange(step.args[0], first, last, why)) return Fail(ctx, kUsage, why);
  // The range passes the checks of the SUM dialog, with its words.
  if (const Outcome checked = CheckSumRange(ctx.m, {first, last}); !checked.IsDone())
    return Fail(ctx, kUsage, checked.words);
  const int count = ValueBytes(model->width);
  if (int status = CheckPlace(ctx, store, count, first, last); status != kOk) return status;
  const std::uint64_t value = CrcRange(ctx.m, first, last, Crc(*model));
  ctx.out << model->name << '=' << HexText(value, (model->width + 3) / 4) << '\n';
  Store(ctx, store, value, count);
  return kOk;
}

}  // namespace

int ReadStore(CliContext& ctx, const Step& step, StoreRequest& store) {
  store.wanted = step.Has("--store");
  if (!store.wanted) return step.Has("--order") ? Fail(ctx, kUsage, "--order goes with --store") : kOk;
  if (!ParseHex(step.Option("--store"), 8, store.at))
    return Fail(ctx, kUsage, "--store: '" + step.Option("--store") + "' is no hexadecimal address");
  if (!step.Has("--order")) return Fail(ctx, kUsage, "--store needs --order be|le");
  const std::string order = step.Option("--order");
  if (order != "be" && order != "le")
    return Fail(ctx, kUsage, "--order: '" + order + "' is neither be nor le");
  store.order = order == "be" ? ByteOrder::Big : ByteOrder::Little;
  return kOk;
}

int CheckPlace(CliContext& ctx, const StoreRequest& store, int count, Address first, Address last) {
  if (!store.wanted) return kOk;
  const std::string place = "--store: " + PlaceText(store.at, store.at + count - 1);
  switch (CheckStorePlace(ctx.m, store.at, count, first, last)) {
    case StorePlace::OutsideArea:
      return Fail(ctx, kUsage, place + " lies outside the area " + PlaceText(ctx.m.BufFirst, ctx.m.BufLast));
    case StorePlace::InsideRange:
      return Fail(ctx, kUsage, place + " lies inside the range it checks, " + PlaceText(first, last));
    case StorePlace::Ok:
      break;
  }
  return kOk;
}

void Store(CliContext& ctx, const StoreRequest& store, std::uint64_t value, int count) {
  if (!store.wanted) return;
  StoreValue(ctx.m, store.at, value, count, store.order);
  if (ctx.verbose) ctx.err << "stored " << count << " bytes at " << AddressToText(store.at) << '\n';
}

std::vector<StepSpec> CheckSteps() {
  return {
      {"crc",
       {"FIRST:LAST"},
       {},
       {{"--model", "NAME|custom:..."}, {"--store", "ADDRESS"}, {"--order", "be|le"}},
       "prints NAME=VALUE, the CRC over the range (CRC-32/ISO-HDLC by default); with --store, writes its "
       "bytes from ADDRESS in the order given; crc --help lists the models",
       RunCrc,
       ModelTable()},
  };
}

}  // namespace kestrum::cli
