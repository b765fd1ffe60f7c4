// The info step: what files hold, read in the call's reading mode without
// touching the image, so that a user can pick the area and range for a file
// they did not make.
#include <algorithm>
#include <filesystem>
#include <map>
#include <ostream>
#include <vector>

#include "cli/Cli.h"
#include "reading/ByteSource.h"
#include "reading/LineReader.h"

namespace kestrum::cli {

namespace {

// An address range, both ends included, and whether the bytes written
// twice over it differed.
struct Span {
  Address first = 0, last = 0;
  bool differ = false;
};

// Every byte a file writes, kept in runs, and the addresses it writes twice.
// A later byte replaces an earlier one, as in a load.
class WrittenBytes {
 public:
  void Write(Address first, const std::uint8_t* bytes, std::size_t count) {
    if (count == 0) return;
    const Address last = first + static_cast<Address>(count) - 1;
    // The runs that reach into first..last, and the gaps between them.
    auto run = runs_.upper_bound(first);
    if (run != runs_.begin() && End(*std::prev(run)) >= first) --run;
    Address at = first;
    for (; run != runs_.end() && run->first <= last; ++run) {
      if (run->first > at) Add(at, bytes + (at - first), static_cast<std::size_t>(run->first - at));
      const Address to = std::min(last, End(*run));
      for (Address a = std::max(at, run->first); a <= to; ++a) {
        std::uint8_t& old = run->second[static_cast<std::size_t>(a - run->first)];
        const std::uint8_t now = bytes[a - first];
        Twice(a, old != now);
        old = now;
      }
      at = to + 1;
    }
    if (at <= last) Add(at, bytes + (at - first), static_cast<std::size_t>(last - at + 1));
  }

  // The runs as spans, those that touch merged, in address order.
  std::vector<Span> Spans() const {
    std::vector<Span> spans;
    for (const auto& run : runs_) {
      if (!spans.empty() && spans.back().last + 1 == run.first)
        spans.back().last = End(run);
      else
        spans.push_back({run.first, End(run)});
    }
    return spans;
  }

  // Addresses written twice, in address order, those of the same kind merged.
  std::vector<Span> TwiceWritten() const {
    std::vector<Span> sorted = twice_;
    std::sort(sorted.begin(), sorted.end(), [](const Span& a, const Span& b) { return a.first < b.first; });
    std::vector<Span> merged;
    for (const Span& s : sorted) {
      if (!merged.empty() && merged.back().differ == s.differ && merged.back().last + 1 >= s.first)
        merged.back().last = std::max(merged.back().last, s.last);
      else
        merged.push_back(s);
    }
    return merged;
  }

 private:
  using Run = std::pair<const Address, std::vector<std::uint8_t>>;
  static Address End(const Run& run) { return run.first + static_cast<Address>(run.second.size()) - 1; }

  // New bytes where nothing was written: onto the run that ends just before them, if any.
  void Add(Address at, const std::uint8_t* bytes, std::size_t count) {
    auto before = runs_.lower_bound(at);
    if (before != runs_.begin() && End(*std::prev(before)) + 1 == at) {
      auto& run = std::prev(before)->second;
      run.insert(run.end(), bytes, bytes + count);
    } else {
      runs_.emplace(at, std::vector<std::uint8_t>(bytes, bytes + count));
    }
  }

  void Twice(Address a, bool differ) {
    if (!twice_.empty() && twice_.back().differ == differ && twice_.back().last + 1 == a)
      twice_.back().last = a;
    else
      twice_.push_back({a, a, differ});
  }

