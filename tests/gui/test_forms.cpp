// The seven windows as drawn and as used without a mouse. Drawn: client
// sizes and places from the design (15 twips to a pixel), captions that fit
// in this system's font, nothing that overlaps or sticks out, the same in
// device-independent pixels at 150 % and 200 % (each factor runs this
// program again under QT_SCALE_FACTOR). Keys: Tab follows the design's tab
// index, Enter presses the default button and Esc does what the cancel
// button does (the buttons whose tool tips say so), the menus open with
// their Alt keys. The drive, folder and file lists the load and save
// windows are built from.
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStyleOptionButton>
#include <functional>
#include <memory>

#include "GuiSupport.h"
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
using forms::Px;

namespace {
// How a control may stand off its design place in this system's font.
enum class Fit {
  Fixed,    // exactly the design rectangle
  Caption,  // a label or check box: its row, moved left or broken into lines
  Wider,    // a drop-down list: the design place, wider for its longest item
};

struct Place {
  const char* name;
  const char* frame;  // the frame it lies in, or nullptr for the form
  int left, top, width, height;
  Fit fit = Fit::Fixed;
};

Place Caption(const char* name, const char* frame, int left, int top) { return {name, frame, left, top, 0, 0, Fit::Caption}; }

using Open = std::function<QWidget*(forms::AppContext&)>;

template <typename F>
Open Opener() {
  return [](forms::AppContext& c) -> QWidget* { return new F(c); };
}

const Open Version = [](forms::AppContext&) -> QWidget* { return new forms::frmversion; };

struct Form {
  const char* name;
  int width, height;  // of the client area, in twips
  Open open;
  std::vector<Place> places;
  QStringList focus;        // the controls Tab visits, from the one that has the focus at opening
  const char* enter = "";   // the default button
  const char* escape = "";  // the cancel button
};

const std::vector<Form>& Forms() {
  static const std::vector<Form> forms = {
      {"frmsumtool", 8250, 3930, Opener<forms::frmsumtool>(),
       {{"Frame1", nullptr, 255, 210, 2685, 2070},       {"cmdload", "Frame1", 240, 270, 2160, 420},
        {"cmdsave", "Frame1", 240, 690, 2160, 420},      Caption("Label8", "Frame1", 630, 1275),
        {"Text1", "Frame1", 255, 1530, 2160, 360},       {"Frame2", nullptr, 3075, 210, 4890, 960},
        {"cmdbufclear", "Frame2", 255, 300, 1125, 450},  {"cmdblstore", "Frame2", 1815, 300, 1125, 450},
        {"cmdbufsum", "Frame2", 3360, 300, 1125, 450},   {"Frame3", nullptr, 3060, 1170, 4905, 2445},
        {"cmdedit", "Frame3", 360, 285, 705, 375},       Caption("Label1", "Frame3", 1305, 375),
        {"txteditaddr", "Frame3", 2010, 330, 1005, 315}, {"cmdeditplus", "Frame3", 3465, 255, 465, 465},
        {"cmdeditminus", "Frame3", 3930, 255, 465, 465}, {"List1", "Frame3", 75, 780, 4755, 1530},
        {"Frame4", nullptr, 255, 2460, 2685, 1155},      {"txtbuffaddr", "Frame4", 1320, 300, 975, 330},
        {"txtbufladdr", "Frame4", 1320, 660, 975, 330},  Caption("Label3", "Frame4", 120, 310),
        Caption("Label4", "Frame4", 120, 670)},
       {"cmdload", "cmdsave", "cmdbufclear", "cmdblstore", "cmdbufsum", "cmdedit", "txteditaddr", "cmdeditplus",
        "cmdeditminus", "List1"}},
      {"frmload", 5565, 4725, Opener<forms::frmload>(),
       {{"Dir1", nullptr, 300, 795, 1950, 1455},      {"File1", nullptr, 2385, 390, 2505, 1905},
        {"Text1", nullptr, 1545, 2550, 3135, 285},    {"Text4", nullptr, 2280, 3045, 1005, 285},
        {"Text3", nullptr, 2280, 3510, 1005, 315},    Caption("Check1", nullptr, 705, 4005),
        {"Text2", nullptr, 2175, 4020, 1110, 315},    {"Command1", nullptr, 3960, 3300, 1125, 390},
        {"Command2", nullptr, 3960, 3945, 1125, 390}, {"Drive1", nullptr, 300, 405, 1965, 285},
        Caption("Label1", nullptr, 600, 2580),        Caption("Label3", nullptr, 1140, 3540),
        Caption("Label4", nullptr, 1140, 3045)},
       {"Dir1", "File1", "Text4", "Text3", "Check1", "Command1", "Command2", "Drive1"}, "Command1", "Command2"},
      {"frmsave", 9975, 3690, Opener<forms::frmsave>(),
       {{"Frame1", nullptr, 180, 120, 6495, 3315},
        {"Drive2", "Frame1", 300, 330, 2250, 285},
        {"Dir2", "Frame1", 300, 675, 2250, 1650},
        {"File2", "Frame1", 2625, 315, 3645, 1905},
        Caption("Label7", "Frame1", 1395, 2445),
        {"Text5", "Frame1", 2310, 2400, 2970, 285},
        Caption("Label1", "Frame1", 1455, 2835),
        {"Combo1", "Frame1", 2310, 2790, 2970, 315, Fit::Wider},
        {"Frame2", nullptr, 6825, 120, 2910, 2385},
        Caption("Label10", "Frame2", 105, 315),
        {"Combo2", "Frame2", 1455, 285, 1035, 315, Fit::Wider},
        Caption("Label9", "Frame2", 375, 720),
        {"Text7", "Frame2", 1455, 690, 1035, 285},
        Caption("Label8", "Frame2", 405, 1095),
        {"Text6", "Frame2", 1455, 1065, 1035, 285},
        Caption("Label5", "Frame2", 255, 1455),
        {"Text4", "Frame2", 1455, 1440, 1035, 285},
        Caption("Label2", "Frame2", 165, 2025),
        {"Combo3", "Frame2", 1455, 1965, 1110, 315, Fit::Wider},
        {"Command5", nullptr, 7485, 2610, 1500, 390},
        {"Command2", nullptr, 7485, 3135, 1500, 390}},
       {"Dir2", "File2", "Text5", "Combo1", "Combo2", "Text7", "Text6", "Command5", "Command2", "Drive2"},
       "Command5", "Command2"},
      {"frmstore", 3645, 2850, Opener<forms::frmstore>(),
       {Caption("Label2", nullptr, 585, 330), {"Text1", nullptr, 1725, 345, 1005, 285},
        Caption("Label3", nullptr, 540, 900), {"Text2", nullptr, 1725, 870, 1005, 285},
        Caption("Label4", nullptr, 1095, 1500), {"Text3", nullptr, 1725, 1440, 1020, 285},
        {"Command2", nullptr, 570, 2115, 960, 390}, {"Command1", nullptr, 2175, 2115, 960, 390}},
       {"Text1", "Text2", "Text3", "Command2", "Command1"}, "Command2", "Command1"},
      {"frmsum", 6120, 3495, Opener<forms::frmsum>(),
       {{"Frame1", nullptr, 225, 555, 2520, 1635},      Caption("Label7", "Frame1", 135, 450),
        {"Text6", "Frame1", 1275, 465, 1110, 315},      Caption("Label6", "Frame1", 120, 1020),
        {"Text7", "Frame1", 1275, 990, 1110, 315},      {"Frame2", nullptr, 3090, 270, 2610, 2190},
        Caption("Label8", "Frame2", 510, 420),          {"Text1", "Frame2", 1215, 375, 870, 285},
        Caption("Label5", "Frame2", 420, 960),          {"Text2", "Frame2", 1215, 930, 870, 285},
        Caption("Label4", "Frame2", 330, 1545),         {"Text3", "Frame2", 1215, 1500, 870, 285},
        {"Command1", nullptr, 2460, 2760, 1140, 390},   {"Command2", nullptr, 4125, 2760, 1140, 390}},
       {"Text6", "Text7", "Command1", "Command2"}, "Command1", "Command2"},
      {"frmbufaddr", 3930, 2130, Opener<forms::frmbufaddr>(),
       {{"Text1", nullptr, 1785, 390, 1005, 285}, {"Text2", nullptr, 1785, 915, 1005, 285},
        {"Cmdok", nullptr, 705, 1470, 960, 390}, {"Command1", nullptr, 2310, 1470, 960, 390},
        Caption("Label2", nullptr, 645, 375), Caption("Label3", nullptr, 630, 945)},
       {"Text1", "Text2", "Cmdok", "Command1"}, "Cmdok", "Command1"},
      {"frmversion", 3780, 2175, Version,
       {Caption("Label1", nullptr, 320, 285), Caption("Label4", nullptr, 2370, 285),
        {"OK_Button", nullptr, 1290, 1470, 1335, 375}},
       {"OK_Button"}, "OK_Button", "OK_Button"},
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

// The scale this run was started with.
double ScaleFactor() {
  const QByteArray factor = qgetenv("QT_SCALE_FACTOR");
  return factor.isEmpty() ? 1.0 : factor.toDouble();
}

// Why a control's caption does not show whole, or empty when it does.
QString Clipped(const QWidget* w) {
  const auto wider = [](int need, int room) { return need > room ? QStringLiteral("%1 > %2").arg(need).arg(room) : QString(); };
  if (const auto* label = qobject_cast<const QLabel*>(w)) {
    const QRect lines = label->fontMetrics().boundingRect(QRect(0, 0, label->width(), 1000),
                                                          label->wordWrap() ? Qt::TextWordWrap : 0, label->text());
    return wider(lines.width(), label->width()) + wider(lines.height(), label->height());
  }
  if (const auto* box = qobject_cast<const QCheckBox*>(w)) return wider(box->sizeHint().width(), box->width());
  if (const auto* button = qobject_cast<const QPushButton*>(w)) {
    QStyleOptionButton option;
    option.initFrom(button);
    option.text = button->text();
    const QRect room = button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button);
    return wider(button->fontMetrics().horizontalAdvance(button->text()), room.width());
  }
  if (const auto* frame = qobject_cast<const QGroupBox*>(w)) {
    const QRect caption = forms::FrameCaptionRect(frame);
    return wider(frame->fontMetrics().horizontalAdvance(frame->title()), caption.width()) +
           wider(caption.right() + 1, frame->width());
  }
  const auto* list = qobject_cast<const QComboBox*>(w);
  if (list && !qobject_cast<const forms::DriveListBox*>(w)) return wider(list->sizeHint().width(), list->width());
  return {};
}

// A folder with two visible files, a hidden one and two subfolders.
struct Tree {
  QTemporaryDir dir;
  Tree() {
    const std::filesystem::path root = dir.path().toStdString();
    WriteFile(root / "b.hex", ":00000001FF\r\n");
    WriteFile(root / "A.bin", "x");
    WriteFile(root / ".hidden", "x");
    std::filesystem::create_directory(root / "sub1");
    std::filesystem::create_directory(root / "Sub2");
  }
  QString path() const { return QDir::toNativeSeparators(dir.path()); }
};

}  // namespace

class TestForms : public QObject {
  Q_OBJECT
 private slots:
  void formsFollowTheDesignAndNothingClipsOrOverlaps() {
    for (const Form& design : Forms()) {
      Opened o(design);
      QWidget* form = o.form.get();
      const QString where = QString::fromLatin1(design.name);
      QCOMPARE(form->devicePixelRatioF(), ScaleFactor());
      QWidget* client = form->findChild<QWidget*>(QStringLiteral("client"));
      if (!client) client = form;
      QCOMPARE(client->size(), QSize(Px(design.width), Px(design.height)));

      std::vector<QWidget*> controls;
      for (const Place& place : design.places) {
        auto* c = Child<QWidget>(form, place.name);
        const QString what = where + QLatin1Char('.') + QString::fromLatin1(place.name);
        controls.push_back(c);
        QCOMPARE(c->parentWidget(), place.frame ? Child<QWidget>(form, place.frame) : client);
        const QRect design = forms::Twips(place.left, place.top, place.width, place.height);
        const QRect g = c->geometry();
        switch (place.fit) {
          case Fit::Fixed:
            QVERIFY2(g == design, qPrintable(what));
            break;
          case Fit::Wider:
            QVERIFY2(g.topLeft() == design.topLeft() && g.height() == design.height() && g.width() >= design.width(),
                     qPrintable(what));
            break;
          case Fit::Caption: {
            // Its row: centred where one line at the design top would be; a
            // caption on one line moves left only.
            const auto* label = qobject_cast<const QLabel*>(c);
            QVERIFY2((g.x() <= design.x() || (label && label->wordWrap())) &&
                         qAbs(g.center().y() - (design.y() + c->fontMetrics().height() / 2)) <= 4,
                     qPrintable(what));
            break;
          }
        }
        QVERIFY2(Clipped(c).isEmpty(), qPrintable(what + QLatin1Char(' ') + Clipped(c)));
        QVERIFY2(c->parentWidget()->rect().contains(g), qPrintable(what + QStringLiteral(" sticks out")));
        if (const auto* frame = qobject_cast<const QGroupBox*>(c->parentWidget())) {
          QVERIFY2(!forms::FrameCaptionRect(frame).intersects(g), qPrintable(what + QStringLiteral(" covers a caption")));
        }
      }
      for (std::size_t i = 0; i < controls.size(); ++i) {
        for (std::size_t j = i + 1; j < controls.size(); ++j) {
          if (controls[i]->parentWidget() != controls[j]->parentWidget()) continue;
          QVERIFY2(!controls[i]->geometry().intersects(controls[j]->geometry()),
                   qPrintable(where + QStringLiteral(": %1 overlaps %2")
                                          .arg(controls[i]->objectName(), controls[j]->objectName())));
        }
      }
    }
  }

