#include "reading/BinReader.h"

#include <algorithm>
#include <vector>

namespace kestrum {

namespace {
// Reads in pieces of this size, so that the source can tell how far it got.
constexpr std::size_t kPiece = std::size_t{8} << 20;
}  // namespace

bool ReadBin(RecordTarget& target, ByteSource& source, std::uint64_t length, Address LoadFirst,
             Address LoadLast) {
  Module1& m = target.m;
  const Address start = LoadFirst + m.LoadOffset;
  const Address end = std::min<Address>(start + static_cast<Address>(length) - 1, LoadLast);
  // Bytes below LoadFirst are read and dropped; with nothing to store
  // there is nothing worth reading.
  if (end < LoadFirst || end < start) return true;
  const Address first = std::max(start, LoadFirst);
  if (first > start && !source.Skip(static_cast<std::uint64_t>(first - start))) return false;
  std::vector<std::uint8_t> piece(
      target.observer ? static_cast<std::size_t>(std::min<Address>(end - first + 1, kPiece)) : 0);
  for (Address at = first; at <= end;) {
    const auto count = static_cast<std::size_t>(std::min<Address>(end - at + 1, kPiece));
    std::uint8_t* into = target.observer ? piece.data() : m.Buffer.data() + (at - m.BufFirst);
    if (source.Read(into, count) != count) return false;
    if (target.observer)
      target.observer->Data(at, into, count);
    else
      target.stored += count;
    at += static_cast<Address>(count);
  }
  return true;
}

}  // namespace kestrum
