// The seven windows as drawn, as used without a mouse, and as opened from a
// store, then a working session through them. Drawn: client sizes from the
// design (15 twips to a pixel), and no named control with a clipped caption,
// overlapping a sibling, sticking out of its parent or covering a frame's
// caption; the same in device-independent pixels at 150 % and 200 % (ctest runs
// that test again under QT_SCALE_FACTOR). Keys: Tab follows the design's tab index,
// only the default and cancel buttons' tool tips name Enter and Esc, and Esc
// does what the cancel button does (the session presses Enter in each dialog).
// Opened: an empty store or one of garbage gives each window its defaults. The
// drive, folder and file lists the load and save windows are built from.
// The session, in scenarios through the real widgets and real message boxes
// answered by key: the main window at its first start, the buffer area, a HEX
// file loaded with an offset after a reader's error, dump and step, Block Store
// with the wrap, Buffer SUM, a pair saved over files that exist and loaded back
// by a drop after a clear, exit and the next start.
#include <sys/stat.h>

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

using namespace kestrum;
using namespace kestrum::test;

namespace {

// No display unless the caller names a platform; set before main constructs the application.
[[maybe_unused]] const bool kPlatformChosen = [] {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  return true;
}();

// The window's store in a fresh temporary folder for the life of the object.
struct TempSettings {
  QTemporaryDir dir;
  forms::QtSettingsStore store{dir.path()};
};

// The child of parent with the given object name, failing the test if none.
template <typename W = QWidget>
W* Child(QWidget* parent, const QString& name) {
  W* w = parent->findChild<W*>(name);
  if (!w) qFatal("no control named %s", qPrintable(name));
  return w;
}

// Shows window and makes it the active one (Xvfb has no window manager to do it).
bool ShowActive(QWidget* w) {
  w->show();
  w->activateWindow();
  return QTest::qWaitForWindowActive(w);
}

// Where a window opens: the main window, File Load, File Save and Version centred on the screen, Block Store
// and SUM on their owner; empty when it stands there, within 2 px (the main window within the frame a window
// manager adds, which nobody knows before it first shows).
QString OffCentre(const QWidget* w) {
  const QString name = w->objectName();
  const bool onScreen = QStringList{"frmsumtool", "frmload", "frmsave", "frmversion"}.contains(name);
  if (!onScreen && name != "frmstore" && name != "frmsum") return {};
  const QRect area =
      onScreen ? w->screen()->availableGeometry() : w->parentWidget()->window()->frameGeometry();
  const QPoint off = w->frameGeometry().center() - area.center();
  const int slack = 2 + (name == "frmsumtool" ? w->frameGeometry().height() - w->height() : 0);
  return std::max(std::abs(off.x()), std::abs(off.y())) <= slack
             ? QString()
             : name + QString(" off by %1,%2").arg(off.x()).arg(off.y());
}

// WCAG's contrast of two colours, from 1 to 21.
double Contrast(const QColor& a, const QColor& b) {
  const auto luminance = [](const QColor& c) {
    const auto linear = [](double v) {
      return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
  };
  const double x = luminance(a), y = luminance(b);
  return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
}

// The window's platform, checking at each change of the busy state that the screen already shows it: what the
// window system holds of the buttons of the window at work is what they draw now.
struct CheckedPlatform : forms::QtPlatform {
  void BusyChanged() override {
    QtPlatform::BusyChanged();
    QWidget* w = QApplication::activeModalWidget() ? QApplication::activeModalWidget() : main;
    const auto pixels = [](const QPixmap& p) { return p.toImage().convertToFormat(QImage::Format_RGB32); };
    const QImage shown = pixels(w->screen()->grabWindow(w->winId()));
    bool same = true;
    for (QPushButton* button : w->findChildren<QPushButton*>())
      same = same && shown.copy(QRect(button->mapTo(w, QPoint()), button->size())) == pixels(button->grab());
    busy << w->objectName();
    if (!same) stale << w->objectName();
  }
  QWidget* main = nullptr;
  QStringList busy, stale;  // the windows at each change, and those whose screen lagged
};

// Presses key in window as a person does: into its focused control, from
// which what the control leaves goes up to the window (Enter to the default
// button, Esc to the dialog).
void PressKey(QWidget* window, Qt::Key key) {
  QTest::keyClick(window->focusWidget() ? window->focusWidget() : window, key);
}

// Answers the modal windows an action raises, one step per window in the
// order they come up; the action blocks in the window's own event loop, so
// the steps run from timers inside it. A step that raises another modal
// window (a dialog's message box) is still running while the next step
// answers that one. A step must leave its window closed; one left open is a
// failure, and is closed so that the scenario goes on. Each window must open
// where it belongs (OffCentre).
class ModalScript {
 public:
  // The next window is a dialog of type D.
  template <typename D>
  ModalScript& Dialog(std::function<void(D*)> drive) {
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
      QCOMPARE(box->text(), text);
      QCOMPARE(box->windowTitle(), title);
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
  void Watch() {
    if (next_ < steps_.size()) QTimer::singleShot(10, &context_, [this] { Poll(); });
  }

  void Poll() {
    QPointer<QWidget> window = QApplication::activeModalWidget();
    if (!window || !window->isVisible() || handled_.contains(window) || next_ >= steps_.size())
      return Watch();
    handled_ << window;
    const auto step = steps_[next_++];
    ++busy_;
    Watch();
    if (!QTest::qWaitForWindowExposed(window)) QTest::qFail("a window never showed", __FILE__, __LINE__);
    if (const QString off = OffCentre(window); !off.isEmpty())
      QTest::qFail(qPrintable(off), __FILE__, __LINE__);
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

struct Form {
  const char* name;
  int width, height;  // of the client area, in twips
  QWidget* (*open)(forms::AppContext&);
  QStringList defaults;  // what its fields show when the store is empty (Shown)
  QStringList focus;     // the controls Tab visits, from the one that has the focus at opening
  QString enter = {};    // the default button
  QString escape = {};   // the cancel button
};

template <typename F>
constexpr auto Make = [](forms::AppContext& c) -> QWidget* { return new F(c); };

// clang-format off
const Form kForms[] = {
    {"frmsumtool", 8250, 3930, Make<forms::frmsumtool>, {"", "00000000", "00000000", "0007FFFF"},
     {"cmdload", "cmdsave", "cmdbufclear", "cmdblstore", "cmdbufsum", "cmdedit", "txteditaddr", "cmdeditplus",
      "cmdeditminus", "List1"}},
    {"frmload", 5565, 4725, Make<forms::frmload>, {"", "00000000", "0007FFFF", "0", "."},
     {"Dir1", "File1", "Text4", "Text3", "Check1", "Command1", "Command2", "Drive1"}, "Command1", "Command2"},
    {"frmsave", 9975, 3690, Make<forms::frmsave>, {"", "00000000", "0007FFFF", "10", "Object File Only", "BIN",
      "8-8SUM", "."},
     {"Dir2", "File2", "Text5", "Combo1", "Combo2", "Text7", "Text6", "Command5", "Command2", "Drive2"},
     "Command5", "Command2"},
    {"frmstore", 3645, 2850, Make<forms::frmstore>, {"00000000", "0007FFFF", "00"},
     {"Text1", "Text2", "Text3", "Command2", "Command1"}, "Command2", "Command1"},
    {"frmsum", 6120, 3495, Make<forms::frmsum>, {"00000000", "0007FFFF", "", "", ""},
     {"Text6", "Text7", "Command1", "Command2"}, "Command1", "Command2"},
    {"frmbufaddr", 3930, 2130, Make<forms::frmbufaddr>, {"", ""},
     {"Text1", "Text2", "Cmdok", "Command1"}, "Cmdok", "Command1"},
    {"frmversion", 3780, 2175, [](forms::AppContext&) -> QWidget* { return new forms::frmversion; },
     {}, {"OK_Button"}, "OK_Button", "OK_Button"},
};
// clang-format on

// A form of a fresh world with a scripted platform, shown and active.
struct Opened {
  TempSettings settings;
  Module1 m = MakeImage();
  ScriptedPlatform platform;
  forms::AppContext ctx{m, platform, settings.store};
  std::unique_ptr<QWidget> form;
  // With store, the bytes of the settings file, or a folder in its place when empty, a pipe when "|".
  explicit Opened(const Form& f, const QByteArray* store = nullptr) {
    const QString file = settings.dir.path() + "/Morvi/Morvi.conf";
    if (store) QDir().mkpath(store->isEmpty() ? file : settings.dir.path() + "/Morvi");
    if (store && *store == "|" && mkfifo(qPrintable(file), 0600) != 0) qFatal("no pipe");
    if (store && !store->isEmpty() && *store != "|") WriteFile(file.toStdString(), store->toStdString());
    form.reset(f.open(ctx));
    if (!ShowActive(form.get())) qWarning("%s never became active", f.name);
  }
  // What the form shows in its fields and lists, and the messages.
  QStringList Shown() const {
    QStringList shown;
    for (const auto* edit : form->findChildren<QLineEdit*>()) shown << edit->text();
    for (const auto* list : form->findChildren<QComboBox*>())  // the drive follows the folder
      if (!qobject_cast<const forms::DriveListBox*>(list)) shown << list->currentText();
    // The folder lists open by themselves where the program runs.
    const QString here = QDir::toNativeSeparators(QDir::currentPath());
    for (const auto* d : form->findChildren<forms::DirListBox*>())
      shown << (d->Path() == here ? "." : d->Path());
    for (const auto& text : platform.Texts()) shown << QString::fromStdString(text);
    return shown;
  }
  QString Focus() const { return form->focusWidget() ? form->focusWidget()->objectName() : QString(); }
};

// Why a control's caption does not show whole, or empty when it does.
QString Clipped(const QWidget* w) {
  const auto wider = [](int need, int room) {
    return need > room ? QString("%1 > %2").arg(need).arg(room) : "";
  };
  if (const auto* label = qobject_cast<const QLabel*>(w)) {
    const QRect lines = label->fontMetrics().boundingRect(
        QRect(0, 0, label->width(), 1000), label->wordWrap() ? Qt::TextWordWrap : 0, label->text());
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

// What a control shows: its text, a drop-down list's pick, a folder list's folder.
QString Text(QWidget* window, const char* name) {
  auto* w = Child(window, name);
  if (auto* list = qobject_cast<QComboBox*>(w)) return list->currentText();
  if (auto* dirs = qobject_cast<forms::DirListBox*>(w)) return dirs->Path();
  return w->property("text").toString();
}

// The texts of the named controls.
QStringList Texts(QWidget* window, const std::vector<const char*>& names) {
  QStringList texts;
  for (const char* name : names) texts << Text(window, name);
  return texts;
}

// Replaces a field's text key by key (End, Backspace, the new text), through whatever filter it has.
void Type(QWidget* window, const char* name, const char* text) {
  auto* edit = Child<QLineEdit>(window, name);
  edit->setFocus();
  QTest::keyClick(edit, Qt::Key_End);
  for (qsizetype n = edit->text().size(); n > 0; --n) QTest::keyClick(edit, Qt::Key_Backspace);
  QTest::keyClicks(edit, QString::fromLatin1(text));
}

// Types each text into its field, then presses Enter.
void Fill(QWidget* dialog, std::initializer_list<std::pair<const char*, const char*>> fields) {
  for (const auto& [name, text] : fields) Type(dialog, name, text);
  PressKey(dialog, Qt::Key_Return);
}

void Click(QWidget* w, const QString& name) {
  QTest::mouseClick(Child<QPushButton>(w, name), Qt::LeftButton);
}

// Opens a menu of the menu bar with its Alt key, goes down steps items and presses Enter (a wrong item opens
// the wrong window, or none).
void OpenMenuItem(QMainWindow* window, Qt::Key letter, int steps) {
  QVERIFY(ShowActive(window));
  QTest::keyClick(window, letter, Qt::AltModifier);
  QTRY_VERIFY(qobject_cast<QMenu*>(QApplication::activePopupWidget()));
  for (int i = 0; i < steps; ++i) QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
  QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
}

// The main window at a first start, in a folder of its own where the program starts and the lists open,
// with app.hex (32 bytes 03, 0A, 11, ... 7 apart, at 0000) and bad.hex (a wrong sum at 10000). At its end,
// every busy stretch was on the screen before its work, with a window manager too, which takes a closed
// box's frame away in its own time.
struct Session {
  TempSettings settings;
  QTemporaryDir folder;
  const QString started = QDir::currentPath();
  const bool inFolder = QDir::setCurrent(folder.path());
  Module1 m;
  CheckedPlatform platform;
  forms::AppContext ctx{m, platform, settings.store};
  forms::frmsumtool w{ctx};
  ModalScript script;

  Session() {
    WriteFile(Path("app.hex"),
              ":10000000030A11181F262D343B424950575E656C78\r\n"
              ":10001000737A81888F969DA4ABB2B9C0C7CED5DC68\r\n:00000001FF\r\n");
    WriteFile(Path("bad.hex"), ":020000021000EC\r\n:0100000000FE\r\n");
    platform.main = &w;
    QVERIFY(inFolder && ShowActive(&w));
  }
  ~Session() {
    QDir::setCurrent(started);
    QVERIFY2(platform.stale.isEmpty(), qPrintable(platform.stale.join(' ')));
  }
  std::filesystem::path Path(const char* name) const { return folder.filePath(name).toStdString(); }
  QSet<QString> Busy() const { return {platform.busy.begin(), platform.busy.end()}; }
  // Set Up, Buffer Address 10000 to 1FFFF; app.hex loaded with the offset 10010 (the keyboard's way).
  void SetAreaAndLoad() {
    script.Dialog<forms::frmbufaddr>([](auto* d) { Fill(d, {{"Text1", "10000"}, {"Text2", "1ffff"}}); });
    script.Run([&] { OpenMenuItem(&w, Qt::Key_S, 0); });
    script
        .Dialog<forms::frmload>([](auto* d) {
          Child<forms::FileListBox>(d, "File1")->Pick("app.hex");
          QTest::keyClick(Child(d, "Check1"), Qt::Key_Space);
          Fill(d, {{"Text2", "10010"}});
        })
        .Message("Load Complete!");
    script.Run([&] { Click(&w, "cmdload"); });
  }
  // Block Store from 1FFF0 round the end to 1000F with 5A.
  void Store() {
    script
        .Dialog<forms::frmstore>([](auto* d) {
          Fill(d, {{"Text1", "1fff0"}, {"Text2", "1000f"}, {"Text3", "5a"}});
        })
        .Message("Block Store Complete!");
    script.Run([&] { Click(&w, "cmdblstore"); });
  }
  // Buffer SUM over the whole area: Calculate with Enter, Close with Esc.
  QStringList Sums() {
    QStringList sums;
    script.Dialog<forms::frmsum>([&](auto* d) {
      PressKey(d, Qt::Key_Return);
      sums = Texts(d, {"Text1", "Text2", "Text3"});
      PressKey(d, Qt::Key_Escape);
    });
    script.Run([&] { Click(&w, "cmdbufsum"); });
    return sums;
  }
};

// The sums of the area: the loaded bytes, the stored ones either side of the wrap, FF elsewhere.
const QStringList kSums{"70", "D970", "ECF0"};

}  // namespace

class TestWindows : public QObject {
  Q_OBJECT
 private slots:
  // Also: disabled boxes are readable, and the dump's font is a monospaced outline font and a page fits,
  // drawn at the screen's resolution.
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
            (c->parentWidget() == client || qobject_cast<QGroupBox*>(c->parentWidget())))
          controls << c;
      for (QWidget* c : controls) {
        const QRect g = c->geometry();
        QString faults = Clipped(c) + (c->parentWidget()->rect().contains(g) ? "" : " sticks out");
        const auto* frame = qobject_cast<const QGroupBox*>(c->parentWidget());
        if (frame && forms::FrameCaptionRect(frame).intersects(g)) faults += " covers a caption";
        if (frame && g.top() < forms::FrameInnerTop(frame)) faults += " crosses the frame's top";
        if (const auto* label = qobject_cast<const QLabel*>(c); label && label->wordWrap())
          faults += " wraps";
        for (QWidget* other : controls)  // a sibling
          if (other != c && other->parentWidget() == c->parentWidget() && other->geometry().intersects(g))
            faults += " overlaps " + other->objectName();
        QVERIFY2(faults.isEmpty(), qPrintable(f.name + ("." + c->objectName()) + ": " + faults));
      }
      // Labels that once left their design place (twips from the left) for want of room: within a pixel of
      // it.
      for (const auto& [form, label, left] :
           {std::tuple{"frmsumtool", "Label3", 120}, {"frmsave", "Label10", 105}, {"frmsave", "Label2", 165}})
        if (f.name == std::string_view(form))
          QVERIFY2(std::abs(Child(o.form.get(), label)->x() - forms::Px(left)) <= 1, label);
      // A disabled box holds what the user came for: readable (4.5 : 1 at least, measured on its pixels), on
      // a background that is not an editable field's.
      const QColor editable = o.form->palette().color(QPalette::Active, QPalette::Base);
      for (auto* box : o.form->findChildren<QLineEdit*>()) {
        if (box->isEnabled()) continue;
        box->setText("0123ABCD");
        const QImage image = box->grab().toImage();
        QHash<QRgb, int> count;  // inside the box's border
        for (int y = 4; y < image.height() - 4; ++y)
          for (int x = 4; x < image.width() - 4; ++x) ++count[image.pixel(x, y)];
        const auto fewer = [](auto a, auto b) { return a.second < b.second; };
        const QColor background = std::max_element(count.keyValueBegin(), count.keyValueEnd(), fewer)->first;
        double text = 1;
        for (QRgb pixel : count.keys()) text = std::max(text, Contrast(pixel, background));
        const QString name = f.name + ("." + box->objectName());
        QVERIFY2(text >= 4.5, qPrintable(name + QString(": %1 : 1").arg(text)));
        QVERIFY2(Contrast(background, editable) > 1.05, qPrintable(name + ": looks editable"));
      }
    }
    Opened o(kForms[0]);
    Click(o.form.get(), "cmdedit");
    auto* list = Child<QListWidget>(o.form.get(), "List1");
    const QFontInfo font(list->font());
    QVERIFY2(font.fixedPitch(), qPrintable(font.family()));
    QVERIFY2(QFontDatabase::isSmoothlyScalable(font.family(), font.styleName()), qPrintable(font.family()));
    QVERIFY(list->viewport()->rect().contains(list->visualItemRect(list->item(6))));
    QVERIFY(list->fontMetrics().horizontalAdvance(list->item(6)->text()) <= list->viewport()->width());
    QCOMPARE(forms::AppIcon().pixmap(256, 256).deviceIndependentSize().toSize(), QSize(256, 256));
  }

  // Each window asks the window manager for a fixed border: no minimize or maximize button, nor their
  // functions (what xprop says of _MOTIF_WM_HINTS).
  void windowsAskForNoMinimizeOrMaximize() {
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
      QSKIP("window manager hints exist on an X server");
    for (const Form& f : kForms) {
      Opened o(f);
      QProcess xprop;
      xprop.start("xprop", {"-id", QString::number(o.form->winId()), "_MOTIF_WM_HINTS"});
      xprop.waitForFinished(5000);
      const QString said = QString::fromLatin1(xprop.readAllStandardOutput());
      const QStringList hints = said.section('=', 1).split(',');
      QVERIFY2(hints.size() >= 3, qPrintable(f.name + (": " + said)));
      // Flags: functions and decorations present, then no function all 1, minimize 8, maximize 16, then no
      // decoration all 1, minimize 32, maximize 64.
      for (const auto& [i, mask, want] : {std::tuple{0, 3u, 3u}, {1, 1u | 8 | 16, 0u}, {2, 1u | 32 | 64, 0u}})
        QVERIFY2((hints[i].trimmed().toUInt(nullptr, 16) & mask) == want, qPrintable(f.name + (": " + said)));
    }
  }

  // A message shows whole, a long file name wrapped, under the whole title (the program's name, or its own),
  // with room beside it for the window manager's icon and buttons.
  void messagesShowWholeUnderTheirWholeTitle() {
    forms::QtPlatform platform;
    ModalScript script;
    using Row = std::tuple<std::string, int, std::string>;  // text, style, title
    for (const auto& [text, style, title] :
         {Row{"Load Complete!", vbOKOnly, ""},
          Row{"Cannot write /tmp/" + std::string(290, 'n') + ".HEX: File name too long", vbOKOnly, ""},
          Row{"Buffer Clear OK?", vbQuestionYesNo, "BufferClear"}}) {
      script.Dialog<QMessageBox>([&](QMessageBox* box) {
        auto* label = Child<QLabel>(box, "qt_msgbox_label");
        const QRect room = label->contentsRect();
        const QRect need = label->fontMetrics().boundingRect(room, Qt::TextWordWrap, label->text());
        QCOMPARE(label->text().remove(QChar(0x200B)).toStdString(), text);
        QVERIFY(room.width() >= need.width());
        QVERIFY(room.height() >= need.height());
        QVERIFY(box->rect().contains(label->geometry()));
        QCOMPARE(box->windowTitle().toStdString(), title.empty() ? "Kestrum" : title);
        QFont bold = box->font();
        bold.setBold(true);
        QVERIFY(box->width() >= QFontMetrics(bold).horizontalAdvance(box->windowTitle()) + 150);
        QTest::keyClick(box, Qt::Key_Escape);
      });
      script.Run([&] { platform.MsgBox(text, style, title); });
    }
  }

  // Also: only the main window's Load and Save buttons name the File menu's Alt key.
  void tabFollowsTheTabIndexAndEscDoesWhatCancelDoes() {
    for (const Form& f : kForms) {
      // What Esc and the cancel button leave: the fields as opened, no message, the window closed.
      for (const bool esc : {true, false}) {
        if (f.escape.isEmpty()) break;
        Opened o(f);
        esc ? PressKey(o.form.get(), Qt::Key_Escape) : Click(o.form.get(), f.escape);
        QCOMPARE(o.Shown(), f.defaults);
        QVERIFY(!o.form->isVisible());
      }
      Opened o(f);
      QCOMPARE(o.Shown(), f.defaults);
      QCOMPARE(o.Focus(), f.focus.front());
      for (auto* button : o.form->findChildren<QPushButton*>()) {
        const QString tip = button->toolTip(), name = button->objectName();
        QVERIFY2(tip.contains("Enter") == (name == f.enter), qPrintable(name + ": " + tip));
        QVERIFY2(tip.contains("Esc") == (name == f.escape), qPrintable(name + ": " + tip));
        QVERIFY2(tip.contains("Alt+F") == (name == "cmdload" || name == "cmdsave"),
                 qPrintable(name + ": " + tip));
      }
      // The step buttons of the dump take the focus once they are enabled (Space leaves the focus where it
      // is).
      if (f.enter.isEmpty()) QTest::keyClick(Child(o.form.get(), "cmdedit"), Qt::Key_Space);
      QStringList visited;
      for (qsizetype i = 0; i <= f.focus.size(); ++i, PressKey(o.form.get(), Qt::Key_Tab))
        visited << o.Focus();
      QCOMPARE(visited, f.focus + QStringList{f.focus.front()});
    }
  }

  // A store of garbage opens every window as an empty store does, with the defaults: a value that is no text
  // counts as missing, a store that can't be read (bytes of no format, a folder or a pipe where the file
  // should be) as empty, a folder stored without its drive is not opened.
  void aStoreOfGarbageOpensEveryWindowWithItsDefaults() {
    QByteArray noise(4096, '\0');
    for (int i = 0; i < noise.size(); ++i) noise[i] = static_cast<char>((i * 7919 + 13) % 251);
    const QByteArray noText(
        "[Address]\nBufFirst=@Rect(1 2 3 4)\n"
        "BufLast=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x10NoSuchType)\nLoadFirst=@Point(5 6)\n"
        "SaveFirst=@Size(1 1)\nstoredata=@Size(2 2)\n[Format]\nFileType=@Rect(0 0 0 0)\n"
        "[FilePath]\nSaveDrive=@Point(0 0)\nSaveDir=/tmp\nLoadDir=/tmp\n");
    for (const QByteArray& store : {noise, noText, QByteArray(), QByteArray("|")})
      for (const Form& f : kForms) QCOMPARE(Opened(f, &store).Shown(), f.defaults);
  }

  // The load window in a folder with two visible files, a hidden one and a
  // folder (the file list follows the folder list); typing finds a file or folder by its first letters; Enter
  // in the folder list opens the folder and loads nothing, as does a typed path; the open folder stays
  // highlighted; the drive follows the folder. The drive list's roots.
  void folderFileAndDriveListsBrowseATree() {
    QTemporaryDir dir;
    const QString root = QDir::toNativeSeparators(dir.path()), sub = forms::JoinPath(root, "sub");
    for (const char* name : {"b.hex", "A.bin", ".hidden"}) WriteFile(dir.filePath(name).toStdString(), "x");
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("sub")));
    Opened o(kForms[1]);
    auto* dirs = Child<forms::DirListBox>(o.form.get(), "Dir1");
    auto* files = Child<forms::FileListBox>(o.form.get(), "File1");
    QVERIFY(dirs->SetPath(root));
    QStringList shown{dirs->item(dirs->count() - 1)->text()};  // the last folder, then every file
    for (int i = 0; i < files->ListCount(); ++i) shown << files->List(i);
    QCOMPARE(shown, (QStringList{"sub", "A.bin", "b.hex"}));
    QTest::keyClicks(files, "b");
    QCOMPARE(Text(o.form.get(), "Text1"), QStringLiteral("b.hex"));
    QTest::keyClicks(dirs, "su");
    QTest::keyClick(dirs, Qt::Key_Return);
    QCOMPARE(files->Path(), sub);
    // A click on empty space; a folder gone before it is opened.
    const auto highlighted = [&] {
      const QList<QListWidgetItem*> picked = dirs->selectedItems();
      return picked.isEmpty() ? QString() : picked[0]->text();
    };
    QTest::mouseClick(dirs->viewport(), Qt::LeftButton, {}, QPoint(5, dirs->viewport()->height() - 3));
    QCOMPARE(highlighted(), QStringLiteral("sub"));
    QCOMPARE(files->Path(), sub);
    QVERIFY(dirs->SetPath(root) && QDir(dir.path()).mkdir("gone") && dirs->SetPath(root) &&
            QDir(dir.path()).rmdir("gone"));  // the folder listed, then gone
    dirs->setCurrentItem(dirs->findItems("gone", Qt::MatchExactly).value(0));
    QTest::keyClick(dirs, Qt::Key_Return);
    QTRY_COMPARE(highlighted(), QFileInfo(root).fileName());
    QCOMPARE(files->Path(), root);
    QTest::keyClick(dirs, Qt::Key_L, Qt::ControlModifier);
    QTest::keyClicks(Child(dirs, "PathBox"), "/sub");
    QTest::keyClick(Child(dirs, "PathBox"), Qt::Key_Return);
    QCOMPARE(files->Path(), sub);
    QVERIFY(o.form->isVisible());
    QVERIFY(o.platform.messages.empty());
    for (const QString& folder : {QDir::homePath(), root}) {
      QVERIFY(dirs->SetPath(folder));
      QCOMPARE(Text(o.form.get(), "Drive1"), forms::DriveOfPath(folder, forms::DriveRoots()));
    }
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

  // The title and captions; the step buttons, the area and the loaded file's name show but take no input
  // (their texts: the garbage test). Help, Version closes with Esc.
  void sessionMainWindowAtItsFirstStart() {
    Session s;
    QCOMPARE(OffCentre(&s.w), QString());
    QStringList captions{s.w.windowTitle()};
    for (const char* name :
         {"Frame1", "cmdload", "cmdsave", "Label8", "Frame2", "cmdbufclear", "cmdblstore", "cmdbufsum",
          "Frame3", "cmdedit", "Label1", "cmdeditplus", "cmdeditminus", "Frame4", "Label3", "Label4"}) {
      QWidget* control = Child(&s.w, name);
      captions << control->property(qobject_cast<QGroupBox*>(control) ? "title" : "text").toString();
    }
    QCOMPARE(captions, (QStringList{"Kestrum", "File Operation", "File Load", "File Save",
                                    "Current File (Func F4)", "Buffer Operation", "Buffer Clear",
                                    "Block Store", "Buffer SUM", "Buffer Dump", "Dump", "Address", "+", "-",
                                    "Buffer Area (Func D6)", "First  Address", "Last  Address"}));
    for (const char* name : {"cmdeditplus", "cmdeditminus", "txtbuffaddr", "txtbufladdr", "Text1"})
      QVERIFY2(!Child(&s.w, name)->isEnabled(), name);
    s.script.Dialog<forms::frmversion>([](auto* d) { PressKey(d, Qt::Key_Escape); });
    s.script.Run([&] { OpenMenuItem(&s.w, Qt::Key_H, 0); });
  }

  // File Load: bad.hex stops with the reader's message, Load and Cancel disabled meanwhile; then app.hex
  // picked with the mouse, with an offset.
  void sessionLoadShowsAReadersErrorWithLoadAndCancelDisabled() {
    Session s;
    s.script
        .Dialog<forms::frmload>([&](forms::frmload* d) {
          Child<forms::FileListBox>(d, "File1")->Pick("bad.hex");
          Click(d, "Command1");
          for (const char* button : {"Command1", "Command2"}) QVERIFY2(Child(d, button)->isEnabled(), button);
          auto* files = Child<QListWidget>(d, "File1");
          QTest::mouseClick(files->viewport(), Qt::LeftButton, {},
                            files->visualItemRect(files->item(0)).center());
          QTest::keyClick(Child(d, "Check1"), Qt::Key_Space);
          Fill(d, {{"Text2", "10010"}});
        })
        .Dialog<QMessageBox>([&](QMessageBox* box) {
          QCOMPARE(box->text(), QStringLiteral("SUM Error"));
          for (const char* button : {"Command1", "Command2"})
            QVERIFY2(!Child(s.w.findChild<forms::frmload*>(), button)->isEnabled(), button);
          QTest::keyClick(box, Qt::Key_Return);
        })
        .Message("Load Complete!");
    s.script.Run([&] { Click(&s.w, "cmdload"); });
    QCOMPARE(Text(&s.w, "Text1"), QStringLiteral("app.hex"));
    QCOMPARE(Child(&s.w, "Text1")->toolTip(), QStringLiteral("app.hex"));
  }

  // With the area from Set Up, dump from 10010 typed through the filter (Enter on the focused Dump), + once,
  // - three times: the page stops at the area's start. Block Store round the end: the dump goes, the sums
  // show the wrap.
  void sessionDumpStepsWithinTheAreaAndBlockStoreWraps() {
    Session s;
    s.SetAreaAndLoad();
    Type(&s.w, "txteditaddr", "1g0z01x0");
    Child(&s.w, "cmdedit")->setFocus();
    QTest::keyClick(Child(&s.w, "cmdedit"), Qt::Key_Return);
    Click(&s.w, "cmdeditplus");
    QCOMPARE(Text(&s.w, "txteditaddr"), QStringLiteral("00010020"));
    for (int i = 0; i < 3; ++i) Click(&s.w, "cmdeditminus");
    QCOMPARE(Text(&s.w, "txteditaddr"), QStringLiteral("00010000"));
    auto* list = Child<QListWidget>(&s.w, "List1");
    QCOMPARE(list->item(1)->text(), QStringLiteral("00010010  030A11181F262D343B424950575E656C"));
    s.Store();
    QCOMPARE(list->count(), 0);
    QCOMPARE(s.Sums(), kSums);
    QCOMPARE(s.Busy(), (QSet<QString>{"frmbufaddr", "frmload", "frmstore", "frmsum"}));
  }

  // File Save: HEX and YSM as "fw" with records of 20, over fw.HEX and fw.YSM: Yes then No leaves both files;
  // Save again with Yes twice writes both. Buffer Clear, answered Yes; fw.HEX dropped on the window opens
  // File Load with it picked; the sums come back.
  void sessionSavedPairLoadsBackAfterBufferClear() {
    Session s;
    for (const char* name : {"fw.HEX", "fw.YSM"}) WriteFile(s.Path(name), name);
    s.SetAreaAndLoad();
    s.Store();
    s.script
        .Dialog<forms::frmsave>([&](forms::frmsave* d) {
          for (const char* list :
               {"Combo1", "Combo1", "Combo2", "Combo3", "Combo3"})  // an item down each time
            QTest::keyClick(Child(d, list), Qt::Key_Down);
          Fill(d, {{"Text4", "20"}, {"Text5", "fw"}});
          QVERIFY(d->isVisible());
          QCOMPARE(ReadFile(s.Path("fw.HEX")), std::string("fw.HEX"));
          QCOMPARE(ReadFile(s.Path("fw.YSM")), std::string("fw.YSM"));
          PressKey(d, Qt::Key_Return);
        })
        .Message("fw.HEX File Over Write?", QMessageBox::Warning, "Save")
        .Message("fw.YSM File Over Write?", QMessageBox::Warning, "Save", Qt::Key_Escape)
        .Message("fw.HEX File Over Write?", QMessageBox::Warning, "Save")
        .Message("fw.YSM File Over Write?", QMessageBox::Warning, "Save")
        .Message("HEX and YSM File Save Complete!");
    s.script.Run([&] { Click(&s.w, "cmdsave"); });
    // The sum file carries the 16-16 sum the SUM dialog shows; the HEX file records of 32 bytes.
    QCOMPARE(ReadFile(s.Path("fw.YSM")).substr(0, 16), std::string("S30700000000ECF0"));
    QVERIFY(ReadFile(s.Path("fw.HEX")).find("\r\n:20") != std::string::npos);
    s.script.Message("Buffer Clear OK?", QMessageBox::Question, "BufferClear")
        .Message("Buffer Clear Complete!");
    s.script.Run([&] { Click(&s.w, "cmdbufclear"); });
    QCOMPARE(Text(&s.w, "Text1"), QString());
    s.script
        .Dialog<forms::frmload>([&](forms::frmload* d) {
          QCOMPARE(Child<forms::FileListBox>(d, "File1")->FileName(), QStringLiteral("fw.HEX"));
          PressKey(d, Qt::Key_Return);
        })
        .Message("Load Complete!");
    s.script.Run([&] {
      QMimeData data;
      data.setUrls({QUrl::fromLocalFile(s.folder.filePath(QStringLiteral("fw.HEX")))});
      const QPoint at = Child(&s.w, "List1")->geometry().center();
      QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
      QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
      QVERIFY(QApplication::sendEvent(&s.w, &enter));
      QVERIFY(enter.isAccepted());
      QApplication::sendEvent(&s.w, &drop);
    });
    QCOMPARE(s.Sums(), kSums);
    QVERIFY(s.Busy().contains(QSet<QString>{"frmsave", "frmsumtool"}));
  }

  // File, Exit, from the program's main loop: it ends the loop with status 0 and the area goes to the store
  // (the drives too: the folders come back). The next start: the stored area, and each dialog with what was
  // kept. Closing the window, not only Exit, puts its area in the store.
  void sessionExitKeepsWhatTheNextStartShows() {
    Session s;
    s.SetAreaAndLoad();
    s.Store();
    auto giveUp = std::make_unique<QObject>();
    QTimer::singleShot(10000, giveUp.get(), [] { QCoreApplication::exit(1); });
    QTimer::singleShot(0, &s.w, [&] { OpenMenuItem(&s.w, Qt::Key_F, 2); });
    QCOMPARE(QCoreApplication::exec(), 0);
    giveUp.reset();
    const auto stored = [&] {
      return QStringList{QString::fromStdString(s.settings.store.Read(kAddress, "BufFirst", "")),
                         QString::fromStdString(s.settings.store.Read(kAddress, "BufLast", ""))};
    };
    const QStringList area{"00010000", "0001FFFF"};
    QCOMPARE(stored(), area);
    s.m = Module1{};
    forms::frmsumtool again(s.ctx);
    s.platform.main = &again;
    QVERIFY(ShowActive(&again));
    QCOMPARE(Texts(&again, {"txtbuffaddr", "txtbufladdr", "txteditaddr"}), area + QStringList{"00010000"});
    QStringList kept;  // what the dialogs show as they are closed with Esc
    for (const auto& [button, names] : {std::pair{"cmdload", std::vector{"Text4", "Text3", "Dir1"}},
                                        {"cmdblstore", std::vector{"Text1", "Text2", "Text3"}}}) {
      s.script.Dialog<QDialog>([&](QDialog* d) {
        kept += Texts(d, names);
        PressKey(d, Qt::Key_Escape);
      });
      s.script.Run([&] { Click(&again, button); });
    }
    const QString dir = QDir::toNativeSeparators(s.folder.path());
    QCOMPARE(kept, (QStringList{"00010000", "0001FFFF", dir, "0001FFF0", "0001000F", "5A"}));
    s.settings.store.Write(kAddress, "BufFirst", "");
    again.close();
    QCOMPARE(stored(), area);
  }
};

QTEST_MAIN(TestWindows)
#include "test_windows.moc"
