#include "reading/LoadObjectFile.h"

#include <algorithm>
#include <limits>

#include "reading/BinReader.h"
#include "reading/ByteSource.h"
#include "reading/HexReader.h"
#include "reading/LineReader.h"
#include "reading/QuickRecords.h"
#include "reading/SReader.h"

namespace kestrum {

namespace {

LoadReport FileFailure(const Module1& m, LoadReport report, const std::string& reason) {
  report.outcome = Outcome::Fail("Cannot read " + m.LoadFileName + ": " + reason, m.LoadFileName);
  return report;
}

struct SLines {
  RecordStatus ReadLine(RecordTarget& target, const Line& line, Address LoadFirst, Address LoadLast) {
    return ReadSLine(target, line, LoadFirst, LoadLast);
  }
  QuickRun Quick(Module1& m, std::string_view text, Address LoadFirst, Address LoadLast, QuickLineEnd ends) {
    return QuickSRecords(m, text, LoadFirst, LoadLast, ends);
  }
};

template <typename Reader>
LoadReport ReadLines(RecordTarget& target, ByteSource& source, LoadReport report, const LoadOptions& options,
                     Address LoadFirst, Address LoadLast) {
  const ReadingMode mode = options.mode;
  Reader reader;
  // A small file needs no block of full size; every line of it still fits.
  constexpr std::uint64_t kSmallBlock = 4096;
  LineReader lines(source,
                   static_cast<std::size_t>(
                       std::clamp<std::uint64_t>(report.length + 1, kSmallBlock, LineReader::kBlockSize)),
                   mode);
  Line line;
  RecordStatus status = RecordStatus::Ok;
  // An observer is told every line, so it reads them all one by one.
  const bool quick = options.quick && !target.observer;
  const QuickLineEnd ends = mode == ReadingMode::Tolerant ? QuickLineEnd::CrLfOrLf : QuickLineEnd::CrLf;
  while (status == RecordStatus::Ok) {
    if (quick) {
      const QuickRun run = reader.Quick(target.m, lines.Rest(), LoadFirst, LoadLast, ends);
      lines.Took(run.chars, run.lines);
      target.dataRecords += run.lines;
      target.stored += run.stored;
    }
    if (!lines.Next(line)) break;
    if (target.observer) target.observer->Line(line.text, report.format == ObjectFormat::HEX);
    status = reader.ReadLine(target, line, LoadFirst, LoadLast);
  }
  report.lines = lines.LineNumber();
  report.dataRecords = target.dataRecords;
  report.stored = target.stored;
  if (status != RecordStatus::Ok) {
    report.outcome = Outcome::Fail(RecordMessage(status), target.m.LoadFileName, lines.LineNumber());
    return report;
  }
  if (source.Failed()) return FileFailure(target.m, std::move(report), source.Failure());
  return report;
}

LoadReport LoadFrom(Module1& m, Address LoadFirst, Address LoadLast, const std::string& bareName,
                    ByteSource& file, std::uint64_t length, const LoadOptions& options) {
  LoadReport report;
  report.length = length;
  ProgressSource watched(file, length, options.progress);
  ByteSource& source = options.progress ? static_cast<ByteSource&>(watched) : file;
  const std::string extension = ExtensionOf(bareName);
  FormatDecision decision;
  if (options.mode == ReadingMode::Tolerant || !FormatByExtension(extension, decision.format)) {
    char head[kFormatProbeBytes];
    const std::size_t got =
        source.Read(reinterpret_cast<std::uint8_t*>(head), std::min<std::uint64_t>(length, sizeof head));
    if (source.Failed() || !source.Rewind()) return FileFailure(m, report, source.Failure());
    decision = DecideFormat(extension, std::string_view(head, got), options.mode);
  }
  report.format = decision.format;
  report.basis = decision.basis;
  RecordTarget target{m, options.observer};
  if (options.observer) {
    // An observer takes every record, wherever it lies.
    LoadFirst = std::numeric_limits<Address>::min() / 2;
    LoadLast = std::numeric_limits<Address>::max() / 2;
  } else {
    // The dialog keeps the range inside the area; a caller that did not is
    // held to it here, so that no store can leave the image.
    LoadFirst = std::max(LoadFirst, m.BufFirst);
    LoadLast = std::min(LoadLast, m.BufLast);
  }
  switch (decision.format) {
    case ObjectFormat::HEX:
      return ReadLines<HexReader>(target, source, report, options, LoadFirst, LoadLast);
    case ObjectFormat::S:
      return ReadLines<SLines>(target, source, report, options, LoadFirst, LoadLast);
    case ObjectFormat::BIN:
      break;
  }
  const bool read = ReadBin(target, source, length, LoadFirst, LoadLast);
  report.stored = target.stored;
  if (!read) {
    return FileFailure(m, report,
                       source.Failed() ? source.Failure() : "the file became shorter while it was read");
  }
  return report;
}

}  // namespace

LoadReport LoadObjectFile(Module1& m, Address LoadFirst, Address LoadLast, const std::string& bareName,
                          const LoadOptions& options) {
  std::uint64_t length = 0;
  std::string reason;
  if (!FileLength(m.LoadFileName, length, reason)) return FileFailure(m, {}, reason);
  if (length == 0) return {};
  FileSource file;
  if (!file.Open(m.LoadFileName)) return FileFailure(m, {}, file.Failure());
  return LoadFrom(m, LoadFirst, LoadLast, bareName, file, length, options);
}

LoadReport LoadObjectBytes(Module1& m, Address LoadFirst, Address LoadLast, const std::string& bareName,
                           std::string_view bytes, const LoadOptions& options) {
  if (bytes.empty()) return {};
  MemorySource memory(bytes);
  return LoadFrom(m, LoadFirst, LoadLast, bareName, memory, bytes.size(), options);
}

}  // namespace kestrum
