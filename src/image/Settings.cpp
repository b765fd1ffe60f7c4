#include "image/Settings.h"

namespace kestrum {

std::string SettingsStore::Read(const std::string& section, const std::string& key,
                                const std::string& fallback) {
  std::string value = GetSetting(kApp, section, key);
  return value.empty() ? fallback : value;
}

void SettingsStore::Write(const std::string& section, const std::string& key, const std::string& value) {
  SaveSetting(kApp, section, key, value);
}

std::string MemorySettings::GetSetting(const std::string& app, const std::string& section,
                                       const std::string& key) {
  auto it = values.find({app, section, key});
  return it == values.end() ? std::string() : it->second;
}

void MemorySettings::SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                                 const std::string& value) {
  values[{app, section, key}] = value;
}

}  // namespace kestrum
