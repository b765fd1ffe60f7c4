#pragma once
// Which reader a file goes to: by its extension, else by its first bytes,
// with binary as the last resort.
#include <cstddef>
#include <string>
#include <string_view>

#include "image/Formats.h"
#include "reading/ReadingMode.h"

namespace kestrum {

// What decided a file's format.
enum class FormatBasis {
  Extension,
  Content,
  ContentOverExtension,  // the extension names the other text format
};

struct FormatDecision {
  ObjectFormat format = ObjectFormat::BIN;
  FormatBasis basis = FormatBasis::Extension;
};

// Everything behind the first dot of a bare file name ("PROG.HEX.BAK" gives
// "HEX.BAK"); empty without a dot.
std::string ExtensionOf(std::string_view bareName);

// The most bytes of a file's head that the decision looks at: in tolerant
// mode blank lines in front may push the first record further.
constexpr std::size_t kFormatProbeBytes = 4096;

// The decision: an extension of HEX, BIN or S (any case) names the format;
// otherwise a first byte "S" with a CR or LF in the first 514 bytes gives S,
// a colon with one in the first 523 gives HEX, and all else is BIN. In
// tolerant mode the first byte is the first after leading blank lines, and
// a HEX or S extension gives way to content that plainly begins with the
// other format's start mark. head is the start of the file, at least
// kFormatProbeBytes of it when it has that many.
FormatDecision DecideFormat(std::string_view extension, std::string_view head,
                            ReadingMode mode = ReadingMode::Window);

// Whether the extension alone decides, so that the head need not be read.
bool FormatByExtension(std::string_view extension, ObjectFormat& format);

}  // namespace kestrum
