#include <QAction>
#include <QListWidget>
#include <QPushButton>

#include "GuiSupport.h"
#include "ModalSupport.h"
#include "forms/frmbufaddr.h"
#include "forms/frmsumtool.h"

using namespace kestrum;
using namespace kestrum::test;

namespace {

void OpenFromTheMenu(forms::frmsumtool& window) {
  window.findChild<QAction*>(QStringLiteral("mnubufaddr"))->trigger();
}

}  // namespace

class TestFrmBufAddr : public QObject {
  Q_OBJECT
 private slots:
  void aNewAreaFromTheMenuShowsInTheMainWindow() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    QTest::mouseClick(Child<QPushButton>(&window, "cmdedit"), Qt::LeftButton);
    bool opened = false;
    WhenModalOpens<forms::frmbufaddr>(opened, [](forms::frmbufaddr* d) {
      QCOMPARE(d->windowTitle(), QStringLiteral("Set Buffer Address"));
      QVERIFY(Child<QLineEdit>(d, "Text1")->text().isEmpty() &&
              Child<QLineEdit>(d, "Text2")->text().isEmpty());
      QVERIFY(Child<QPushButton>(d, "Cmdok")->isDefault());
      TypeInto(Child<QLineEdit>(d, "Text1"), QStringLiteral("ff"));
      TypeInto(Child<QLineEdit>(d, "Text2"), QStringLiteral("ffff"));
      QTest::mouseClick(Child<QPushButton>(d, "Cmdok"), Qt::LeftButton);
    });
    OpenFromTheMenu(window);
    QVERIFY(opened);
    QVERIFY(w.platform.messages.empty());
    QCOMPARE(Child<QLineEdit>(&window, "txtbuffaddr")->text(), QStringLiteral("000000FF"));
    QCOMPARE(Child<QLineEdit>(&window, "txtbufladdr")->text(), QStringLiteral("0000FFFF"));
    QCOMPARE(Child<QLineEdit>(&window, "txteditaddr")->text(), QStringLiteral("000000FF"));
    QCOMPARE(Child<QListWidget>(&window, "List1")->count(), 0);
    QVERIFY(!Child<QPushButton>(&window, "cmdeditplus")->isEnabled());
    QCOMPARE(w.m.BufSize, Address{65281});
    QCOMPARE(w.settings.store.Read(kAddress, "LoadFirst", "?"), std::string("000000FF"));
    QCOMPARE(w.settings.store.Read(kAddress, "storedata", "?"), std::string("10"));
    // The dump works on the new area at once.
    QTest::mouseClick(Child<QPushButton>(&window, "cmdedit"), Qt::LeftButton);
    QCOMPARE(Child<QListWidget>(&window, "List1")->item(0)->text(),
             QStringLiteral("000000FF  ") + QString(32, QLatin1Char('F')));
  }

  void outOfMemoryKeepsTheDialogAndTheArea() {
    GuiWorld w;
    forms::frmsumtool window(w.ctx);
    window.show();
    w.m.At(0x10) = 0x42;
    std::vector<std::string> shownAfterRefusal;
    bool stillOpen = false;
    bool opened = false;
    WhenModalOpens<forms::frmbufaddr>(opened, [&](forms::frmbufaddr* d) {
      auto* text1 = Child<QLineEdit>(d, "Text1");
      auto* text2 = Child<QLineEdit>(d, "Text2");
      QTest::keyClick(text1, Qt::Key_Return);
      TypeInto(text1, QStringLiteral("0"));
      TypeInto(text2, QStringLiteral("ffffffff"));
      QTest::keyClick(text2, Qt::Key_Return);
      shownAfterRefusal = {forms::S(text1->text()), forms::S(text2->text())};
      stillOpen = d->isVisible() && Child<QPushButton>(d, "Cmdok")->isEnabled() &&
                  Child<QPushButton>(d, "Command1")->isEnabled();
      QTest::mouseClick(Child<QPushButton>(d, "Command1"), Qt::LeftButton);
    });
    OpenFromTheMenu(window);
    QVERIFY(opened);
    QCOMPARE(w.platform.Texts(), (std::vector<std::string>{"FirstAddress Error!", "Out of Memory"}));
    QCOMPARE(shownAfterRefusal, (std::vector<std::string>{"00000000", "FFFFFFFF"}));
    QVERIFY(stillOpen);
    QCOMPARE(w.m.BufSize, Address{0x80000});
    QCOMPARE(w.m.At(0x10), std::uint8_t{0x42});
    QCOMPARE(Child<QLineEdit>(&window, "txtbufladdr")->text(), QStringLiteral("0007FFFF"));
    QCOMPARE(w.settings.store.Read(kAddress, "storedata", "none"), std::string("none"));
  }
};

QTEST_MAIN(TestFrmBufAddr)
#include "test_frmbufaddr.moc"
