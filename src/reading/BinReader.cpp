#include "reading/BinReader.h"

#include <algorithm>

namespace kestrum {

bool ReadBin(Module1& m, ByteSource& source, std::uint64_t length, Address LoadFirst, Address LoadLast) {
  const Address start = LoadFirst + m.LoadOffset;
  const Address end = std::min<Address>(start + static_cast<Address>(length) - 1, LoadLast);
  // Bytes below LoadFirst are read and dropped; with nothing to store
  // there is nothing worth reading.
  if (end < LoadFirst || end < start) return true;
  const Address first = std::max(start, LoadFirst);
  if (first > start && !source.Skip(static_cast<std::uint64_t>(first - start))) return false;
  const auto count = static_cast<std::size_t>(end - first + 1);
  return source.Read(m.Buffer.data() + (first - m.BufFirst), count) == count;
}

}  // namespace kestrum
