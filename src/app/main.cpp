// kestrum: the window program.
#include <QApplication>

#include "forms/QtSeams.h"
#include "forms/frmsumtool.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Kestrum"));
  QApplication::setApplicationVersion(QStringLiteral(KESTRUM_VERSION));

  kestrum::Module1 m;
  kestrum::forms::QtPlatform platform;
  kestrum::forms::QtSettingsStore store;
  kestrum::forms::AppContext ctx{m, platform, store};
  kestrum::forms::frmsumtool window(ctx);
  window.show();
  return app.exec();
}
