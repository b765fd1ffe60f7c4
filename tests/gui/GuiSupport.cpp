#include "GuiSupport.h"

// Before main constructs the application: no display unless the caller asks for a platform.
[[maybe_unused]] static const bool kPlatformChosen = [] {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  return true;
}();
