#include "TestSupport.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kestrum::test {

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

TempDir::~TempDir() {
  std::error_code ec;
  // Give back write permission that a test may have taken away.
  for (auto it = std::filesystem::recursive_directory_iterator(path_, ec);
       it != std::filesystem::recursive_directory_iterator(); it.increment(ec)) {
    std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::add, ec);
  }
  std::filesystem::remove_all(path_, ec);
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + path.string());
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

Module1 MakeImage(Address first, Address last) {
  Module1 m;
  if (ResetArea(m, AddressToText(first), AddressToText(last)) != SizeResult::Ok)
    throw std::runtime_error("no image");
  return m;
}

}  // namespace kestrum::test
