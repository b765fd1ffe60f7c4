#include <QPushButton>

#include "GuiSupport.h"
#include "ModalSupport.h"
#include "forms/frmsum.h"
#include "forms/frmsumtool.h"

using namespace kestrum;
using namespace kestrum::test;

namespace {

QString TextOf(QWidget* dialog, const char* name) { return Child<QLineEdit>(dialog, name)->text(); }

}  // namespace

class TestFrmSum : public QObject {
  Q_OBJECT
 private slots:
  void opensWithTheAreaAndTheDesignedControls() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmsum dialog(w.ctx);
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QStringLiteral("SUM "));
    QCOMPARE(TextOf(&dialog, "Text6"), QStringLiteral("00001000"));
    QCOMPARE(TextOf(&dialog, "Text7"), QStringLiteral("00001FFF"));
    const std::pair<const char*, const char*> captions[] = {
        {"Frame1", "Address Set up"}, {"Frame2", "Result"},      {"Label7", "FirstAddress"},
        {"Label6", "LastAddress"},    {"Label8", "8-8bit"},      {"Label5", "8-16bit"},
        {"Label4", "16-16bit"},       {"Command1", "Calculate"}, {"Command2", "Close"}};
    for (const auto& [name, caption] : captions) {
      QWidget* c = Child<QWidget>(&dialog, name);
      const QString shown =
          c->property("text").isValid() ? c->property("text").toString() : c->property("title").toString();
      QCOMPARE(shown, QString::fromLatin1(caption));
    }
    for (const char* result : {"Text1", "Text2", "Text3"}) {
      QVERIFY(!Child<QLineEdit>(&dialog, result)->isEnabled());
      QVERIFY(TextOf(&dialog, result).isEmpty());
    }
    QVERIFY(Child<QPushButton>(&dialog, "Command1")->isDefault());
    QCOMPARE(dialog.focusWidget(), Child<QWidget>(&dialog, "Text6"));
  }

  void calculateThroughTheMainWindowThenCloseKeepsTheRange() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    for (int i = 0; i < 7; ++i) w.m.At(0x1000 + i) = static_cast<std::uint8_t>(0x12 + 0x22 * i);
    QStringList results;
    bool opened = false;
    WhenModalOpens<forms::frmsum>(opened, [&results](forms::frmsum* d) {
      auto* text6 = Child<QLineEdit>(d, "Text6");
      auto* text7 = Child<QLineEdit>(d, "Text7");
      const std::pair<const char*, const char*> ranges[] = {
          {"1000", "1005"}, {"1001", "1006"}, {"1003", "1004"}};
      for (const auto& [first, last] : ranges) {
        text6->clear();
        TypeInto(text6, QString::fromLatin1(first));
        text7->clear();
        TypeInto(text7, QString::fromLatin1(last));
        QTest::keyClick(text7, Qt::Key_Return);  // Calculate is the default button
        results << TextOf(d, "Text1") + " " + TextOf(d, "Text2") + " " + TextOf(d, "Text3");
      }
      QVERIFY(d->isVisible());
      QTest::mouseClick(Child<QPushButton>(d, "Command2"), Qt::LeftButton);
    });
    QTest::mouseClick(Child<QPushButton>(&window, "cmdbufsum"), Qt::LeftButton);
    QVERIFY(opened);
    // The bytes 12 34 56 78 9A BC DE at 00001000.
    QCOMPARE(results, (QStringList{"6A 026A 0368", "36 0336 CF68", "12 0112 9A78"}));
    QVERIFY(w.platform.messages.empty());
    QCOMPARE(w.m.SumFirst, Address{0x1003});
    QCOMPARE(w.m.SumLast, Address{0x1004});
    QCOMPARE(w.settings.store.Read(kAddress, "SUMfaddr", "?"), std::string("00001003"));
    QCOMPARE(w.settings.store.Read(kAddress, "SUMladdr", "?"), std::string("00001004"));
  }

  void aRefusalKeepsThePaddedTextAndTheResults() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmsum dialog(w.ctx);
    dialog.show();
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command1"), Qt::LeftButton);
    QCOMPARE(TextOf(&dialog, "Text3"), QStringLiteral("F800"));
    auto* text6 = Child<QLineEdit>(&dialog, "Text6");
    text6->clear();
    TypeInto(text6, QStringLiteral("fff"));
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command1"), Qt::LeftButton);
    QCOMPARE(w.platform.Texts(), std::vector<std::string>{"First Address Error!"});
    QCOMPARE(text6->text(), QStringLiteral("00000FFF"));
    QCOMPARE(TextOf(&dialog, "Text2"), QStringLiteral("F000"));
    QVERIFY(dialog.isVisible());
    // Esc is Close: it keeps the fields as they stand, bad or not.
    QTest::keyClick(text6, Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(w.settings.store.Read(kAddress, "SUMfaddr", "?"), std::string("00000FFF"));
  }

  void closingTheWindowOtherwiseKeepsNothing() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmsum dialog(w.ctx);
    dialog.show();
    Child<QLineEdit>(&dialog, "Text6")->setText(QStringLiteral("1234"));
    dialog.close();
    QCOMPARE(w.settings.store.Read(kAddress, "SUMfaddr", "none"), std::string("none"));
  }
};

QTEST_MAIN(TestFrmSum)
#include "test_frmsum.moc"
