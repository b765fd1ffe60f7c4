#pragma once
// The busy state of a dialog while it works: the hourglass, and the
// dialog's buttons disabled. The scope sets both, tells the platform so
// that the window shows them before the work starts, and restores both on
// every way out.
#include <initializer_list>
#include <vector>

#include "image/Platform.h"

namespace kestrum {

class BusyScope {
 public:
  // buttons: the Enabled fields of the buttons the work disables.
  BusyScope(Platform& platform, std::initializer_list<bool*> buttons);
  ~BusyScope() { End(); }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

  // Default pointer, buttons enabled, before the scope ends (a refusal or a
  // notice shown after the work). Ending twice does nothing.
  void End();

 private:
  Platform& platform_;
  std::vector<bool*> buttons_;
  bool busy_ = true;
};

}  // namespace kestrum
