// The windows without a mouse: Tab follows the design's tab index, Enter
// presses the default button and Esc does what the cancel button does (the
// buttons whose tool tips say so), the menus open with their Alt keys.
#include <QDir>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <functional>
#include <memory>

#include "GuiSupport.h"
#include "ModalSupport.h"
#include "forms/FileLists.h"
#include "forms/frmbufaddr.h"
#include "forms/frmload.h"
#include "forms/frmsave.h"
#include "forms/frmstore.h"
#include "forms/frmsum.h"
#include "forms/frmsumtool.h"
#include "forms/frmversion.h"

using namespace kestrum;
using namespace kestrum::test;

namespace {

using Open = std::function<QWidget*(forms::AppContext&)>;

template <typename F>
Open Opener() {
  return [](forms::AppContext& c) -> QWidget* { return new F(c); };
}

struct Form {
  const char* name;
  Open open;
  QStringList focus;         // the controls Tab visits, from the one that has the focus at opening
  const char* enter = "";    // the default button
  const char* escape = "";   // the cancel button
};

const std::vector<Form>& Forms() {
  static const std::vector<Form> forms = {
      {"frmsumtool", Opener<forms::frmsumtool>(),
       {"cmdload", "cmdsave", "cmdbufclear", "cmdblstore", "cmdbufsum", "cmdedit", "txteditaddr", "cmdeditplus",
        "cmdeditminus", "List1"}},
      {"frmload", Opener<forms::frmload>(),
       {"Dir1", "File1", "Text4", "Text3", "Check1", "Command1", "Command2", "Drive1"}, "Command1", "Command2"},
      {"frmsave", Opener<forms::frmsave>(),
       {"Dir2", "File2", "Text5", "Combo1", "Combo2", "Text7", "Text6", "Command5", "Command2", "Drive2"},
       "Command5", "Command2"},
      {"frmstore", Opener<forms::frmstore>(), {"Text1", "Text2", "Text3", "Command2", "Command1"}, "Command2",
       "Command1"},
      {"frmsum", Opener<forms::frmsum>(), {"Text6", "Text7", "Command1", "Command2"}, "Command1", "Command2"},
      {"frmbufaddr", Opener<forms::frmbufaddr>(), {"Text1", "Text2", "Cmdok", "Command1"}, "Cmdok", "Command1"},
      {"frmversion", [](forms::AppContext&) -> QWidget* { return new forms::frmversion; }, {"OK_Button"},
       "OK_Button", "OK_Button"},
  };
  return forms;
}

// A form of a fresh world, shown and active.
struct Opened {
  GuiWorld w;
  std::unique_ptr<QWidget> form;
  explicit Opened(const Form& f) {
    w.m = MakeImage();
    form.reset(f.open(w.ctx));
    form->show();
    form->activateWindow();
    if (!QTest::qWaitForWindowActive(form.get())) qWarning("%s never became active", f.name);
  }
  // What a key or click left behind: the store, the dialog's state, the messages.
  QStringList Outcome() const {
    QStringList outcome;
    QSettings settings(QSettings::UserScope, QString::fromLatin1(kApp), QString::fromLatin1(kApp));
    for (const QString& key : settings.allKeys()) outcome << key + QLatin1Char('=') + settings.value(key).toString();
    outcome << QStringLiteral("visible=%1").arg(form->isVisible());
    for (const auto& text : w.platform.Texts()) outcome << QString::fromStdString(text);
    return outcome;
  }
};

QString FocusName(QWidget* form) { return form->focusWidget() ? form->focusWidget()->objectName() : QString(); }

}  // namespace

class TestKeyboard : public QObject {
  Q_OBJECT
 private slots:
  void tabFollowsTheDesignsTabIndex() {
    for (const Form& f : Forms()) {
      Opened o(f);
      QWidget* form = o.form.get();
      QCOMPARE(FocusName(form), f.focus.front());
      // The step buttons of the dump take the focus once they are enabled.
      if (QString::fromLatin1(f.name) == QStringLiteral("frmsumtool")) {
        QTest::mouseClick(Child<QPushButton>(form, "cmdedit"), Qt::LeftButton);
        Child<QWidget>(form, "cmdload")->setFocus();
      }
      QStringList visited{FocusName(form)};
      for (qsizetype i = 0; i < f.focus.size(); ++i) {
        PressKey(form, Qt::Key_Tab);
        visited << FocusName(form);
      }
      QCOMPARE(visited, f.focus + QStringList{f.focus.front()});
      PressKey(form, Qt::Key_Backtab);
      QCOMPARE(FocusName(form), f.focus.back());
    }
  }