  void dumpFontIsMonospacedOutlineAndAPageFits() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTest::mouseClick(Child<QPushButton>(&window, "cmdedit"), Qt::LeftButton);
    auto* list = Child<QListWidget>(&window, "List1");
    const QFontInfo font(list->font());
    QVERIFY2(font.fixedPitch(), qPrintable(font.family()));
    QVERIFY2(QFontDatabase::isSmoothlyScalable(font.family(), font.styleName()), qPrintable(font.family()));
    // Seven full rows show without scrolling.
    QCOMPARE(list->count(), 7);
    const QRect last = list->visualItemRect(list->item(6));
    QVERIFY(list->viewport()->rect().contains(last));
    QVERIFY(list->fontMetrics().horizontalAdvance(list->item(6)->text()) <= list->viewport()->width());
    // Drawn at the screen's own resolution, not scaled up.
    QCOMPARE(window.grab().size(), window.size() * ScaleFactor());
    for (int size : {16, 32, 256}) {
      const QPixmap icon = forms::AppIcon().pixmap(size, size);
      QVERIFY(!icon.isNull());
      QCOMPARE(icon.deviceIndependentSize().toSize(), QSize(size, size));
    }
  }

  void versionWindowShowsTheNameAndVersion() {
    forms::frmversion dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Version"));
    QCOMPARE(Child<QLabel>(&dialog, "Label1")->text(), QStringLiteral("Kestrum"));
    QCOMPARE(Child<QLabel>(&dialog, "Label4")->text(), QStringLiteral("Version 2.30"));
  }

