#pragma once
// The command line's steps: how they are spelled, and the context they run in.
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bufferops/CheckValue.h"
#include "cli/Progress.h"
#include "image/Formats.h"
#include "image/Module1.h"
#include "image/Platform.h"
#include "reading/LoadObjectFile.h"

namespace kestrum::cli {

// Exit statuses.
constexpr int kOk = 0;
constexpr int kFailed = 1;  // a file or record error, memory short
constexpr int kUsage = 2;   // the words of the call, or a value a dialog would refuse

// Message boxes of the core become recorded lines; questions answer Yes.
class CapturePlatform : public Platform {
 public:
  int MsgBox(const std::string& text, int style, const std::string& title) override;
  void SetMousePointer(int) override {}
  std::vector<std::string> messages;
};

struct CliContext {
  Module1 m;
  CapturePlatform platform;
  std::ostream& out;
  std::ostream& err;
  bool verbose = false;
  // Files are read as toolchains write them unless --strict asks for the window's rules.
  ReadingMode mode = ReadingMode::Tolerant;
  bool progress = false;  // a progress line for long work: standard error is a terminal
};

struct Step;
using StepRunner = int (*)(CliContext&, const Step&);

struct OptionSpec {
  std::string name;  // with its leading "--"
  std::string valueName;
  bool required = false;
};

struct StepSpec {
  std::string name;
  std::vector<std::string> args;  // names of the required arguments
  std::string optionalArg;        // name of one optional argument, or empty
  std::vector<OptionSpec> options;
  std::string summary;
  StepRunner run = nullptr;
  std::string details = {};  // more lines for STEP --help
  bool moreArgs = false;     // the last required argument may be repeated
};

struct Step {
  const StepSpec* spec = nullptr;
  std::vector<std::string> args;
  std::map<std::string, std::string> options;

  // The option's value, or fallback when it was not given.
  std::string Option(const std::string& name, const std::string& fallback = {}) const;
  bool Has(const std::string& name) const { return options.count(name) != 0; }
};

// The steps of each part of the program, in the order --help lists them.
std::vector<StepSpec> BufferSteps();
std::vector<StepSpec> LoadSteps();
std::vector<StepSpec> SaveSteps();
std::vector<StepSpec> CheckSteps();
std::vector<StepSpec> InfoSteps();
const std::vector<StepSpec>& AllSteps();

// The usage line of a step, as --help shows it.
std::string StepUsage(const StepSpec& spec);

// How the steps read files: the call's reading mode, and a progress line
// for what on a terminal.
LoadOptions ReadingOptions(const CliContext& ctx, ProgressLine& progress);

// How a file's format was decided, as the steps tell it.
const char* BasisText(FormatBasis basis);

// Reads FIRST:LAST as the window reads two address fields. False, with the
// reason, when the text is no range of hexadecimal addresses.
bool ParseRange(const std::string& text, Address& first, Address& last, std::string& why);
// Reads hexadecimal text of 1 to maxDigits digits.
bool ParseHex(const std::string& text, int maxDigits, Address& value);
// The sum a step's option names: the dialog's name of it without "SUM"
// ("8-16"), in any case; none for another text.
std::optional<SumKind> SumOption(std::string_view text);

// A check value to store: --store ADDRESS and --order be|le of a step.
struct StoreRequest {
  bool wanted = false;
  Address at = 0;
  ByteOrder order = ByteOrder::Big;
};

// Reads --store and --order, refusing one without the other; gives the
// exit status of a refusal, else kOk.
int ReadStore(CliContext& ctx, const Step& step, StoreRequest& store);
// Refuses count bytes at store.at that leave the area or fall inside
// first..last, the range they check; else kOk.
int CheckPlace(CliContext& ctx, const StoreRequest& store, int count, Address first, Address last);
// Writes the value when one is wanted.
void Store(CliContext& ctx, const StoreRequest& store, std::uint64_t value, int count);

// Prints "kestrum-cli: message" to standard error and gives status.
int Fail(CliContext& ctx, int status, const std::string& message);

}  // namespace kestrum::cli
