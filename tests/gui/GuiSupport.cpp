#include "GuiSupport.h"

namespace kestrum::test {

TempSettings::TempSettings() {
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir.path());
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, dir.path());
}

void TypeInto(QLineEdit* edit, const QString& text) {
  edit->setFocus();
  QTest::keyClick(edit, Qt::Key_End);
  for (qsizetype n = edit->text().size(); n > 0; --n) QTest::keyClick(edit, Qt::Key_Backspace);
  for (QChar c : text) QTest::keyClick(edit, c.toLatin1());
}

}  // namespace kestrum::test

// Before main constructs the application: no display unless the caller asks for a platform.
[[maybe_unused]] static const bool kPlatformChosen = [] {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  return true;
}();
