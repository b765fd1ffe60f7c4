#pragma once
// How every writer ends: a file failure names the file and the reason.
#include "image/Module1.h"
#include "image/Outcome.h"
#include "writing/OutputFile.h"
#include "writing/Writers.h"

namespace kestrum {

inline Outcome FileFailure(const OutputFile& file) { return Outcome::Fail(file.failure(), file.path()); }

// Gives the file its name; a failure if it could not be written.
inline Outcome Finish(OutputFile& file) {
  if (!file.Commit()) return FileFailure(file);
  return Outcome::Done();
}

// Tells a writer's caller how far through the range it has come, once a
// mebibyte of the image.
class RangeProgress {
 public:
  RangeProgress(const Module1& m, const WriteOptions& options)
      : options_(options),
        first_(m.SaveFirst),
        total_(static_cast<std::uint64_t>(m.SaveLast - m.SaveFirst + 1)),
        next_(options.progress ? first_ : kNever) {}
  void At(Address address) {
    if (address < next_) return;
    options_.progress(static_cast<std::uint64_t>(address - first_), total_);
    next_ = address + kStep;
  }

 private:
  static constexpr Address kStep = Address{1} << 20;
  static constexpr Address kNever = Address{1} << 62;
  const WriteOptions& options_;
  Address first_;
  std::uint64_t total_;
  Address next_;
};

// The record writers' guard against a length the save flow should have
// refused: a length of 0 would never end.
inline bool RecordLengthFits(const Module1& m) { return m.RecordLength >= 1 && m.RecordLength <= 255; }
inline constexpr const char* kRecordLengthOutside = "RecordLength Error!";

}  // namespace kestrum
