#pragma once
// Window tests: a store in a temporary folder, never the user's own, and a
// scripted platform in place of real message boxes.
#include <QLineEdit>
#include <QString>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>
#include <memory>

#include "TestSupport.h"
#include "forms/FormSupport.h"
#include "forms/QtSeams.h"

namespace kestrum::test {

// Points QSettings at a fresh temporary folder for the life of the object.
class TempSettings {
 public:
  TempSettings();
  forms::QtSettingsStore store;
  QString path() const { return dir_.path(); }

 private:
  QTemporaryDir dir_;
};

// Everything a form needs, with a scripted platform.
struct GuiWorld {
  TempSettings settings;
  Module1 m;
  ScriptedPlatform platform;
  forms::AppContext ctx{m, platform, settings.store};
};

// Types text key by key into an edit, through whatever filter it has.
void TypeInto(QLineEdit* edit, const QString& text);

// The child of parent with the given object name, failing the test if none.
template <typename W>
W* Child(QWidget* parent, const char* name) {
  W* w = parent->findChild<W*>(QString::fromLatin1(name));
  if (!w) qFatal("no control named %s", name);
  return w;
}

}  // namespace kestrum::test
