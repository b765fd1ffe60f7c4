#pragma once
// The platform and the settings store as the window program has them.
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>
#include <QWindow>

#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum::forms {

// The text of a message as its box shows it: a run of more than 40
// characters without a blank (a long file name) may break after any of
// them, so that it wraps whole instead of running out of the box.
QString Wrappable(const QString& text);

class QtPlatform : public Platform {
 public:
  int MsgBox(const std::string& text, int style, const std::string& title) override;
  void SetMousePointer(int pointer) override;
  // Paints every window now: the work that follows holds the event loop.
  // Where a message box has just closed over the window at work, first
  // waits (briefly) until the window system has shown that window again.
  void BusyChanged() override;

 private:
  // Watches a window for the window system's request to draw it again.
  class ExposeWatch : public QObject {
   public:
    bool eventFilter(QObject* watched, QEvent* event) override;
    QPointer<QWindow> window;
    QRect uncovered;  // where a closed box stood, in screen coordinates
    QElapsedTimer since;
    bool exposed = true;
  };
  void WatchUncovered(QWidget* owner, const QRect& boxFrame);
  void AwaitUncovered();

  bool overridden_ = false;
  ExposeWatch watch_;
};

// QSettings in an INI file, APP/APP.conf under the user's configuration
// folder: the store's application name twice, the section as a group.
class QtSettingsStore : public SettingsStore {
 public:
  explicit QtSettingsStore(QString folder = DefaultFolder());
  static QString DefaultFolder();
  // Why the store of app is neither read nor written, or empty. QSettings
  // reads its file as soon as it is made, and a pipe there would hold the
  // window before it shows: only a regular file (or none yet) is used.
  QString Problem(const std::string& app) const;

  std::string GetSetting(const std::string& app, const std::string& section, const std::string& key) override;
  void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                   const std::string& value) override;

 private:
  QString File(const std::string& app) const;
  QString folder_;
};

}  // namespace kestrum::forms
