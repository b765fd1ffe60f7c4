// The typed work of a save: the tests of a request, the names and prompts,
// and the writers in their order.
#include "writing/SaveFlow.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "image/Address.h"
#include "image/Paths.h"
#include "writing/Writers.h"

namespace kestrum {

namespace {

#ifdef _WIN32
constexpr std::string_view kFolderMarks = "\\/:";
#else
constexpr std::string_view kFolderMarks = "/";
#endif

constexpr Address kMaxRecordLength = 0xFF;

std::string DropLast(const std::string& text, std::size_t count) {
  return text.substr(0, text.size() - std::min(count, text.size()));
}

// What follows the first "." of a name; empty where there is none.
std::string ExtensionOf(const std::string& name) {
  const std::size_t dot = name.find('.');
  return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

bool Listed(const std::vector<std::string>& listed, const std::string& name) {
  return std::any_of(listed.begin(), listed.end(),
                     [&](const std::string& entry) { return EqualsIgnoreCase(entry, name); });
}

// The words of a completed save.
std::string Notice(ObjectFormat format, FileType type) {
  const std::string object(NameOf(format));
  switch (type) {
    case FileType::ObjectOnly:
      return object + " File Save Complete!";
    case FileType::YsmOnly:
      return "YSM File Save Complete!";
    case FileType::ObjectAndYsm:
      break;
  }
  return object + " and YSM File Save Complete!";
}

// "Object File Only" and "YSM File Only": one file, the name tested as it
// then stands.
void NameOne(SaveNames& n, const std::string& extension, bool rival, ObjectFormat format, FileType type,
             const std::vector<std::string>& listed) {
  const bool ysm = type == FileType::YsmOnly;
  if (extension.empty()) {
    const std::string added = "." + std::string(ysm ? "YSM" : NameOf(format));
    n.objectPath += added;
    n.text5 += added;
  } else if (!ysm && rival) {
    n.refusal = Outcome::Refuse("Extension Error!");
    return;
  }
  if (Listed(listed, n.text5)) n.prompts.push_back("Over Write?");
  n.replaceObject = !ysm && format == ObjectFormat::BIN && !n.prompts.empty();
  if (ysm) n.ysmPath = std::exchange(n.objectPath, {});
}

// "Object and YSM File": two files that share a stem.
void NamePair(SaveNames& n, const std::string& extension, bool rival, ObjectFormat format,
              const std::vector<std::string>& listed) {
  const std::string name = n.text5, word(NameOf(format));
  std::string stem, objectName;
  if (extension.empty()) {
    n.ysmPath = n.objectPath + ".YSM";
    n.objectPath += "." + word;
    stem = name + ".";
    objectName = stem + word;
    n.text5 = objectName;
  } else if (EqualsIgnoreCase(extension, "YSM")) {
    n.ysmPath = n.objectPath;
    n.objectPath = DropLast(n.objectPath, 3) + word;
    stem = DropLast(name, 3);
    objectName = stem + word;
  } else if (rival) {
    n.refusal = Outcome::Refuse("Extension Error!");
    return;
  } else {
    n.ysmPath = DropLast(n.objectPath, extension.size()) + "YSM";
    stem = DropLast(name, extension.size());
    objectName = name;
  }
  const bool objectListed = Listed(listed, objectName);
  if (objectListed) n.prompts.push_back(objectName + " File Over Write?");
  if (Listed(listed, stem + "YSM")) n.prompts.push_back(stem + "YSM File Over Write?");
  n.replaceObject = format == ObjectFormat::BIN && objectListed;
}

}  // namespace

bool LengthFitsFormat(Address recordLength, std::optional<ObjectFormat> format) {
  // Only a stored setting can hold more than two digits; a length the
  // record writers can't take is refused like an empty one.
  return format == ObjectFormat::BIN || (recordLength >= 1 && recordLength <= kMaxRecordLength);
}

Outcome CheckSaveRange(const Module1& m, Address first, Address last, bool lengthFits) {
  if (first > last) return Outcome::Refuse("Address Error!");
  if (!lengthFits) return Outcome::Refuse("RecordLength Error!");
  if (!m.InArea(first)) return Outcome::Refuse("FirstAddress Error!");
  if (!m.InArea(last)) return Outcome::Refuse("LastAddress Error!");
  return Outcome::Done();
}

Outcome CheckSaveRequest(const Module1& m, const SaveRequest& r) {
  const Outcome range = CheckSaveRange(m, r.first, r.last, LengthFitsFormat(r.recordLength, r.format));
  if (!range.IsDone()) return range;
  if (r.name.empty()) return Outcome::Refuse("Enter or Select File Name!");
  if (!r.format) return Outcome::Refuse(kObjectFormatError);
  if (!r.type) return Outcome::Refuse("File Type Error!");
  if (!r.sum) return Outcome::Refuse(kSumFormatError);
  return Outcome::Done();
}

SaveNames NameSave(const std::string& dir, const std::string& name, ObjectFormat format, FileType type,
                   const std::vector<std::string>& listed) {
  SaveNames n;
  n.objectPath = JoinPath(dir, name);
  n.text5 = name;
  n.notice = Notice(format, type);
  if (name.find_first_of(kFolderMarks) != std::string::npos) {
    n.refusal = Outcome::Refuse("Can't save " + n.objectPath + ": a file name can't hold a folder.");
    return n;
  }
  const std::string extension = ExtensionOf(name);
  const std::optional<ObjectFormat> named = FromName<ObjectFormat>(extension);
  const bool rival = named && *named != format;
  if (type == FileType::ObjectAndYsm)
    NamePair(n, extension, rival, format, listed);
  else
    NameOne(n, extension, rival, format, type, listed);
  return n;
}

std::vector<Outcome> WriteSave(Module1& m, const SaveNames& names, ObjectFormat format, SumKind sum,
                               const std::function<void(const Outcome&)>& written) {
  // A listed BIN file the user agreed to replace is replaced whole; its old
  // content goes only once the new file stands.
  WriteOptions options;
  options.replaceWhole = names.replaceObject;
  std::vector<Outcome> outcomes;
  if (!names.objectPath.empty()) outcomes.push_back(SaveObjectFile(m, format, names.objectPath, options));
  if (written && !outcomes.empty()) written(outcomes.back());
  if (!names.ysmPath.empty()) outcomes.push_back(SaveYsmFile(m, names.ysmPath, sum));
  if (written && !names.ysmPath.empty()) written(outcomes.back());
  return outcomes;
}

}  // namespace kestrum
