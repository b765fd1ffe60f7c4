#pragma once
// Window tests: a store in a temporary folder, never the user's own, and a
// script that answers the real modal windows a person's action raises.
#include <QtTest>
#include <QtWidgets>

#include "TestSupport.h"
#include "forms/FileLists.h"
#include "forms/QtSeams.h"
#include "forms/frmbufaddr.h"
#include "forms/frmload.h"
#include "forms/frmsave.h"
#include "forms/frmstore.h"
#include "forms/frmsum.h"
#include "forms/frmsumtool.h"
#include "forms/frmversion.h"

namespace kestrum::test {

// Points QSettings at a fresh temporary folder for the life of the object.
struct TempSettings {
  TempSettings() {
    QSettings::setDefaultFormat(QSettings::IniFormat);
    for (auto format : {QSettings::NativeFormat, QSettings::IniFormat})
      QSettings::setPath(format, QSettings::UserScope, dir.path());
  }
  QTemporaryDir dir;
  forms::QtSettingsStore store;
};

// The child of parent with the given object name, failing the test if none.
template <typename W = QWidget> W* Child(QWidget* parent, const char* name) {
  W* w = parent->findChild<W*>(QString::fromLatin1(name));
  if (!w) qFatal("no control named %s", name);
  return w;
}

// Presses key in window as a person does: into its focused control, from
// which what the control leaves goes up to the window (Enter to the default
// button, Esc to the dialog).
inline void PressKey(QWidget* window, Qt::Key key) {
  QTest::keyClick(window->focusWidget() ? window->focusWidget() : window, key);
}

// Answers the modal windows an action raises, one step per window in the
// order they come up; the action blocks in the window's own event loop, so
// the steps run from timers inside it. A step that raises another modal
// window (a dialog's message box) is still running while the next step
// answers that one. A step must leave its window closed; one left open is a
// failure, and is closed so that the scenario goes on.
class ModalScript {
 public:
  // The next window is a dialog of type D.
  template <typename D> ModalScript& Dialog(std::function<void(D*)> drive) {
    steps_.push_back([drive](QWidget* window) {
      QVERIFY2(qobject_cast<D*>(window), window->metaObject()->className());
      drive(qobject_cast<D*>(window));
    });
    return *this;
  }

  // The next window is a message box with text, icon and title (a notice has
  // the program's name), answered by key: Enter for its default button, Esc
  // for its escape button.
  ModalScript& Message(const QString& text, QMessageBox::Icon icon = QMessageBox::NoIcon,
                       const QString& title = "Kestrum", Qt::Key key = Qt::Key_Return) {
    return Dialog<QMessageBox>([=](QMessageBox* box) {
      QCOMPARE(box->text() + '|' + box->windowTitle(), text + '|' + title);
      QCOMPARE(box->icon(), icon);
      QTest::keyClick(box, key);
    });
  }

  // Runs action (which may open the first window itself, or leave it to the
  // event loop), then waits until every step has had its window and ended.
  void Run(const std::function<void()>& action) {
    Watch();
    action();
    if (!QTest::qWaitFor([this] { return next_ == steps_.size() && busy_ == 0; }, 10000))
      QTest::qFail("a window did not come up, or its step did not end", __FILE__, __LINE__);
    steps_.clear();
    next_ = 0;
  }

 private:
  // A fresh timer each time: a timer does not fire again while its own
  // handler blocks in a nested event loop, and a step blocks in one.
  void Watch() { if (next_ < steps_.size()) QTimer::singleShot(10, &context_, [this] { Poll(); }); }

  void Poll() {
    QPointer<QWidget> window = QApplication::activeModalWidget();
    if (!window || !window->isVisible() || handled_.contains(window) || next_ >= steps_.size()) return Watch();
    handled_ << window;
    const auto step = steps_[next_++];
    ++busy_;
    Watch();
    if (!QTest::qWaitForWindowExposed(window)) QTest::qFail("a window never showed", __FILE__, __LINE__);
    step(window);
    if (window && window->isVisible()) {
      QTest::qFail(qPrintable("left open: " + window->windowTitle()), __FILE__, __LINE__);
      if (auto* dialog = qobject_cast<QDialog*>(window.data())) dialog->reject();
    }
    --busy_;
  }

  std::vector<std::function<void(QWidget*)>> steps_;
  std::size_t next_ = 0;
  int busy_ = 0;
  QList<QPointer<QWidget>> handled_;
  QObject context_;
};

}  // namespace kestrum::test