  std::map<Address, std::vector<std::uint8_t>> runs_;
  std::vector<Span> twice_;
};

// Looks on while a file is read: counts records by type, notes start
// addresses, and keeps what the data records write.
class FileSurvey : public RecordObserver {
 public:
  void Line(std::string_view text, bool hex) override {
    std::string type = hex ? std::string(text.substr(std::min<std::size_t>(7, text.size()), 2))
                           : std::string(text.substr(0, 2));
    for (char& c : type) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    ++types_[type];
    // Where the value of a start record stands: its column, counted from 1, and width.
    const std::map<std::string, std::pair<std::size_t, std::size_t>> kStarts = {
        {"03", {10, 8}}, {"05", {10, 8}}, {"S7", {5, 8}}, {"S8", {5, 6}}, {"S9", {5, 4}}};
    const auto start = kStarts.find(type);
    if (start != kStarts.end() && hex == (type[0] != 'S') && text.size() >= start->second.first - 1) {
      starts_.push_back(type + " " + std::string(text.substr(start->second.first - 1, start->second.second)));
    }
  }

  void Data(Address first, const std::uint8_t* bytes, std::size_t count) override {
    written_.Write(first, bytes, count);
  }

  void Print(std::ostream& out) const {
    if (!types_.empty()) {
      out << "  records:";
      const char* sep = " ";
      for (const auto& [type, n] : types_) {
        out << sep << n << " of type " << type;
        sep = ", ";
      }
      out << '\n';
    }
    for (const Span& s : written_.Spans())
      out << "  data " << AddressToText(s.first) << ':' << AddressToText(s.last) << ' '
          << s.last - s.first + 1 << " bytes\n";
    for (const std::string& start : starts_) out << "  start " << start << '\n';
    for (const Span& s : written_.TwiceWritten())
      out << "  twice " << AddressToText(s.first) << ':' << AddressToText(s.last)
          << (s.differ ? " other bytes" : " same bytes") << '\n';
  }

 private:
  std::map<std::string, std::uint64_t> types_;
  std::vector<std::string> starts_;
  WrittenBytes written_;
};

std::string LineEndsText(const LineEndCount& ends) {
  const std::pair<std::uint64_t, const char*> kinds[] = {
      {ends.crlf, "CR LF"}, {ends.lf, "LF"}, {ends.cr, "CR"}};
  std::string found;
  int seen = 0;
  for (const auto& [n, name] : kinds) {
    if (n == 0) continue;
    found += (seen++ ? ", " : "") + std::to_string(n) + " " + name;
  }
  if (seen == 0) return "none";
  if (seen == 1) return found.substr(found.find(' ') + 1);
  return "mixed: " + found;
}

// The report of one file; false when it could not be read whole.
bool Survey(CliContext& ctx, const std::string& file) {
  Module1 scratch;
  scratch.LoadFileName = file;
  FileSurvey survey;
  LoadReport report;
  {
    ProgressLine progress(ctx.err, "info " + file, ctx.progress);
    LoadOptions options = ReadingOptions(ctx, progress);
    options.observer = &survey;
    report = LoadObjectFile(scratch, 0, Address{1} << 40, std::filesystem::path(file).filename().string(),
                            options);
  }
  if (!report.Loaded() && report.outcome.line == 0) {
    ctx.out.flush();
    return Fail(ctx, kFailed, report.outcome.words) == kOk;
  }
  if (report.length == 0) {
    ctx.out << file << ": empty\n";
    return true;
  }
  ctx.out << file << ": " << NameOf(report.format) << " by " << BasisText(report.basis) << '\n';
  FileSource text;
  if (report.format != ObjectFormat::BIN && text.Open(file))
    ctx.out << "  line ends: " << LineEndsText(CountLineEnds(text)) << '\n';
  survey.Print(ctx.out);
  if (report.Loaded()) return true;
  ctx.out.flush();
  ctx.err << file << ':' << report.outcome.line << ": " << report.outcome.words << '\n';
  return false;
}

int RunInfo(CliContext& ctx, const Step& step) {
  bool whole = true;
  for (const std::string& file : step.args) whole = Survey(ctx, file) && whole;
  return whole ? kOk : kFailed;
}

}  // namespace

std::vector<StepSpec> InfoSteps() {
  return {
      {"info",
       {"FILE"},
       "",
       {},
       "reads each FILE without touching the image and tells its format and how it was decided, its line "
       "ends, its records by type, each span of data as FIRST:LAST with its byte count, its start addresses, "
       "and the addresses it writes twice",
       RunInfo,
       {},
       true},
  };
}

}  // namespace kestrum::cli