  void enterAndEscPressTheButtonsTheirTipsName() {
    for (const Form& f : Forms()) {
      if (!*f.enter) continue;
      const QString form = QString::fromLatin1(f.name);
      QStringList escaped;
      {
        Opened o(f);
        for (auto* button : o.form->findChildren<QPushButton*>()) {
          const QString tip = button->toolTip();
          QCOMPARE(tip.contains(QStringLiteral("Enter")), button->objectName() == QLatin1String(f.enter));
          QCOMPARE(tip.contains(QStringLiteral("Esc")), button->objectName() == QLatin1String(f.escape));
        }
        // Enter where a person types: in the first field, else where the focus is.
        for (auto* field : o.form->findChildren<QLineEdit*>()) {
          if (field->isEnabled() && field->isVisible()) {
            field->setFocus();
            break;
          }
        }
        QSignalSpy pressed(Child<QPushButton>(o.form.get(), f.enter), &QPushButton::clicked);
        PressKey(o.form.get(), Qt::Key_Return);
        QVERIFY2(pressed.count() == 1, f.name);
      }
      {
        Opened o(f);
        PressKey(o.form.get(), Qt::Key_Escape);
        escaped = o.Outcome();
      }
      Opened o(f);
      QTest::mouseClick(Child<QPushButton>(o.form.get(), f.escape), Qt::LeftButton);
      QCOMPARE(escaped, o.Outcome());
      QVERIFY2(!escaped.contains(QStringLiteral("visible=1")), f.name);
    }
    // The main window has no default button: Enter in the dump address starts nothing.
    Opened main(Forms().front());
    Child<QLineEdit>(main.form.get(), "txteditaddr")->setFocus();
    PressKey(main.form.get(), Qt::Key_Return);
    QCOMPARE(Child<QListWidget>(main.form.get(), "List1")->count(), 0);
  }

  void enterInTheFolderListOpensTheFolderAndLoadsNothing() {
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("firmware")));
    const QString started = QDir::currentPath();
    QDir::setCurrent(folder.path());
    Opened o(Forms()[1]);
    QDir::setCurrent(started);
    auto* dirs = Child<forms::DirListBox>(o.form.get(), "Dir1");
    const auto found = dirs->findItems(QStringLiteral("firmware"), Qt::MatchEndsWith);
    QCOMPARE(found.size(), 1);
    dirs->setFocus();
    dirs->setCurrentItem(found.front());
    PressKey(o.form.get(), Qt::Key_Return);
    const QString inside = forms::JoinPath(QDir::toNativeSeparators(folder.path()), QStringLiteral("firmware"));
    QCOMPARE(dirs->Path(), inside);
    QCOMPARE(Child<forms::FileListBox>(o.form.get(), "File1")->Path(), inside);
    QVERIFY(o.w.platform.messages.empty());
    QVERIFY(o.form->isVisible());
  }

  void menusOpenWithTheirAltKeysAndTheButtonsNameThem() {
    Opened o(Forms().front());
    auto* window = o.form.get();
    const std::pair<Qt::Key, const char*> menus[] = {{Qt::Key_F, "mnufile"}, {Qt::Key_S, "mnusetup"}, {Qt::Key_H, "mnuhelp"}};
    for (const auto& [key, name] : menus) {
      window->activateWindow();
      QVERIFY(QTest::qWaitForWindowActive(window));
      QTest::keyClick(window, key, Qt::AltModifier);
      QTRY_VERIFY(QApplication::activePopupWidget());
      QCOMPARE(QApplication::activePopupWidget()->objectName(), QString::fromLatin1(name));
      QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
      QTRY_VERIFY(!QApplication::activePopupWidget());
      QTest::keyClick(window, Qt::Key_Escape);  // and out of the menu bar
    }
    // The buttons whose work the File menu also does say how to reach it.
    const auto* file = window->findChild<QMenu*>(QStringLiteral("mnufile"));
    for (const char* button : {"cmdload", "cmdsave"}) {
      const QString tip = Child<QPushButton>(window, button)->toolTip();
      QVERIFY2(tip.contains(QStringLiteral("Alt+F")), button);
      bool named = false;
      for (const QAction* item : file->actions()) named = named || tip.contains(item->text());
      QVERIFY2(named, button);
    }
  }
};

QTEST_MAIN(TestKeyboard)
#include "test_keyboard.moc"
