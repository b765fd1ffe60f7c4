// The Save button over arbitrary file names and listed names, in a folder
// of its own. The files that appear are the ones the naming rules give, all
// in that folder: a pair shares its stem and the YSM file has the extension
// YSM, an object file never takes a rival format's extension, a refusal or a
// No leaves the folder as it was, a listed file is asked about first, and
// whatever happens the pointer, buttons and FileError come back.
//
// Input: [0] file type, [1] object format, [2] the answers to the prompts
// (a bit each, set for Yes), [3] how many listed names follow (mod 4), then
// the name and the listed names, separated by line feeds.
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "FuzzCheck.h"
#include "image/Address.h"
#include "image/Platform.h"
#include "image/Settings.h"
#include "writing/SaveFlow.h"

using namespace kestrum;
namespace fs = std::filesystem;

namespace {

class AnsweringPlatform : public Platform {
 public:
  explicit AnsweringPlatform(unsigned answers) : answers_(answers) {}
  int MsgBox(const std::string& text, int style, const std::string&) override {
    messages.push_back(text);
    if (style == vbOKOnly) return vbOK;
    const bool yes = answers_ & 1;
    answers_ >>= 1;
    return yes ? vbYes : vbNo;
  }
  void SetMousePointer(int p) override { pointer = p; }
  std::vector<std::string> messages;
  int pointer = vbDefault;

 private:
  unsigned answers_;
};

// Removed when the process ends through exit(), as libFuzzer ends a timed
// run: by a static object's destructor, for the paths must still be there then.
struct Places {
  fs::path parent, dir;
  ~Places() {
    std::error_code ec;
    fs::remove_all(parent, ec);
  }
};

const Places& Scratch() {
  static const Places places = [] {
    const fs::path parent =
        fs::temp_directory_path() / ("kestrum-fuzz-" + std::to_string(getpid()) + ".save");
    fs::create_directories(parent / "dir");
    return Places{parent, parent / "dir"};
  }();
  return places;
}

using Listing = std::map<std::string, std::string>;

Listing List(const fs::path& dir) {
  Listing files;
  for (const auto& e : fs::directory_iterator(dir)) {
    std::ifstream in(e.path(), std::ios::binary);
    files[e.path().filename().string()] = std::string(std::istreambuf_iterator<char>(in), {});
  }
  return files;
}

// A name the file system takes as one file of the folder.
bool PlainName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.size() <= 255 &&
         name.find_first_of(std::string("/\0", 2)) == std::string::npos;
}

bool Listed(const std::vector<std::string>& listed, const std::string& name) {
  for (const auto& entry : listed)
    if (EqualsIgnoreCase(entry, name)) return true;
  return false;
}

