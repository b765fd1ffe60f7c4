// The seven windows as drawn, as used without a mouse, and as opened from a
// store. Drawn: client sizes from the design (15 twips to a pixel), and no
// named control with a clipped caption, overlapping a sibling, sticking out
// of its parent or covering a frame's caption; the same in device-independent
// pixels at 150 % and 200 % (this program run again under QT_SCALE_FACTOR).
// Keys: Tab follows the design's tab index, only the default and cancel
// buttons' tool tips name Enter and Esc, and Esc does what the cancel button
// does (the session presses Enter in each dialog). Opened: an empty store or
// one of garbage gives each window its defaults. The drive, folder and file
// lists the load and save windows are built from.
#include "GuiSupport.h"

using namespace kestrum;
using namespace kestrum::test;

namespace {

struct Form {
  const char* name;
  int width, height;  // of the client area, in twips
  QWidget* (*open)(forms::AppContext&);
  const char* defaults;     // what its fields show when the store is empty (Shown)
  const char* focus;        // the controls Tab visits, from the one that has the focus at opening
  const char* enter = "";   // the default button
  const char* escape = "";  // the cancel button
};

template <typename F> QWidget* Make(forms::AppContext& c) { return new F(c); }
template <> QWidget* Make<forms::frmversion>(forms::AppContext&) { return new forms::frmversion; }

const Form kForms[] = {
    {"frmsumtool", 8250, 3930, Make<forms::frmsumtool>, "|00000000|00000000|0007FFFF",
     "cmdload cmdsave cmdbufclear cmdblstore cmdbufsum cmdedit txteditaddr cmdeditplus cmdeditminus List1"},
    {"frmload", 5565, 4725, Make<forms::frmload>, "|00000000|0007FFFF|0|.",
     "Dir1 File1 Text4 Text3 Check1 Command1 Command2 Drive1", "Command1", "Command2"},
    {"frmsave", 9975, 3690, Make<forms::frmsave>, "|00000000|0007FFFF|10|Object File Only|BIN|8-8SUM|.",
     "Dir2 File2 Text5 Combo1 Combo2 Text7 Text6 Command5 Command2 Drive2", "Command5", "Command2"},
    {"frmstore", 3645, 2850, Make<forms::frmstore>, "00000000|0007FFFF|00",
     "Text1 Text2 Text3 Command2 Command1", "Command2", "Command1"},
    {"frmsum", 6120, 3495, Make<forms::frmsum>, "00000000|0007FFFF|||", "Text6 Text7 Command1 Command2", "Command1",
     "Command2"},
    {"frmbufaddr", 3930, 2130, Make<forms::frmbufaddr>, "|", "Text1 Text2 Cmdok Command1", "Cmdok", "Command1"},
    {"frmversion", 3780, 2175, Make<forms::frmversion>, "", "OK_Button", "OK_Button", "OK_Button"},
};

// A form of a fresh world with a scripted platform, shown and active.
struct Opened {
  TempSettings settings;
  Module1 m = MakeImage();
  ScriptedPlatform platform;
  forms::AppContext ctx{m, platform, settings.store};
  std::unique_ptr<QWidget> form;
  // With store, the bytes of the settings file, or a folder in its place when empty.
  explicit Opened(const Form& f, const QByteArray* store = nullptr) {
    const QString file = settings.dir.path() + "/Morvi/Morvi.conf";
    if (store) QDir().mkpath(store->isEmpty() ? file : settings.dir.path() + "/Morvi");
    if (store && !store->isEmpty()) WriteFile(file.toStdString(), store->toStdString());
    form.reset(f.open(ctx));
    form->show();
    form->activateWindow();
    if (!QTest::qWaitForWindowActive(form.get())) qWarning("%s never became active", f.name);
  }
  // What the form shows in its fields and lists, and the messages.
  QString Shown() const {
    QStringList shown;
    for (const auto* edit : form->findChildren<QLineEdit*>()) shown << edit->text();
    for (const auto* list : form->findChildren<QComboBox*>())  // the drive follows the folder
      if (!qobject_cast<const forms::DriveListBox*>(list)) shown << list->currentText();
    const QString here = QDir::toNativeSeparators(QDir::currentPath());  // where the folder lists open by themselves
    for (const auto* d : form->findChildren<forms::DirListBox*>()) shown << (d->Path() == here ? "." : d->Path());
    for (const auto& text : platform.Texts()) shown << QString::fromStdString(text);
    return shown.join('|');
  }
  QString Focus() const { return form->focusWidget() ? form->focusWidget()->objectName() : QString(); }
};

// Why a control's caption does not show whole, or empty when it does.
QString Clipped(const QWidget* w) {
  const auto wider = [](int need, int room) {
    return need > room ? QStringLiteral("%1 > %2").arg(need).arg(room) : QString();
  };
  if (const auto* label = qobject_cast<const QLabel*>(w)) {
    const QRect lines = label->fontMetrics().boundingRect(QRect(0, 0, label->width(), 1000),
                                                          label->wordWrap() ? Qt::TextWordWrap : 0, label->text());
    return wider(lines.width(), label->width()) + wider(lines.height(), label->height());
  }
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
  const bool list = qobject_cast<const QComboBox*>(w) && !qobject_cast<const forms::DriveListBox*>(w);
  if (list || qobject_cast<const QCheckBox*>(w)) return wider(w->sizeHint().width(), w->width());
  return {};
}

}  // namespace

