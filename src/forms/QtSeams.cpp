#include "forms/QtSeams.h"

#include <QApplication>
#include <QMessageBox>
#include <QSettings>

namespace kestrum::forms {

int QtPlatform::MsgBox(const std::string& text, int style, const std::string& title) {
  QMessageBox box(QApplication::activeWindow());
  box.setText(QString::fromStdString(text));
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
  // The hourglass is not meant for the message itself.
  const bool busy = overridden_;
  if (busy) QApplication::restoreOverrideCursor();
  const int answer = box.exec();
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

namespace {
QString KeyPath(const std::string& section, const std::string& key) {
  return QString::fromStdString(section) + QLatin1Char('/') + QString::fromStdString(key);
}
}  // namespace

std::string QtSettingsStore::GetSetting(const std::string& app, const std::string& section,
                                        const std::string& key) {
  QSettings settings(QSettings::UserScope, QString::fromStdString(app), QString::fromStdString(app));
  const QVariant value = settings.value(KeyPath(section, key));
  // A value that is no text (a hand-edited list, say) counts as missing.
  if (!value.isValid() || !value.canConvert<QString>()) return {};
  return value.toString().toStdString();
}

void QtSettingsStore::SaveSetting(const std::string& app, const std::string& section,
                                  const std::string& key, const std::string& value) {
  QSettings settings(QSettings::UserScope, QString::fromStdString(app), QString::fromStdString(app));
  settings.setValue(KeyPath(section, key), QString::fromStdString(value));
}

}  // namespace kestrum::forms