std::string Extension(const std::string& name) {
  const auto dot = name.find('.');
  return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

// What the naming rules give for one save.
struct Expected {
  std::string refusal;  // a notice that ends the save before anything is asked
  std::vector<std::string> files;
  std::string stem;  // of a pair: what both names begin with
  std::string text5;
  std::vector<std::pair<std::string, std::string>> tests;  // listed name tested, prompt
};

Expected Name(const std::string& name, int type, const std::string& word) {
  Expected e;
  e.text5 = name;
  if (name.empty()) {
    e.refusal = "Enter or Select File Name!";
    return e;
  }
  if (name.find('/') != std::string::npos) {
    e.refusal = "Can't save";
    return e;
  }
  const std::string ext = Extension(name);
  const bool rival =
      !EqualsIgnoreCase(ext, word) &&
      (EqualsIgnoreCase(ext, "BIN") || EqualsIgnoreCase(ext, "HEX") || EqualsIgnoreCase(ext, "S"));
  if (type == 0 || type == 1) {
    if (type == 0 && rival) {
      e.refusal = "Extension Error!";
      return e;
    }
    if (ext.empty()) e.text5 = name + "." + (type == 0 ? word : "YSM");
    e.files = {e.text5};
    e.tests = {{e.text5, "Over Write?"}};
    return e;
  }
  std::string object, ysm, stem;
  if (ext.empty()) {
    stem = name + ".";
    object = stem + word;
    ysm = name + ".YSM";
    e.text5 = object;
  } else if (EqualsIgnoreCase(ext, "YSM")) {
    stem = name.substr(0, name.size() - 3);
    object = stem + word;
    ysm = name;
  } else if (rival) {
    e.refusal = "Extension Error!";
    return e;
  } else {
    stem = name.substr(0, name.size() - ext.size());
    object = name;
    ysm = stem + "YSM";
  }
  e.files = {object, ysm};
  e.stem = stem;
  e.tests = {{object, object + " File Over Write?"}, {stem + "YSM", stem + "YSM File Over Write?"}};
  return e;
}

Module1& Image() {
  static Module1 m = [] {
    Module1 image;
    Check(SizeBuffer(image, 0, 0xF) == SizeResult::Ok, "an image of 16 bytes");
    for (int i = 0; i < 16; ++i)
      image.Buffer[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(i * 17);
    image.frmsumtool.txtbuffaddr = "00000000";
    image.frmsumtool.txtbufladdr = "0000000F";
    return image;
  }();
  return m;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4) return 0;
  const int type = data[0] % 3;
  const std::string word = kObjectFormats[data[1] % 3];
  std::vector<std::string> parts(1);
  for (std::size_t i = 4; i < size; ++i) {
    if (data[i] == '\n')
      parts.emplace_back();
    else
      parts.back() += static_cast<char>(data[i]);
  }
  const std::string name = parts[0];
  std::vector<std::string> listed(parts.begin() + 1,
                                  parts.begin() + std::min<std::size_t>(parts.size(), 1 + data[3] % 4));

  const Places& places = Scratch();
  for (const auto& e : fs::directory_iterator(places.dir)) fs::remove_all(e.path());
  for (const auto& entry : listed)
    if (PlainName(entry)) std::ofstream(places.dir / entry, std::ios::binary) << "old " << entry;
  const Listing before = List(places.dir);

  SaveFields f;
  f.Drive2 = "/";
  f.Dir2 = places.dir.string();
  f.File2 = listed;
  f.Text5 = name;
  f.Text7 = "0";
  f.Text6 = "F";
  f.Text4 = "10";
  f.Combo1 = kFileTypes[static_cast<std::size_t>(type)];
  f.Combo2 = word;
  f.Combo3 = "8-8SUM";
  Module1& m = Image();
  AnsweringPlatform platform(data[2]);
  MemorySettings store;
  const bool closed = Command5_Click(f, m, platform, store);

  Check(platform.pointer == vbDefault && f.Command5Enabled && f.Command2Enabled, "pointer and buttons back");
  Check(m.FileError == 0, "FileError back at 0");
  Check(closed == !store.values.empty(), "settings stored exactly when the dialog closes");
  Check(std::distance(fs::directory_iterator(places.parent), {}) == 1, "nothing written outside the folder");
  const Listing after = List(places.dir);

  const Expected want = Name(name, type, word);
  if (!want.refusal.empty()) {
    Check(!closed && platform.messages.size() == 1 && platform.messages[0].rfind(want.refusal, 0) == 0,
          "the naming refusal");
    Check(after == before, "a refusal leaves the folder as it was");
    return 0;
  }
  Check(f.Text5 == want.text5, "the name shown afterwards");
  // The prompts: each listed name asked about in order, up to the first No.
  std::size_t asked = 0;
  unsigned answers = data[2];
  for (const auto& [tested, prompt] : want.tests) {
    if (!Listed(listed, tested)) continue;
    Check(asked < platform.messages.size() && platform.messages[asked] == prompt,
          "the prompt for a listed name");
    ++asked;
    const bool yes = answers & 1;
    answers >>= 1;
    if (!yes) {
      Check(!closed && platform.messages.size() == asked, "No ends the save");
      Check(after == before, "No leaves the folder as it was");
      return 0;
    }
  }
  for (const auto& [file, content] : after) {
    const bool made = std::find(want.files.begin(), want.files.end(), file) != want.files.end();
    Check(made || (before.count(file) && before.at(file) == content), "only the named files change");
  }
  if (!closed) {
    Check(platform.messages.size() > asked && platform.messages.back().rfind("Can't ", 0) == 0 &&
              platform.messages.back().find(f.Dir2) != std::string::npos,
          "a failed save names the file and the reason");
    return 0;
  }
  Check(platform.messages.size() == asked + 1 &&
            platform.messages.back().find("Save Complete!") != std::string::npos,
        "a completed save says so once");
  for (const auto& file : want.files) Check(after.count(file) == 1, "every named file is there");
  if (want.files.size() == 2) {
    const std::string& object = want.files[0];
    const std::string& ysm = want.files[1];
    Check(object.rfind(want.stem, 0) == 0 && ysm.size() == want.stem.size() + 3 &&
              EqualsIgnoreCase(ysm.substr(want.stem.size()), "YSM") && want.stem.back() == '.',
          "a pair shares its stem, the YSM file adding YSM");
  }
  if (type != 1) {
    const std::string ext = Extension(want.files[0]);
    Check(EqualsIgnoreCase(ext, word) ||
              !(EqualsIgnoreCase(ext, "BIN") || EqualsIgnoreCase(ext, "HEX") || EqualsIgnoreCase(ext, "S")),
          "an object file never takes a rival format's extension");
  }
  return 0;
}
