// BIN: the bytes of the range, no header, no addresses.
#include <algorithm>
#include <cstdint>

#include "writing/OutputFile.h"
#include "writing/WriterSupport.h"
#include "writing/Writers.h"

namespace kestrum {

Outcome SaveBinFile(Module1& m, const std::string& FileName, const WriteOptions& options) {
  OutputFile file = OutputFile::Create(FileName);
  if (!file.ok()) return FileFailure(file);
  const std::uint8_t* bytes = &m.At(m.SaveFirst);
  const std::uint64_t size = static_cast<std::uint64_t>(m.SaveLast - m.SaveFirst + 1);
  // Large pieces, each taken by the system in one call.
  constexpr std::uint64_t kPiece = std::uint64_t{1} << 24;
  RangeProgress progress(m, options);
  for (std::uint64_t done = 0; done < size;) {
    progress.At(m.SaveFirst + static_cast<Address>(done));
    const std::uint64_t piece = std::min(kPiece, size - done);
    if (!file.Write(bytes + done, static_cast<std::size_t>(piece))) return FileFailure(file);
    done += piece;
  }
  if (!options.replaceWhole && !file.AppendOldTail(size)) return FileFailure(file);
  return Finish(file);
}

Outcome SaveObjectFile(Module1& m, ObjectFormat format, const std::string& FileName,
                       const WriteOptions& options) {
  switch (format) {
    case ObjectFormat::HEX:
      return SaveHexFile(m, FileName, options);
    case ObjectFormat::S:
      return SaveSFile(m, FileName, options);
    case ObjectFormat::BIN:
      break;
  }
  return SaveBinFile(m, FileName, options);
}

}  // namespace kestrum
