#include <QListWidget>
#include <QPushButton>

#include "GuiSupport.h"
#include "ModalSupport.h"
#include "forms/frmstore.h"
#include "forms/frmsumtool.h"

using namespace kestrum;
using namespace kestrum::test;

class TestFrmStore : public QObject {
  Q_OBJECT
 private slots:
  void storeThroughTheMainWindowEmptiesTheDump() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    QTest::mouseClick(Child<QPushButton>(&window, "cmdedit"), Qt::LeftButton);
    QStringList opening;
    bool opened = false;
    WhenModalOpens<forms::frmstore>(opened, [&opening](forms::frmstore* d) {
      auto* text1 = Child<QLineEdit>(d, "Text1");
      auto* text2 = Child<QLineEdit>(d, "Text2");
      auto* text3 = Child<QLineEdit>(d, "Text3");
      opening << d->windowTitle() << text1->text() << text2->text() << text3->text();
      QVERIFY(Child<QPushButton>(d, "Command2")->isDefault());
      QCOMPARE(d->focusWidget(), text1);
      text1->clear();
      TypeInto(text1, QStringLiteral("7fff0g"));
      text2->clear();
      TypeInto(text2, QStringLiteral("f"));
      text3->clear();
      TypeInto(text3, QStringLiteral("a b7"));
      QCOMPARE(text3->text(), QStringLiteral("AB"));
      QTest::keyClick(text3, Qt::Key_Return);  // Store is the default button
    });
    QTest::mouseClick(Child<QPushButton>(&window, "cmdblstore"), Qt::LeftButton);
    QVERIFY(opened);
    QCOMPARE(opening, (QStringList{"Block Store", "00000000", "0007FFFF", "00"}));
    QCOMPARE(w.platform.Texts(), std::vector<std::string>{"Block Store Complete!"});
    QCOMPARE(w.m.At(0x7FFF0), std::uint8_t{0xAB});
    QCOMPARE(w.m.At(0x0000F), std::uint8_t{0xAB});
    QCOMPARE(w.m.At(0x00010), std::uint8_t{0xFF});
    QCOMPARE(Child<QListWidget>(&window, "List1")->count(), 0);
    QVERIFY(!Child<QPushButton>(&window, "cmdeditplus")->isEnabled());
    QVERIFY(!Child<QPushButton>(&window, "cmdeditminus")->isEnabled());
    QCOMPARE(w.settings.store.Read(kAddress, "storefaddr", "?"), std::string("0007FFF0"));
    QCOMPARE(w.settings.store.Read(kAddress, "storeladdr", "?"), std::string("0000000F"));
    QCOMPARE(w.settings.store.Read(kAddress, "storedata", "?"), std::string("AB"));
  }

  void aRefusalKeepsTheDialogOpenAndCancelKeepsNothing() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmstore dialog(w.ctx);
    dialog.show();
    auto* text1 = Child<QLineEdit>(&dialog, "Text1");
    text1->clear();
    TypeInto(text1, QStringLiteral("fff"));
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command2"), Qt::LeftButton);
    QCOMPARE(w.platform.Texts(), std::vector<std::string>{"Address Error"});
    QCOMPARE(text1->text(), QStringLiteral("00000FFF"));
    QVERIFY(dialog.isVisible());
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(w.m.At(0x1000), std::uint8_t{0xFF});
    QCOMPARE(w.settings.store.Read(kAddress, "storefaddr", "none"), std::string("none"));
  }
};

QTEST_MAIN(TestFrmStore)
#include "test_frmstore.moc"
