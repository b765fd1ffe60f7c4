#pragma once
// The per-user store of named texts that outlives the program, addressed by
// application, section and key.
#include <map>
#include <string>
#include <tuple>

namespace kestrum {

inline constexpr const char* kApp = "Morvi";
inline constexpr const char* kAddress = "Address";
inline constexpr const char* kFormat = "Format";
inline constexpr const char* kFilePath = "FilePath";

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  // The stored text, or empty when there is none.
  virtual std::string GetSetting(const std::string& app, const std::string& section,
                                 const std::string& key) = 0;
  virtual void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                           const std::string& value) = 0;

  // The stored text of key in section of "Morvi", or fallback when empty.
  std::string Read(const std::string& section, const std::string& key, const std::string& fallback);
  void Write(const std::string& section, const std::string& key, const std::string& value);
};

// A store that lives in memory: for the command line and for tests.
class MemorySettings : public SettingsStore {
 public:
  std::string GetSetting(const std::string& app, const std::string& section, const std::string& key) override;
  void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                   const std::string& value) override;

  using Key = std::tuple<std::string, std::string, std::string>;
  std::map<Key, std::string> values;
};

}  // namespace kestrum
