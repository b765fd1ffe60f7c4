#include "forms/Screenshots.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QTextStream>

#include "forms/frmsumtool.h"
#include "forms/frmversion.h"

namespace kestrum::forms {

namespace {

int Save(QWidget* form, const QString& dir, const QString& name) {
  form->show();
  QApplication::processEvents();
  const QString path = QDir(dir).filePath(name + QStringLiteral(".png"));
  // The frame of the window belongs to the window manager; grab the form.
  if (form->grab().save(path)) {
    QTextStream(stdout) << path << '\n';
    return 0;
  }
  QTextStream(stderr) << "kestrum: cannot save " << path << '\n';
  return 1;
}

}  // namespace

int SaveScreenshots(AppContext& ctx, const QString& dir) {
  if (!QDir().mkpath(dir)) {
    QTextStream(stderr) << "kestrum: cannot make the folder " << dir << '\n';
    return 1;
  }
  int failures = 0;
  frmsumtool main(ctx);
  failures += Save(&main, dir, QStringLiteral("frmsumtool"));
  frmversion version(&main);
  failures += Save(&version, dir, QStringLiteral("frmversion"));
  return failures;
}

}  // namespace kestrum::forms
