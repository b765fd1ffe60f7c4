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
  void calculateThroughTheMainWindowThenCloseKeepsTheRange() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    for (int i = 0; i < 7; ++i) w.m.At(0x1000 + i) = static_cast<std::uint8_t>(0x12 + 0x22 * i);
    QStringList shown;
    bool opened = false;
    WhenModalOpens<forms::frmsum>(opened, [&shown](forms::frmsum* d) {
      shown << d->windowTitle() << TextOf(d, "Text6") << TextOf(d, "Text7") << TextOf(d, "Text3");
      for (const char* result : {"Text1", "Text2", "Text3"})
        QVERIFY(!Child<QLineEdit>(d, result)->isEnabled());
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
        shown << TextOf(d, "Text1") + " " + TextOf(d, "Text2") + " " + TextOf(d, "Text3");
      }
      QVERIFY(d->isVisible());
      QTest::mouseClick(Child<QPushButton>(d, "Command2"), Qt::LeftButton);
    });
    QTest::mouseClick(Child<QPushButton>(&window, "cmdbufsum"), Qt::LeftButton);
    QVERIFY(opened);
    // The bytes 12 34 56 78 9A BC DE at 00001000.
    QCOMPARE(shown, (QStringList{"SUM ", "00000000", "0007FFFF", "", "6A 026A 0368", "36 0336 CF68",
                                 "12 0112 9A78"}));
    QVERIFY(w.platform.messages.empty());
    QCOMPARE(w.settings.store.Read(kAddress, "SUMfaddr", "?"), std::string("00001003"));
    QCOMPARE(w.settings.store.Read(kAddress, "SUMladdr", "?"), std::string("00001004"));
  }

  void aRefusalKeepsThePaddedTextAndEscKeepsIt() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmsum dialog(w.ctx);
    dialog.show();
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command1"), Qt::LeftButton);
    auto* text6 = Child<QLineEdit>(&dialog, "Text6");
    text6->clear();
    TypeInto(text6, QStringLiteral("fff"));
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command1"), Qt::LeftButton);
    QCOMPARE(w.platform.Texts(), std::vector<std::string>{"First Address Error!"});
    QCOMPARE(text6->text(), QStringLiteral("00000FFF"));
    QCOMPARE(TextOf(&dialog, "Text3"), QStringLiteral("F800"));  // the last results stay
    QVERIFY(dialog.isVisible());
    QTest::keyClick(text6, Qt::Key_Escape);  // Esc is Close
    QVERIFY(!dialog.isVisible());
    QCOMPARE(w.settings.store.Read(kAddress, "SUMfaddr", "?"), std::string("00000FFF"));
  }

  void closingTheWindowOtherwiseKeepsNothing() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmsum dialog(w.ctx);
    dialog.show();
    dialog.close();
    QCOMPARE(w.settings.store.Read(kAddress, "SUMfaddr", "none"), std::string("none"));
  }
};

QTEST_MAIN(TestFrmSum)
#include "test_frmsum.moc"
