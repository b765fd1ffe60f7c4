// Every window test program: no display unless the caller asks for a platform.
#include <QByteArray>

// Before main constructs the application.
[[maybe_unused]] static const bool kPlatformChosen = [] {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  return true;
}();
