#pragma once
// Rows of load tests: a file's bytes, the range and offset, and what the
// image, the messages and the report must show afterwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "TestSupport.h"
#include "reading/LoadObjectFile.h"

namespace kestrum::test {

// The test image spans 00000000..0003FFFF.
constexpr Address kImageLast = 0x3FFFF;

struct Bytes {
  Address address;
  std::vector<std::uint8_t> values;
};

struct LoadCase {
  const char* name;
  std::string file;
  std::vector<Bytes> stored;  // every byte the load changes
  const char* message = "";   // the one message box, or none
  std::uint64_t line = 0;     // the failing record's line
  Address first = 0;
  Address last = kImageLast;
  Address offset = 0;
};

// The lines, each with the line end behind it.
inline std::string Lines(std::initializer_list<std::string> lines, const char* end = "\r\n") {
  std::string text;
  for (const auto& l : lines) text += l + end;
  return text;
}

// Loads c.file under bareName into a fresh FF image and checks the image
// byte for byte, the messages, FileError and the report.
inline void CheckLoad(const LoadCase& c, const std::string& bareName) {
  SCOPED_TRACE(c.name);
  Module1 m = MakeImage(0, kImageLast);
  ScriptedPlatform platform;
  m.LoadOffset = c.offset;
  m.LoadFileName = "/work/" + bareName;
  const LoadReport report = LoadObjectBytes(m, platform, c.first, c.last, bareName, c.file);

  std::vector<std::uint8_t> expected(static_cast<std::size_t>(kImageLast + 1), 0xFF);
  for (const Bytes& b : c.stored)
    for (std::size_t i = 0; i < b.values.size(); ++i)
      expected[static_cast<std::size_t>(b.address) + i] = b.values[i];
  const auto wrong =
      std::mismatch(expected.begin(), expected.end(), m.Buffer.data()).first - expected.begin();
  EXPECT_EQ(wrong, expected.end() - expected.begin()) << "the first wrong byte is at " << std::hex << wrong;
  const std::string message = c.message;
  EXPECT_EQ(platform.Texts(),
            message.empty() ? std::vector<std::string>{} : std::vector<std::string>{message});
  EXPECT_EQ(m.FileError, message.empty() ? 0 : -1);
  EXPECT_EQ(report.Loaded(), message.empty());
  EXPECT_EQ(report.line, c.line);
  if (!message.empty()) {
    EXPECT_EQ(platform.pointer, vbDefault);
  }
}

}  // namespace kestrum::test
