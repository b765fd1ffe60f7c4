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
  void opensWithTheAreaAndTheDesignedControls() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmstore dialog(w.ctx);
    dialog.show();
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Block Store"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text1")->text(), QStringLiteral("00001000"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text2")->text(), QStringLiteral("00001FFF"));
    QCOMPARE(Child<QLineEdit>(&dialog, "Text3")->text(), QStringLiteral("00"));
    const std::pair<const char*, const char*> labels[] = {
        {"Label2", "FirstAddress"}, {"Label3", "LastAddress"}, {"Label4", "Data"}};
    for (const auto& [name, caption] : labels)
      QCOMPARE(Child<QWidget>(&dialog, name)->property("text").toString(), QString::fromLatin1(caption));
    QCOMPARE(Child<QPushButton>(&dialog, "Command2")->text(), QStringLiteral("Store"));
    QCOMPARE(Child<QPushButton>(&dialog, "Command1")->text(), QStringLiteral("Cancel"));
    QVERIFY(Child<QPushButton>(&dialog, "Command2")->isDefault());
    QVERIFY(Child<QLineEdit>(&dialog, "Text1")->font().fixedPitch());
    QCOMPARE(dialog.focusWidget(), Child<QWidget>(&dialog, "Text1"));
  }

  void fieldsTakeOnlyHexDigitsUpToTheirLength() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmstore dialog(w.ctx);
    dialog.show();
    auto* text1 = Child<QLineEdit>(&dialog, "Text1");
    auto* text3 = Child<QLineEdit>(&dialog, "Text3");
    text1->clear();
    TypeInto(text1, QStringLiteral("1g2h3456789"));
    QCOMPARE(text1->text(), QStringLiteral("12345678"));
    text3->clear();
    TypeInto(text3, QStringLiteral("a b7"));
    QCOMPARE(text3->text(), QStringLiteral("AB"));
  }

  void storeThroughTheMainWindowEmptiesTheDump() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    QTest::mouseClick(Child<QPushButton>(&window, "cmdedit"), Qt::LeftButton);
    QCOMPARE(Child<QListWidget>(&window, "List1")->count(), 7);
    bool opened = false;
    WhenModalOpens<forms::frmstore>(opened, [](forms::frmstore* d) {
      auto* text1 = Child<QLineEdit>(d, "Text1");
      auto* text2 = Child<QLineEdit>(d, "Text2");
      auto* text3 = Child<QLineEdit>(d, "Text3");
      text1->clear();
      TypeInto(text1, QStringLiteral("7fff0"));
      text2->clear();
      TypeInto(text2, QStringLiteral("f"));
      text3->clear();
      TypeInto(text3, QStringLiteral("5"));
      QTest::keyClick(text3, Qt::Key_Return);  // Store is the default button
    });
    QTest::mouseClick(Child<QPushButton>(&window, "cmdblstore"), Qt::LeftButton);
    QVERIFY(opened);
    QCOMPARE(w.platform.Texts(), std::vector<std::string>{"Block Store Complete!"});
    QCOMPARE(w.platform.pointers, (std::vector<int>{vbHourglass, vbDefault}));
    QCOMPARE(w.m.At(0x7FFF0), std::uint8_t{0x05});
    QCOMPARE(w.m.At(0x7FFFF), std::uint8_t{0x05});
    QCOMPARE(w.m.At(0x0000F), std::uint8_t{0x05});
    QCOMPARE(w.m.At(0x00010), std::uint8_t{0xFF});
    QCOMPARE(Child<QListWidget>(&window, "List1")->count(), 0);
    QVERIFY(!Child<QPushButton>(&window, "cmdeditplus")->isEnabled());
    QVERIFY(!Child<QPushButton>(&window, "cmdeditminus")->isEnabled());
    QCOMPARE(w.settings.store.Read(kAddress, "storefaddr", "?"), std::string("0007FFF0"));
    QCOMPARE(w.settings.store.Read(kAddress, "storeladdr", "?"), std::string("0000000F"));
    QCOMPARE(w.settings.store.Read(kAddress, "storedata", "?"), std::string("5"));

    // The next opening shows what worked last.
    WhenModalOpens<forms::frmstore>(opened, [](forms::frmstore* d) {
      QCOMPARE(Child<QLineEdit>(d, "Text1")->text(), QStringLiteral("0007FFF0"));
      QCOMPARE(Child<QLineEdit>(d, "Text3")->text(), QStringLiteral("5"));
      QTest::mouseClick(Child<QPushButton>(d, "Command1"), Qt::LeftButton);
    });
    QTest::mouseClick(Child<QPushButton>(&window, "cmdblstore"), Qt::LeftButton);
    QVERIFY(opened);
  }

  void aRefusalKeepsTheDialogOpenAndTheImage() {
    GuiWorld w;
    w.m = MakeImage(0x1000, 0x1FFF);
    forms::frmstore dialog(w.ctx);
    dialog.show();
    auto* text1 = Child<QLineEdit>(&dialog, "Text1");
    auto* text3 = Child<QLineEdit>(&dialog, "Text3");
    text1->clear();
    TypeInto(text1, QStringLiteral("fff"));
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command2"), Qt::LeftButton);
    QCOMPARE(w.platform.Texts(), std::vector<std::string>{"Address Error"});
    QCOMPARE(text1->text(), QStringLiteral("00000FFF"));
    QVERIFY(dialog.isVisible());
    text1->setText(QStringLiteral("1000"));
    text3->clear();
    TypeInto(text3, QStringLiteral("%"));
    QTest::mouseClick(Child<QPushButton>(&dialog, "Command2"), Qt::LeftButton);
    QCOMPARE(w.platform.Texts().back(), std::string("Data Error!"));
    QVERIFY(dialog.isVisible());
    QCOMPARE(w.m.At(0x1000), std::uint8_t{0xFF});
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(w.settings.store.Read(kAddress, "storefaddr", "none"), std::string("none"));
  }
};

QTEST_MAIN(TestFrmStore)
#include "test_frmstore.moc"
