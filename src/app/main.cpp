// kestrum: the window program.
#include <QApplication>

#include "forms/QtSeams.h"
#include "forms/Screenshots.h"
#include "forms/frmsumtool.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Kestrum"));
  QApplication::setApplicationVersion(QStringLiteral(KESTRUM_VERSION));

  kestrum::Module1 m;
  kestrum::forms::QtPlatform platform;
  kestrum::forms::QtSettingsStore store;
  kestrum::forms::AppContext ctx{m, platform, store};

  // kestrum --screenshots DIR: a picture of every window, for the docs.
  const QStringList args = QApplication::arguments();
  if (args.size() == 3 && args[1] == QStringLiteral("--screenshots")) {
    kestrum::MemorySettings fresh;  // a first run: the user's own store is never read
    kestrum::forms::AppContext firstRun{m, platform, fresh};
    return kestrum::forms::SaveScreenshots(firstRun, args[2]) == 0 ? 0 : 1;
  }
  kestrum::forms::frmsumtool window(ctx);
  if (!window.started()) {
    // Without an image nothing in the window can work.
    platform.MsgBox("Out of Memory", kestrum::vbOKOnly, {});
    return 1;
  }
  window.show();
  return app.exec();
}
