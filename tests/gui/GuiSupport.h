#pragma once
// Window tests: a store in a temporary folder, never the user's own, and a
// scripted platform in place of real message boxes.
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

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

// Presses key in window as a person does: into its focused control, from
// which what the control leaves goes up to the window (Enter to the default
// button, Esc to the dialog).
inline void PressKey(QWidget* window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  QWidget* focus = window->focusWidget();
  QTest::keyClick(focus ? focus : window, key, modifiers);
}

// Answers the modal windows that a person's action raises, one step per
// window, in the order they come up (the action blocks in the window's own
// event loop, so the steps run from timers inside it). A step that presses a button raising
// another modal window (a dialog's message box) is still running while the
// next step answers that window: a chain of nested windows is steps in a row.
// Each step must leave its window closed; one left open is a failure, and is
// closed so that the scenario goes on.
class ModalScript {
 public:
  using Step = std::function<void(QWidget*)>;

  ModalScript& Then(const QString& what, Step step) {
    steps_.push_back({what, std::move(step)});
    return *this;
  }

  // The next window is a dialog of type D.
  template <typename D>
  ModalScript& Dialog(std::function<void(D*)> drive) {
    return Then(QString::fromLatin1(D::staticMetaObject.className()), [drive](QWidget* window) {
      auto* dialog = qobject_cast<D*>(window);
      QVERIFY2(dialog, window->metaObject()->className());
      drive(dialog);
    });
  }

  // The next window is a message box with text, icon and title, answered by
  // key: Enter for its default button, Esc for its escape button.
  ModalScript& Message(const QString& text, QMessageBox::Icon icon, const QString& title,
                       Qt::Key key = Qt::Key_Return) {
    return Then(text, [this, text, icon, title, key](QWidget* window) {
      auto* box = qobject_cast<QMessageBox*>(window);
      QVERIFY2(box, window->metaObject()->className());
      QCOMPARE(box->text(), text);
      QCOMPARE(box->icon(), icon);
      QCOMPARE(box->windowTitle(), title);
      QTest::keyClick(box, key);
    });
  }

  // Runs action, then waits until every step has had its window and ended:
  // the action may open the first window itself (a click) or leave it to the
  // event loop (a drop). The steps are used up.
  void Run(const std::function<void()>& action) {
    running_ = true;
    Watch();
    action();
    const bool done = QTest::qWaitFor([this] { return next_ == steps_.size() && busy_ == 0; }, 10000);
    running_ = false;
    for (std::size_t i = next_; i < steps_.size(); ++i) {
      QTest::qFail(qPrintable(QStringLiteral("no window came up for: ") + steps_[i].what), __FILE__, __LINE__);
    }
    if (!done && next_ == steps_.size()) QTest::qFail("a step did not end", __FILE__, __LINE__);
    steps_.clear();
    next_ = 0;
  }

 private:
  struct Entry {
    QString what;
    Step step;
  };

  // A fresh timer each time: a timer does not fire again while its own
  // handler blocks in a nested event loop, and a step blocks in one.
  void Watch() {
    if (running_ && next_ < steps_.size()) QTimer::singleShot(10, &context_, [this] { Poll(); });
  }

  void Poll() {
    QWidget* modal = QApplication::activeModalWidget();
    bool seen = false;
    for (const QPointer<QWidget>& old : handled_) seen = seen || old == modal;
    if (!modal || !modal->isVisible() || seen || next_ >= steps_.size()) {
      Watch();
      return;
    }
    handled_.push_back(modal);
    const Entry& entry = steps_[next_++];
    ++busy_;
    Watch();
    QPointer<QWidget> window = modal;
    if (!QTest::qWaitForWindowExposed(window)) QTest::qFail("a window never showed", __FILE__, __LINE__);
    entry.step(window);
    if (window && window->isVisible()) {
      QTest::qFail(qPrintable(QStringLiteral("left open: ") + entry.what), __FILE__, __LINE__);
      if (auto* dialog = qobject_cast<QDialog*>(window.data())) dialog->reject();
    }
    --busy_;
  }

  std::vector<Entry> steps_;
  std::size_t next_ = 0;
  int busy_ = 0;
  bool running_ = false;
  QList<QPointer<QWidget>> handled_;
  QObject context_;
};

}  // namespace kestrum::test
