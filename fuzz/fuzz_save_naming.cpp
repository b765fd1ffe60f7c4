// The naming of a save over arbitrary file names and listed names, without
// a disk. The names come out as the rules give them: every file in the
// folder, a pair sharing its stem with the YSM file taking the extension
// YSM, an object file never with a rival format's extension, a prompt for
// each listed name in order, and a refusal leaving the name as typed.
//
// Input: [0] file type, [1] object format, [2] how many listed names follow
// (mod 4), then the name and the listed names, separated by line feeds.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "image/Address.h"
#include "writing/SaveFlow.h"

using namespace kestrum;

namespace {

const std::string kDir = "/fold/er";

bool Listed(const std::vector<std::string>& listed, const std::string& name) {
  for (const auto& entry : listed)
    if (EqualsIgnoreCase(entry, name)) return true;
  return false;
}

std::string Extension(const std::string& name) {
  const auto dot = name.find('.');
  return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

bool IsRival(const std::string& extension, const std::string& word) {
  return !EqualsIgnoreCase(extension, word) &&
         (EqualsIgnoreCase(extension, "BIN") || EqualsIgnoreCase(extension, "HEX") ||
          EqualsIgnoreCase(extension, "S"));
}

// What the naming rules give for one save, worked out a second way.
struct Expected {
  bool refused = false;
  std::string object, ysm;  // bare names; empty for a file not made
  std::string stem;         // of a pair: what both names begin with
  std::string text5;
  std::vector<std::pair<std::string, std::string>> tests;  // listed name tested, prompt
};

Expected Name(const std::string& name, FileType type, const std::string& word) {
  Expected e;
  e.text5 = name;
  const std::string ext = Extension(name);
  e.refused = name.find('/') != std::string::npos || (type != FileType::YsmOnly && IsRival(ext, word));
  if (e.refused) return e;
  if (type != FileType::ObjectAndYsm) {
    if (ext.empty()) e.text5 = name + "." + (type == FileType::ObjectOnly ? word : "YSM");
    (type == FileType::ObjectOnly ? e.object : e.ysm) = e.text5;
    e.tests = {{e.text5, "Over Write?"}};
    return e;
  }
  if (ext.empty()) {
    e.stem = name + ".";
    e.object = e.stem + word;
    e.ysm = name + ".YSM";
    e.text5 = e.object;
  } else if (EqualsIgnoreCase(ext, "YSM")) {
    e.stem = name.substr(0, name.size() - 3);
    e.object = e.stem + word;
    e.ysm = name;
  } else {
    e.stem = name.substr(0, name.size() - ext.size());
    e.object = name;
    e.ysm = e.stem + "YSM";
  }
  e.tests = {{e.object, e.object + " File Over Write?"}, {e.stem + "YSM", e.stem + "YSM File Over Write?"}};
  return e;
}

std::string InFolder(const std::string& bare) { return bare.empty() ? bare : kDir + "/" + bare; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  const auto type = static_cast<FileType>(data[0] % 3);
  const auto format = static_cast<ObjectFormat>(data[1] % 3);
  const std::string word(NameOf(format));
  std::vector<std::string> parts(1);
  for (std::size_t i = 3; i < size; ++i) {
    if (data[i] == '\n')
      parts.emplace_back();
    else
      parts.back() += static_cast<char>(data[i]);
  }
  const std::string name = parts[0];
  if (name.empty()) return 0;  // refused before the naming
  const std::vector<std::string> listed(parts.begin() + 1,
                                        parts.begin() + std::min<std::size_t>(parts.size(), 1 + data[2] % 4));

  const SaveNames got = NameSave(kDir, name, format, type, listed);
  const Expected want = Name(name, type, word);
  Check(got.refusal.IsDone() != want.refused, "refused exactly when the rules refuse");
  if (want.refused) {
    Check(got.refusal.ending == Ending::Refused && !got.refusal.words.empty(), "a refusal has its words");
    Check(got.text5 == name, "a refusal leaves the name as typed");
    return 0;
  }
  Check(got.text5 == want.text5, "the name shown afterwards");
  Check(got.objectPath == InFolder(want.object), "the object file");
  Check(got.ysmPath == InFolder(want.ysm), "the YSM file");
  std::vector<std::string> prompts;
  for (const auto& [tested, prompt] : want.tests)
    if (Listed(listed, tested)) prompts.push_back(prompt);
  Check(got.prompts == prompts, "a prompt for each listed name, in order");
  const bool objectListed = !want.object.empty() && Listed(listed, want.object);
  Check(got.replaceObject == (format == ObjectFormat::BIN && objectListed),
        "only a listed BIN file replaced whole");
  if (type == FileType::ObjectAndYsm) {
    Check(want.object.rfind(want.stem, 0) == 0 && want.ysm.size() == want.stem.size() + 3 &&
              EqualsIgnoreCase(want.ysm.substr(want.stem.size()), "YSM") && want.stem.back() == '.',
          "a pair shares its stem, the YSM file adding YSM");
  }
  if (type != FileType::YsmOnly) Check(!IsRival(Extension(want.object), word), "no rival format's extension");
  return 0;
}