class TestForms : public QObject {
  Q_OBJECT
 private slots:
  // Also: the dump's font is a monospaced outline font and a page fits, drawn at the screen's resolution.
  void formsHaveTheirDesignSizeAndNothingClipsOrOverlaps() {
    for (const Form& f : kForms) {
      Opened o(f);
      QCOMPARE(o.form->devicePixelRatioF(), qEnvironmentVariable("QT_SCALE_FACTOR", "1").toDouble());
      QWidget* client = o.form->findChild<QWidget*>(QStringLiteral("client"));
      if (!client) client = o.form.get();
      QCOMPARE(client->size(), QSize(forms::Px(f.width), forms::Px(f.height)));
      QList<QWidget*> controls;  // the named controls of the client and of its frames
      for (QWidget* c : o.form->findChildren<QWidget*>())
        if (!c->objectName().isEmpty() && !c->objectName().startsWith(QLatin1String("qt_")) &&
            (c->parentWidget() == client || qobject_cast<QGroupBox*>(c->parentWidget()))) controls << c;
      for (QWidget* c : controls) {
        const QRect g = c->geometry();
        QString faults = Clipped(c) + (c->parentWidget()->rect().contains(g) ? "" : " sticks out");
        const auto* frame = qobject_cast<const QGroupBox*>(c->parentWidget());
        if (frame && forms::FrameCaptionRect(frame).intersects(g)) faults += " covers a caption";
        for (QWidget* other : controls)  // a sibling
          if (other != c && other->parentWidget() == c->parentWidget() && other->geometry().intersects(g))
            faults += " overlaps " + other->objectName();
        QVERIFY2(faults.isEmpty(), qPrintable(f.name + ("." + c->objectName()) + ": " + faults));
      }
    }
    Opened o(kForms[0]);
    QTest::mouseClick(Child<QPushButton>(o.form.get(), "cmdedit"), Qt::LeftButton);
    auto* list = Child<QListWidget>(o.form.get(), "List1");
    const QFontInfo font(list->font());
    QVERIFY2(font.fixedPitch() && QFontDatabase::isSmoothlyScalable(font.family(), font.styleName()),
             qPrintable(font.family()));
    QVERIFY(list->viewport()->rect().contains(list->visualItemRect(list->item(6))));
    QVERIFY(list->fontMetrics().horizontalAdvance(list->item(6)->text()) <= list->viewport()->width());
    QCOMPARE(o.form->grab().size(), o.form->size() * o.form->devicePixelRatioF());
    QCOMPARE(forms::AppIcon().pixmap(256, 256).deviceIndependentSize().toSize(), QSize(256, 256));
  }

  void theSameAt150And200Percent() {
    if (qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) QSKIP("this run is one of the scaled ones");
    for (const QString factor : {"1.5", "2"}) {
      QProcess run;
      run.setEnvironment(QProcess::systemEnvironment() << "QT_SCALE_FACTOR=" + factor);
      run.start(QCoreApplication::applicationFilePath(), {"formsHaveTheirDesignSizeAndNothingClipsOrOverlaps"});
      QVERIFY2(run.waitForFinished(60000) && run.exitStatus() == QProcess::NormalExit && run.exitCode() == 0,
               qPrintable(factor + ":\n" + run.readAll()));
    }
  }

