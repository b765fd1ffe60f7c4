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

// One value of the store of "Morvi": its section and its key.
struct Setting {
  const char* section;
  const char* key;
};

// Every value the program keeps, each named here once.
namespace settings {
inline constexpr Setting BufFirst{kAddress, "BufFirst"};
inline constexpr Setting BufLast{kAddress, "BufLast"};
inline constexpr Setting LoadFirst{kAddress, "LoadFirst"};
inline constexpr Setting LoadLast{kAddress, "LoadLast"};
inline constexpr Setting SaveFirst{kAddress, "SaveFirst"};
inline constexpr Setting SaveLast{kAddress, "SaveLast"};
inline constexpr Setting RecordLength{kAddress, "RecordLength"};
inline constexpr Setting SUMfaddr{kAddress, "SUMfaddr"};
inline constexpr Setting SUMladdr{kAddress, "SUMladdr"};
inline constexpr Setting storefaddr{kAddress, "storefaddr"};
inline constexpr Setting storeladdr{kAddress, "storeladdr"};
inline constexpr Setting storedata{kAddress, "storedata"};
inline constexpr Setting FileType{kFormat, "FileType"};
inline constexpr Setting ObjectFileFormat{kFormat, "ObjectFileFormat"};
inline constexpr Setting YSMFileFormat{kFormat, "YSMFileFormat"};
inline constexpr Setting LoadDrive{kFilePath, "LoadDrive"};
inline constexpr Setting LoadDir{kFilePath, "LoadDir"};
inline constexpr Setting SaveDrive{kFilePath, "SaveDrive"};
inline constexpr Setting SaveDir{kFilePath, "SaveDir"};
}  // namespace settings

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
  std::string Read(Setting setting, const std::string& fallback) {
    return Read(setting.section, setting.key, fallback);
  }
  void Write(Setting setting, const std::string& value) { Write(setting.section, setting.key, value); }
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
