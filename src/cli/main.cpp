// kestrum-cli: the engine of the window for build pipelines.
#include <iostream>
#include <string>
#include <vector>

#include "cli/Cli.h"
#include "cli/Console.h"
#include "image/Module1.h"
#include "image/System.h"

using namespace kestrum;
using namespace kestrum::cli;

namespace {

const StepSpec* FindStep(const std::string& name) {
  for (const auto& spec : AllSteps())
    if (spec.name == name) return &spec;
  return nullptr;
}

void PrintHelp(std::ostream& out) {
  out << "Usage: kestrum-cli [--area FIRST:LAST] [--strict] [--verbose] STEP [STEP ...]\n"
         "\n"
         "One memory image, the area (default 00000000:0007FFFF) filled with FF;\n"
         "the steps run on it from left to right. Addresses and bytes are\n"
         "hexadecimal; a range FIRST:LAST includes both ends.\n"
         "\n"
         "Steps:\n";
  for (const auto& spec : AllSteps()) {
    out << "  " << StepUsage(spec) << "\n      " << spec.summary << "\n";
  }
  out << "\n"
         "Options:\n"
         "  --area FIRST:LAST  the area of the image\n"
         "  --strict           read files by the window's rules: only CR or CR LF ends\n"
         "                     a line, and every line must be a record\n"
         "  --verbose          say what each step did\n"
         "  --help             this text; STEP --help for one step\n"
         "  --version          the version\n"
         "\n"
         "Reading: by default a line of a HEX or S file ends at CR LF, CR or LF,\n"
         "blank lines and trailing blanks are passed over, a Ctrl-Z at the end is\n"
         "ignored, and content that plainly begins with the other text format's\n"
         "start mark wins over the extension. The window keeps the strict rules of\n"
         "the files it was made for; --strict gives its results byte for byte.\n"
         "A load that stores no byte of a non-empty file is warned about.\n"
         "\n"
         "Exit status: 0 done, 1 a file, record or memory failure, 2 a usage error\n"
         "or a value the matching dialog would refuse.\n";
}

int StepHelp(const StepSpec& spec) {
  std::cout << "Usage: kestrum-cli " << StepUsage(spec) << "\n" << spec.summary << "\n" << spec.details;
  return kOk;
}

int Usage(const std::string& message) {
  std::cerr << "kestrum-cli: " << message << "\nTry 'kestrum-cli --help'.\n";
  return kUsage;
}

struct Call {
  std::string area = "0:7FFFF";
  bool verbose = false;
  bool strict = false;
  std::vector<Step> steps;
};

bool IsOption(const std::string& word) { return word.size() > 2 && word.compare(0, 2, "--") == 0; }

// Parses the whole call before anything runs, so that a usage error never
// leaves half a pipeline done. Gives -1 to go on, else the exit status.
int Parse(const std::vector<std::string>& words, Call& call) {
  std::size_t i = 0;
  while (i < words.size() && IsOption(words[i])) {
    const std::string& w = words[i];
    if (w == "--help") {
      PrintHelp(std::cout);
      return kOk;
    }
    if (w == "--version") {
      std::cout << "kestrum-cli " << KESTRUM_VERSION << "\n";
      return kOk;
    }
    if (w == "--verbose" || w == "--strict") {
      (w == "--verbose" ? call.verbose : call.strict) = true;
      ++i;
      continue;
    }
    if (w == "--area") {
      if (i + 1 >= words.size()) return Usage("--area needs FIRST:LAST");
      call.area = words[i + 1];
      i += 2;
      continue;
    }
    return Usage("unknown option '" + w + "'");
  }
  if (i == words.size()) return Usage("no step given");
  while (i < words.size()) {
    const StepSpec* spec = FindStep(words[i]);
    if (!spec) return Usage("unknown step '" + words[i] + "'");
    Step step;
    step.spec = spec;
    ++i;
    if (i < words.size() && words[i] == "--help") {
      return StepHelp(*spec);
    }
    for (const auto& name : spec->args) {
      if (i >= words.size()) return Usage(spec->name + " needs " + name);
      step.args.push_back(words[i++]);
    }
    while (spec->moreArgs && i < words.size() && !IsOption(words[i]) && !FindStep(words[i]))
      step.args.push_back(words[i++]);
    if (!spec->optionalArg.empty() && i < words.size() && !IsOption(words[i]) && !FindStep(words[i]))
      step.args.push_back(words[i++]);
    while (i < words.size() && IsOption(words[i])) {
      const std::string& name = words[i];
      if (name == "--help") {
        return StepHelp(*spec);
      }
      const OptionSpec* option = nullptr;
      for (const auto& o : spec->options)
        if (o.name == name) option = &o;
      if (!option) return Usage(spec->name + " has no option '" + name + "'");
      if (i + 1 >= words.size()) return Usage(name + " needs " + option->valueName);
      if (step.options.count(name)) return Usage(name + " given twice");
      step.options[name] = words[i + 1];
      i += 2;
    }
    for (const auto& o : spec->options)
      if (o.required && !step.Has(o.name)) return Usage(spec->name + " needs " + o.name + " " + o.valueName);
    call.steps.push_back(std::move(step));
  }
  return -1;
}

}  // namespace

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  // An interrupted save leaves no working file behind.
  sys::RemoveWorkingFilesOnInterrupt();
  BytesOnStandardStreams();
  const std::vector<std::string> words = CallWords(argc, argv);
  Call call;
  if (int status = Parse(words, call); status >= 0) return status;

  CliContext ctx{Module1{},         CapturePlatform{},
                 std::cout,         std::cerr,
                 call.verbose,      call.strict ? ReadingMode::Window : ReadingMode::Tolerant,
                 StderrIsTerminal()};
  Address first = 0, last = 0;
  std::string why;
  if (!ParseRange(call.area, first, last, why)) return Usage("--area: " + why);
  if (first > last) return Fail(ctx, kUsage, "Address Error");
  if (ResetArea(ctx.m, AddressToText(first), AddressToText(last)) != SizeResult::Ok)
    return Fail(ctx, kFailed, "Out of Memory");

  for (const Step& step : call.steps) {
    ctx.platform.messages.clear();
    int status = step.spec->run(ctx, step);
    if (status != kOk) return status;
  }
  ctx.out.flush();
  if (!ctx.out) return Fail(ctx, kFailed, "standard output: write failed");
  return kOk;
}