  // Also: only the main window's Load and Save buttons name the File menu's Alt key.
  void tabFollowsTheTabIndexAndEscDoesWhatCancelDoes() {
    for (const Form& f : kForms) {
      // What Esc and the cancel button leave: the fields, the messages, the window closed.
      const auto after = [&](bool esc) {
        Opened o(f);
        if (esc) PressKey(o.form.get(), Qt::Key_Escape);
        else QTest::mouseClick(Child<QPushButton>(o.form.get(), f.escape), Qt::LeftButton);
        return o.Shown() + (o.form->isVisible() ? "|shown" : "|closed");
      };
      const QString escaped = *f.escape ? after(true) : "|closed";
      if (*f.escape) QCOMPARE(escaped, after(false));
      QVERIFY2(escaped.contains("|closed"), f.name);
      const QStringList focus = QString(f.focus).split(' ');
      Opened o(f);
      QCOMPARE(o.Focus(), focus.front());
      for (auto* button : o.form->findChildren<QPushButton*>()) {
        const QString tip = button->toolTip(), name = button->objectName();
        QVERIFY2(tip.contains("Enter") == (name == f.enter) && tip.contains("Esc") == (name == f.escape) &&
                     tip.contains("Alt+F") == (name == "cmdload" || name == "cmdsave"), qPrintable(name + ": " + tip));
      }
      // The step buttons of the dump take the focus once they are enabled.
      if (!*f.enter) QTest::mouseClick(Child<QPushButton>(o.form.get(), "cmdedit"), Qt::LeftButton);
      o.form->findChild<QWidget*>(focus.front())->setFocus();
      QStringList visited;
      for (qsizetype i = 0; i <= focus.size(); ++i, PressKey(o.form.get(), Qt::Key_Tab)) visited << o.Focus();
      QCOMPARE(visited, focus + QStringList{focus.front()});
    }
  }

  // A store of garbage opens every window as an empty store does, with the defaults: a value that is no text
  // counts as missing, a store that can't be read (bytes of no format, a folder where the file should be) as
  // empty, a folder stored without its drive is not opened.
  void aStoreOfGarbageOpensEveryWindowWithItsDefaults() {
    QByteArray noise(4096, '\0');
    for (int i = 0; i < noise.size(); ++i) noise[i] = static_cast<char>((i * 7919 + 13) % 251);
    const QByteArray noText("[Address]\nBufFirst=@Rect(1 2 3 4)\n"
                            "BufLast=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x10NoSuchType)\nLoadFirst=@Point(5 6)\n"
                            "SaveFirst=@Size(1 1)\nstoredata=@Size(2 2)\n[Format]\nFileType=@Rect(0 0 0 0)\n"
                            "[FilePath]\nSaveDrive=@Point(0 0)\nSaveDir=/tmp\nLoadDir=/tmp\n");
    for (const QByteArray& store : {noise, noText, QByteArray()})
      for (const Form& f : kForms)
        QCOMPARE(Opened(f, &store).Shown() + " / " + Opened(f).Shown(), QString(f.defaults) + " / " + f.defaults);
  }

  // The load window in a folder with two visible files, a hidden one and a
  // folder (the file list follows the folder list); Enter in the folder list opens the folder and loads nothing.
  // The drive list's roots.
  void folderFileAndDriveListsBrowseATree() {
    QTemporaryDir dir;
    const QString root = QDir::toNativeSeparators(dir.path());
    for (const char* name : {"b.hex", "A.bin", ".hidden"}) WriteFile(dir.filePath(name).toStdString(), "x");
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("sub")));
    Opened o(kForms[1]);
    auto* dirs = Child<forms::DirListBox>(o.form.get(), "Dir1");
    auto* files = Child<forms::FileListBox>(o.form.get(), "File1");
    QVERIFY(dirs->SetPath(root));
    QStringList shown{dirs->item(dirs->count() - 1)->text().trimmed()};  // the last folder, then every file
    for (int i = 0; i < files->ListCount(); ++i) shown << files->List(i);
    QCOMPARE(shown, (QStringList{"sub", "A.bin", "b.hex"}));
    dirs->setCurrentItem(dirs->item(dirs->count() - 1));
    QTest::keyClick(dirs, Qt::Key_Return);
    QCOMPARE(files->Path(), forms::JoinPath(root, "sub"));
    QVERIFY(o.form->isVisible() && o.platform.messages.empty());
    // The root keeps its separator, and a name joined to it gets no second one.
    QVERIFY(dirs->SetPath(QDir::rootPath()));
    QCOMPARE(forms::JoinPath(dirs->Path(), "x"), QDir::toNativeSeparators(QDir::rootPath() + "x"));
#ifndef Q_OS_WIN
    // The drives start with the root; a path's drive is the longest its name starts with.
    QCOMPARE(forms::DriveRoots().value(0), QStringLiteral("/"));
    for (const auto& [path, drive] :
         {std::pair{"/mnt/data/x", "/mnt/data"}, {"/mnt/data2", "/mnt/data2"}, {"/mnt/database", "/"}})
      QCOMPARE(forms::DriveOfPath(path, {"/", "/mnt/data", "/mnt/data2"}), QString(drive));
#endif
  }
};

QTEST_MAIN(TestForms)
#include "test_forms.moc"
