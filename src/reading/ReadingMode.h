#pragma once
// How a text object file is cut into records. The window reads by its own
// strict rules; the command line reads files as toolchains write them.
namespace kestrum {

enum class ReadingMode {
  // A CR or a CR LF pair ends a line and a lone LF stays in its text; every
  // line is a record, an empty one included. The extension decides the
  // format when it names one.
  Window,
  // A CR LF pair, a CR or an LF ends a line. Lines of blanks and tabs only
  // are passed over, blanks and tabs at the end of a line are dropped, and
  // Ctrl-Z characters after the last line end are ignored. The content
  // decides from its first character after leading blank lines, and
  // overrides an extension that names the other text format.
  Tolerant,
};

}  // namespace kestrum
