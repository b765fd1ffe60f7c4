// kestrum: the window program.
#include <QApplication>
#include <cstdio>

#include "forms/FormSupport.h"
#include "forms/QtSeams.h"
#include "forms/Screenshots.h"
#include "forms/frmsumtool.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Kestrum"));
  QApplication::setApplicationVersion(QStringLiteral(KESTRUM_VERSION));
  QApplication::setWindowIcon(kestrum::forms::AppIcon());

  // kestrum --screenshots DIR [OBJECTFILE]: a picture of every window, for
  // the docs, the main window showing the dump of OBJECTFILE.
  const QStringList args = QApplication::arguments();
  if ((args.size() == 3 || args.size() == 4) && args[1] == QStringLiteral("--screenshots")) {
    return kestrum::forms::SaveScreenshots(args[2], args.value(3)) == 0 ? 0 : 1;
  }

  kestrum::Module1 m;
  kestrum::forms::QtPlatform platform;
  kestrum::forms::QtSettingsStore store;
  if (const QString why = store.Problem(kestrum::kApp); !why.isEmpty())
    std::fprintf(stderr, "kestrum: %s; starting with the defaults\n", qPrintable(why));
  kestrum::forms::AppContext ctx{m, platform, store};
  kestrum::forms::frmsumtool window(ctx);
  if (!window.started()) {
    // Without an image nothing in the window can work.
    platform.MsgBox("Out of Memory", kestrum::vbOKOnly, {});
    return 1;
  }
  window.show();
  return app.exec();
}
