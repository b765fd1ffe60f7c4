#include "cli/Cli.h"

#include <ostream>

namespace kestrum::cli {

int CapturePlatform::MsgBox(const std::string& text, int style, const std::string&) {
  messages.push_back(text);
  return style == vbOKOnly ? vbOK : vbYes;
}

std::string Step::Option(const std::string& name, const std::string& fallback) const {
  auto it = options.find(name);
  return it == options.end() ? fallback : it->second;
}

const std::vector<StepSpec>& AllSteps() {
  static const std::vector<StepSpec> steps = [] {
    std::vector<StepSpec> all;
    for (auto part : {LoadSteps, InfoSteps, BufferSteps, CheckSteps, SaveSteps})
      for (auto& spec : part()) all.push_back(std::move(spec));
    return all;
  }();
  return steps;
}

std::string StepUsage(const StepSpec& spec) {
  std::string usage = spec.name;
  for (const auto& a : spec.args) usage += " " + a;
  if (spec.moreArgs) usage += " [" + spec.args.back() + " ...]";
  if (!spec.optionalArg.empty()) usage += " [" + spec.optionalArg + "]";
  for (const auto& o : spec.options) {
    const std::string option = o.name + " " + o.valueName;
    usage += o.required ? " " + option : " [" + option + "]";
  }
  return usage;
}

LoadOptions ReadingOptions(const CliContext& ctx, ProgressLine& progress) {
  LoadOptions options;
  options.mode = ctx.mode;
  options.progress = [&progress](std::uint64_t done, std::uint64_t total) { progress(done, total); };
  return options;
}

bool ParseHex(const std::string& text, int maxDigits, Address& value) {
  if (text.empty() || static_cast<int>(text.size()) > maxDigits) return false;
  value = 0;
  for (char c : text) {
    int d = HexDigitValue(c);
    if (d < 0) return false;
    value = value * 16 + d;
  }
  return true;
}

std::optional<SumKind> SumOption(std::string_view text) {
  for (std::size_t i = 0; i < kSumKindNames.size(); ++i) {
    std::string_view name = kSumKindNames[i];
    name.remove_suffix(std::string_view("SUM").size());
    if (EqualsIgnoreCase(name, text)) return static_cast<SumKind>(i);
  }
  return std::nullopt;
}

bool ParseRange(const std::string& text, Address& first, Address& last, std::string& why) {
  const auto colon = text.find(':');
  if (colon == std::string::npos) {
    why = "'" + text + "' is no range FIRST:LAST";
    return false;
  }
  const std::string a = text.substr(0, colon), b = text.substr(colon + 1);
  if (!ParseHex(a, 8, first) || !ParseHex(b, 8, last)) {
    why = "'" + text + "' is no range of hexadecimal addresses (1 to 8 digits each)";
    return false;
  }
  // The window's way: padded to 8 digits, then read as two groups of four.
  first = AddressFromText(PadAddressText(a));
  last = AddressFromText(PadAddressText(b));
  return true;
}

int Fail(CliContext& ctx, int status, const std::string& message) {
  ctx.err << "kestrum-cli: " << message << '\n';
  return status;
}

}  // namespace kestrum::cli
