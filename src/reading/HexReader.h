#pragma once
// Intel HEX records, one line each: a start mark (any character), count,
// 16-bit address, type, data and checksum, all as hexadecimal pairs.
#include "image/Module1.h"
#include "reading/LineReader.h"
#include "reading/QuickRecords.h"
#include "reading/RecordStore.h"

namespace kestrum {

class HexReader {
 public:
  // Handles one line: stores what a data record holds inside
  // LoadFirst..LoadLast at its address + the base + LoadOffset, and takes
  // a new base from an extended address record. A field that is not made
  // of hexadecimal digits is a "Format Error", like a line of wrong length.
  RecordStatus ReadLine(RecordTarget& target, const Line& line, Address LoadFirst, Address LoadLast);

  // Whole, sound data records straight from text, for as long as the quick
  // road takes them.
  QuickRun Quick(Module1& m, std::string_view text, Address LoadFirst, Address LoadLast, QuickLineEnd ends) {
    return QuickHexRecords(m, text, base_, LoadFirst, LoadLast, ends);
  }

 private:
  RecordStatus DataRecord(RecordTarget& target, std::string_view text, int count, Address LoadFirst,
                          Address LoadLast, int checksum);
  RecordStatus BaseRecord(std::string_view text, int type, Address scale, int checksum);

  // What the last extended segment ("02") or linear ("04") record gave;
  // either kind replaces the other.
  Address base_ = 0;
};

}  // namespace kestrum
