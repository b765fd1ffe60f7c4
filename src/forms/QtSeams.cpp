#include "forms/QtSeams.h"

#include <QApplication>
#include <QFileInfo>
#include <QGridLayout>
#include <QMainWindow>
#include <QMessageBox>
#include <QSettings>
#include <QSpacerItem>
#include <QStandardPaths>
#include <QThread>

namespace kestrum::forms {

QString Wrappable(const QString& text) {
  constexpr qsizetype kLongRun = 40;
  constexpr QChar kMayBreak(0x200B);  // zero-width space
  QString shown;
  qsizetype at = 0;
  while (at < text.size()) {
    qsizetype end = at;
    while (end < text.size() && !text.at(end).isSpace()) ++end;
    const bool longRun = end - at > kLongRun;
    for (; at < end; ++at) {
      shown += text.at(at);
      if (longRun && at + 1 < end) shown += kMayBreak;
    }
    for (; at < text.size() && text.at(at).isSpace(); ++at) shown += text.at(at);
  }
  return shown;
}

namespace {
// The window a message belongs to: the dialog at work, else the active window. A window manager gives the
// activation back in its own time after a dialog closes; meanwhile it is the main window the user works in.
QWidget* MessageOwner() {
  if (QWidget* dialog = QApplication::activeModalWidget()) return dialog;
  if (QWidget* active = QApplication::activeWindow()) return active;
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->isVisible() && qobject_cast<QMainWindow*>(window)) return window;
  return nullptr;
}
}  // namespace

int QtPlatform::MsgBox(const std::string& text, int style, const std::string& title) {
  QMessageBox box(MessageOwner());
  box.setTextFormat(Qt::PlainText);
  box.setText(Wrappable(QString::fromStdString(text)));
  box.setWindowTitle(title.empty() ? QStringLiteral("Kestrum") : QString::fromStdString(title));
  if (style == vbQuestionYesNo || style == vbExclamationYesNo) {
    box.setIcon(style == vbQuestionYesNo ? QMessageBox::Question : QMessageBox::Warning);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
  } else {
    box.setIcon(QMessageBox::NoIcon);
    box.setStandardButtons(QMessageBox::Ok);
  }
  // Wide enough for the window manager to show the title whole beside its
  // icon and buttons.
  QFont titleFont = box.font();
  titleFont.setBold(true);
  if (auto* grid = qobject_cast<QGridLayout*>(box.layout())) {
    const int room = QFontMetrics(titleFont).horizontalAdvance(box.windowTitle()) + 200;
    grid->addItem(new QSpacerItem(room, 0, QSizePolicy::Fixed, QSizePolicy::Minimum), grid->rowCount(), 0, 1,
                  grid->columnCount());
  }
  // The hourglass is not meant for the message itself.
  const bool busy = overridden_;
  if (busy) QApplication::restoreOverrideCursor();
  const int answer = box.exec();
  WatchUncovered(box.parentWidget(), box.frameGeometry());
  if (busy) QApplication::setOverrideCursor(Qt::WaitCursor);
  if (answer == QMessageBox::Yes) return vbYes;
  if (answer == QMessageBox::No) return vbNo;
  return vbOK;
}

void QtPlatform::SetMousePointer(int pointer) {
  if (pointer == vbHourglass && !overridden_) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    overridden_ = true;
  } else if (pointer == vbDefault && overridden_) {
    QApplication::restoreOverrideCursor();
    overridden_ = false;
  }
}

bool QtPlatform::ExposeWatch::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Expose && watched == window) exposed = true;
  return false;
}

void QtPlatform::WatchUncovered(QWidget* owner, const QRect& boxFrame) {
  if (watch_.window) watch_.window->removeEventFilter(&watch_);
  watch_.window = owner ? owner->window()->windowHandle() : nullptr;
  watch_.exposed = !watch_.window || !owner->window()->frameGeometry().intersects(boxFrame);
  if (watch_.exposed) return;
  watch_.uncovered = boxFrame;
  watch_.since.start();
  watch_.window->installEventFilter(&watch_);
}

// A window manager takes the frame of a closed box away in its own time; the
// window under it is drawn again only once it is gone. Work that began
// before would leave the box's picture on the screen until it ends.
void QtPlatform::AwaitUncovered() {
  constexpr int kPatienceMs = 300;
  while (!watch_.exposed && watch_.window && watch_.since.elapsed() < kPatienceMs) {
    QThread::msleep(1);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  }
  if (watch_.window) watch_.window->removeEventFilter(&watch_);
  watch_.window = nullptr;
  watch_.exposed = true;
}

void QtPlatform::BusyChanged() {
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  AwaitUncovered();
  for (QWidget* window : QApplication::topLevelWidgets())
    if (window->isVisible()) window->repaint();
}

namespace {
QString KeyPath(const std::string& section, const std::string& key) {
  return QString::fromStdString(section) + QLatin1Char('/') + QString::fromStdString(key);
}
}  // namespace

QtSettingsStore::QtSettingsStore(QString folder) : folder_(std::move(folder)) {}

QString QtSettingsStore::DefaultFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

QString QtSettingsStore::File(const std::string& app) const {
  const QString name = QString::fromStdString(app);
  return folder_ + QLatin1Char('/') + name + QLatin1Char('/') + name + QStringLiteral(".conf");
}

QString QtSettingsStore::Problem(const std::string& app) const {
  const QFileInfo file(File(app));
  if (!file.exists() || file.isFile()) return {};
  return file.filePath() + QStringLiteral(" is not a regular file: the settings are neither read nor stored");
}

std::string QtSettingsStore::GetSetting(const std::string& app, const std::string& section,
                                        const std::string& key) {
  if (!Problem(app).isEmpty()) return {};
  QSettings settings(File(app), QSettings::IniFormat);
  const QVariant value = settings.value(KeyPath(section, key));
  // A value that is no text (a hand-edited list, say) counts as missing.
  if (!value.isValid() || !value.canConvert<QString>()) return {};
  return value.toString().toStdString();
}

void QtSettingsStore::SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                                  const std::string& value) {
  if (!Problem(app).isEmpty()) return;
  QSettings settings(File(app), QSettings::IniFormat);
  settings.setValue(KeyPath(section, key), QString::fromStdString(value));
}

}  // namespace kestrum::forms
