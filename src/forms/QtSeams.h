#pragma once
// The platform and the settings store as the window program has them.
#include <QString>

#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum::forms {

class QtPlatform : public Platform {
 public:
  int MsgBox(const std::string& text, int style, const std::string& title) override;
  void SetMousePointer(int pointer) override;

 private:
  bool overridden_ = false;
};

// QSettings in the platform's native place: organisation and application
// are the store's application name, the section is a group.
class QtSettingsStore : public SettingsStore {
 public:
  std::string GetSetting(const std::string& app, const std::string& section,
                         const std::string& key) override;
  void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                   const std::string& value) override;
};

}  // namespace kestrum::forms
