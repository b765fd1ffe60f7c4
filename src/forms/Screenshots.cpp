#include "forms/Screenshots.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPixmap>
#include <QPushButton>
#include <QTextStream>
#include <QWindow>
#include <functional>

#include "bufferops/Dump.h"
#include "forms/frmbufaddr.h"
#include "forms/frmload.h"
#include "forms/frmsave.h"
#include "forms/frmstore.h"
#include "forms/frmsum.h"
#include "forms/frmsumtool.h"
#include "forms/frmversion.h"
#include "reading/LoadObjectFile.h"

namespace kestrum::forms {

namespace {

// Nobody is there to answer a message box: its text goes to stderr.
class PrintingPlatform : public Platform {
 public:
  int MsgBox(const std::string& text, int, const std::string&) override {
    QTextStream(stderr) << "kestrum: " << Q(text) << '\n';
    return vbOK;
  }
  void SetMousePointer(int) override {}
};

// Shows form and waits until the window system has put it on the screen.
void ShowOnScreen(QWidget* form) {
  form->show();
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < 5000 && !(form->windowHandle() && form->windowHandle()->isExposed())) {
    QApplication::processEvents(QEventLoop::AllEvents, 50);
  }
  QApplication::processEvents();
}

int Save(QWidget* form, const QString& dir) {
  ShowOnScreen(form);
  const QString path = QDir(dir).filePath(form->objectName() + QStringLiteral(".png"));
  // The frame of a window belongs to the window manager; the form is grabbed.
  const bool saved = form->grab().save(path);
  form->hide();
  if (!saved) {
    QTextStream(stderr) << "kestrum: cannot save " << path << '\n';
    return 1;
  }
  QTextStream(stdout) << path << '\n';
  return 0;
}

// Loads file over the whole area and dumps its first page, as the user
// would with File Load and Dump.
bool LoadAndDump(Module1& m, Platform& platform, const QString& file) {
  const QFileInfo info(file);
  m.LoadFileName = S(info.absoluteFilePath());
  m.LoadOffset = 0;
  const LoadReport report = LoadObjectFile(m, m.BufFirst, m.BufLast, S(info.fileName()));
  m.FileError = 0;
  if (!report.Loaded()) return false;
  m.frmsumtool.Text1 = S(info.fileName());
  kestrum::frmsumtool::cmdedit_Click(m, platform);
  return true;
}

}  // namespace

int SaveScreenshots(const QString& dir, const QString& objectFile) {
  if (!QDir().mkpath(dir)) {
    QTextStream(stderr) << "kestrum: cannot make the folder " << dir << '\n';
    return 1;
  }
  Module1 m;
  PrintingPlatform platform;
  MemorySettings store;  // a first run: the user's own store is never read
  AppContext ctx{m, platform, store};

  int failures = 0;
  frmsumtool main(ctx);
  if (!objectFile.isEmpty()) {
    if (!LoadAndDump(m, platform, objectFile)) ++failures;
    main.ShowFields();
  }
  failures += Save(&main, dir);
  // Each dialog opens over the main window, one at a time, as from its
  // button; SUM shows the sums of the whole area.
  const std::function<QWidget*()> dialogs[] = {
      [&] { return new frmload(ctx, &main); },
      [&] { return new frmsave(ctx, &main); },
      [&] { return new frmstore(ctx, &main); },
      [&] {
        auto* sum = new frmsum(ctx, &main);
        if (auto* calculate = sum->findChild<QPushButton*>(QStringLiteral("Command1"))) calculate->click();
        return sum;
      },
      [&] { return new frmbufaddr(ctx, &main); },
      [&] { return new frmversion(&main); },
  };
  for (const auto& make : dialogs) {
    QWidget* dialog = make();
    failures += Save(dialog, dir);
    delete dialog;
  }
  return failures;
}

}  // namespace kestrum::forms
