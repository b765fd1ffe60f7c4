#include "reading/LoadObjectFile.h"

#include <algorithm>

#include "reading/BinReader.h"
#include "reading/ByteSource.h"
#include "reading/HexReader.h"
#include "reading/LineReader.h"
#include "reading/SReader.h"

namespace kestrum {

namespace {

LoadReport ErrorStop(Module1& m, Platform& platform, LoadReport report) {
  platform.SetMousePointer(vbDefault);
  platform.MsgBox(report.message);
  m.FileError = -1;
  return report;
}

LoadReport FileFailure(Module1& m, Platform& platform, LoadFormat format, const std::string& reason) {
  LoadReport report;
  report.outcome = LoadReport::Outcome::FileFailure;
  report.format = format;
  report.message = "Cannot read " + m.LoadFileName + ": " + reason;
  return ErrorStop(m, platform, std::move(report));
}

struct SLines {
  RecordStatus ReadLine(Module1& m, const Line& line, Address LoadFirst, Address LoadLast) {
    return ReadSLine(m, line, LoadFirst, LoadLast);
  }
};

template <typename Reader>
LoadReport ReadLines(Module1& m, Platform& platform, ByteSource& source, std::uint64_t length,
                     LoadFormat format, Address LoadFirst, Address LoadLast) {
  Reader reader;
  // A small file needs no block of full size; every line of it still fits.
  constexpr std::uint64_t kSmallBlock = 4096;
  LineReader lines(source, static_cast<std::size_t>(std::clamp<std::uint64_t>(length + 1, kSmallBlock,
                                                                              LineReader::kBlockSize)));
  Line line;
  while (lines.Next(line)) {
    const RecordStatus status = reader.ReadLine(m, line, LoadFirst, LoadLast);
    if (status == RecordStatus::Ok) continue;
    LoadReport report;
    report.outcome = LoadReport::Outcome::RecordError;
    report.format = format;
    report.line = lines.LineNumber();
    report.message = RecordMessage(status);
    return ErrorStop(m, platform, std::move(report));
  }
  if (source.Failed()) return FileFailure(m, platform, format, source.Failure());
  LoadReport report;
  report.format = format;
  return report;
}

LoadReport LoadFrom(Module1& m, Platform& platform, Address LoadFirst, Address LoadLast,
                    const std::string& bareName, ByteSource& source, std::uint64_t length) {
  LoadFormat format = LoadFormat::BIN;
  if (!FormatByExtension(ExtensionOf(bareName), format)) {
    char head[kFormatProbeBytes];
    const std::size_t got =
        source.Read(reinterpret_cast<std::uint8_t*>(head), std::min<std::uint64_t>(length, sizeof head));
    if (source.Failed() || !source.Rewind()) return FileFailure(m, platform, format, source.Failure());
    format = DecideFormat({}, std::string_view(head, got));
  }
  // The dialog keeps the range inside the area; a caller that did not is
  // held to it here, so that no store can leave the image.
  LoadFirst = std::max(LoadFirst, m.BufFirst);
  LoadLast = std::min(LoadLast, m.BufLast);
  switch (format) {
    case LoadFormat::HEX:
      return ReadLines<HexReader>(m, platform, source, length, format, LoadFirst, LoadLast);
    case LoadFormat::S:
      return ReadLines<SLines>(m, platform, source, length, format, LoadFirst, LoadLast);
    case LoadFormat::BIN:
      break;
  }
  if (!ReadBin(m, source, length, LoadFirst, LoadLast)) {
    return FileFailure(m, platform, format,
                       source.Failed() ? source.Failure() : "the file became shorter while it was read");
  }
  LoadReport report;
  report.format = format;
  return report;
}

}  // namespace

LoadReport LoadObjectFile(Module1& m, Platform& platform, Address LoadFirst, Address LoadLast,
                          const std::string& bareName) {
  std::uint64_t length = 0;
  std::string reason;
  if (!FileLength(m.LoadFileName, length, reason)) return FileFailure(m, platform, LoadFormat::BIN, reason);
  if (length == 0) return {};
  FileSource file;
  if (!file.Open(m.LoadFileName)) return FileFailure(m, platform, LoadFormat::BIN, file.Failure());
  return LoadFrom(m, platform, LoadFirst, LoadLast, bareName, file, length);
}

LoadReport LoadObjectBytes(Module1& m, Platform& platform, Address LoadFirst, Address LoadLast,
                           const std::string& bareName, std::string_view bytes) {
  if (bytes.empty()) return {};
  MemorySource memory(bytes);
  return LoadFrom(m, platform, LoadFirst, LoadLast, bareName, memory, bytes.size());
}

}  // namespace kestrum