  void theSameAt150And200Percent() {
    if (qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) QSKIP("this run is one of the scaled ones");
    for (const char* factor : {"1.5", "2"}) {
      QProcess run;
      QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
      env.insert(QStringLiteral("QT_SCALE_FACTOR"), QString::fromLatin1(factor));
      run.setProcessEnvironment(env);
      run.setProcessChannelMode(QProcess::MergedChannels);
      run.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("formsFollowTheDesignAndNothingClipsOrOverlaps"),
                 QStringLiteral("dumpFontIsMonospacedOutlineAndAPageFits")});
      QVERIFY(run.waitForFinished(60000));
      QVERIFY2(run.exitStatus() == QProcess::NormalExit && run.exitCode() == 0,
               qPrintable(QStringLiteral("at %1:\n").arg(QString::fromLatin1(factor)) + run.readAll()));
    }
  }

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
        // Enter from a field reaches it: the session presses Enter in each dialog.
        QVERIFY2(Child<QPushButton>(o.form.get(), f.enter)->isDefault(), f.name);
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

  void drivesHoldTheRootAndEachPathFindsItsDrive() {
    const QStringList roots = forms::DriveRoots();
    QVERIFY(!roots.isEmpty());
#ifndef Q_OS_WIN
    QCOMPARE(roots.front(), QStringLiteral("/"));
    const QStringList mounts{"/", "/mnt/data", "/mnt/data2"};
    QCOMPARE(forms::DriveOfPath("/mnt/data/x", mounts), QStringLiteral("/mnt/data"));
    QCOMPARE(forms::DriveOfPath("/mnt/data2", mounts), QStringLiteral("/mnt/data2"));
    QCOMPARE(forms::DriveOfPath("/mnt/database", mounts), QStringLiteral("/"));
#endif
    forms::DriveListBox drives;
    QVERIFY(roots.contains(drives.Drive()));
    QSignalSpy spy(&drives, &forms::DriveListBox::Change);
    QVERIFY(!drives.SetDrive(QStringLiteral("/no/such/root")));
    QCOMPARE(spy.count(), 0);
    QVERIFY(drives.SetDrive(roots.front()));
    QCOMPARE(drives.Drive(), roots.front());
  }

  void directoryListShowsTheChainAndTheFoldersInside() {
    Tree tree;
    forms::DirListBox dirs;
    QSignalSpy spy(&dirs, &forms::DirListBox::Change);
    QVERIFY(dirs.SetPath(tree.path()));
    QCOMPARE(dirs.Path(), tree.path());
    QCOMPARE(spy.count(), 1);
    QVERIFY(dirs.SetPath(tree.path()));
    QCOMPARE(spy.count(), 1);  // the same folder again raises nothing

    QStringList shown;
    for (int i = 0; i < dirs.count(); ++i) shown << dirs.item(i)->text().trimmed();
    QCOMPARE(shown.front(), QDir::toNativeSeparators(QDir::rootPath()));
    QCOMPARE(shown.mid(shown.size() - 2), (QStringList{"sub1", "Sub2"}));
    QVERIFY(dirs.currentItem()->text().trimmed() == QFileInfo(tree.dir.path()).fileName());

    emit dirs.itemActivated(dirs.item(dirs.count() - 1));
    QCOMPARE(dirs.Path(), forms::JoinPath(tree.path(), "Sub2"));
    QCOMPARE(spy.count(), 2);
  }

  void directoryListRefusesWhatCannotBeEntered() {
    Tree tree;
    forms::DirListBox dirs;
    QVERIFY(dirs.SetPath(tree.path()));
    const QString refused[] = {forms::JoinPath(tree.path(), "missing"), forms::JoinPath(tree.path(), "A.bin"),
                               QString()};
    for (const QString& path : refused) {
      QVERIFY(!dirs.SetPath(path));
      QCOMPARE(dirs.Path(), tree.path());
    }
  }

  void rootKeepsItsSeparator() {
    forms::DirListBox dirs;
    QVERIFY(dirs.SetPath(QDir::rootPath()));
    QCOMPARE(dirs.Path(), QDir::toNativeSeparators(QDir::rootPath()));
    QVERIFY(forms::JoinPath(dirs.Path(), "x").count(QDir::separator()) == dirs.Path().count(QDir::separator()));
  }

  void fileListShowsVisibleFilesAndThePick() {
    Tree tree;
    forms::FileListBox files;
    files.SetPath(tree.path());
    QCOMPARE(files.ListCount(), 2);
    QCOMPARE(files.List(0), QStringLiteral("A.bin"));
    QCOMPARE(files.List(1), QStringLiteral("b.hex"));
    QCOMPARE(files.FileName(), QString());

    QSignalSpy spy(&files, &forms::FileListBox::Click);
    files.show();
    const QRect place = files.visualItemRect(files.item(1));
    QTest::mouseClick(files.viewport(), Qt::LeftButton, {}, place.center());
    QCOMPARE(files.FileName(), QStringLiteral("b.hex"));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.front().front().toString(), QStringLiteral("b.hex"));

    files.SetPath(tree.path());
    QCOMPARE(files.FileName(), QString());
  }
};

QTEST_MAIN(TestForms)
#include "test_forms.moc"
