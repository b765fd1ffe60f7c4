#include "TestSupport.h"

#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace kestrum::test {

namespace fs = std::filesystem;

int ScriptedPlatform::MsgBox(const std::string& text, int style, const std::string& title) {
  messages.push_back({text, style, title});
  if (style == vbOKOnly) return vbOK;
  if (answers.empty()) return vbYes;
  int answer = answers.front();
  answers.pop_front();
  return answer;
}

void ScriptedPlatform::SetMousePointer(int p) {
  pointer = p;
  pointers.push_back(p);
}

std::vector<std::string> ScriptedPlatform::Texts() const {
  std::vector<std::string> texts;
  for (const auto& m : messages) texts.push_back(m.text);
  return texts;
}

// Named at random: a clash with another test's folder is as good as impossible.
TempDir::TempDir()
    : path_(fs::temp_directory_path() / ("kestrum-test-" + std::to_string(std::random_device{}()) + "-" +
                                         std::to_string(std::random_device{}()))) {
  if (!fs::create_directory(path_)) throw std::runtime_error("no temporary folder");
  fs::permissions(path_, fs::perms::owner_all);  // for its owner only
}

TempDir::~TempDir() {
  std::error_code ec;
  // Give back write permission that a test may have taken away.
  for (auto it = fs::recursive_directory_iterator(path_, ec); it != fs::recursive_directory_iterator();
       it.increment(ec))
    fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
  fs::remove_all(path_, ec);
}

void WriteFile(const fs::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path.string());
}

std::string ReadFile(const fs::path& path) {
  std::ostringstream s;
  s << std::ifstream(path, std::ios::binary).rdbuf();
  return s.str();
}

Module1 MakeImage(Address first, Address last) {
  Module1 m;
  if (ResetArea(m, AddressToText(first), AddressToText(last)) != SizeResult::Ok)
    throw std::runtime_error("no image");
  return m;
}

}  // namespace kestrum::test
