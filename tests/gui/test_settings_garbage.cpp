// A settings store that holds garbage: the window starts and every dialog
// opens, a value that is no text counting as missing, and a store that can't
// be read at all giving the defaults everywhere and taking nothing.
#include <QFile>

#include "GuiSupport.h"
#include "bufferops/StoreBlock.h"
#include "bufferops/SumDialog.h"
#include "image/Startup.h"
#include "reading/LoadDialog.h"
#include "writing/SaveFlow.h"

using namespace kestrum;
using namespace kestrum::test;
using kestrum::forms::Q;

namespace {

// What start-up and the four dialogs show from the store, in one line each.
QStringList Opened(SettingsStore& store) {
  Module1 m;
  const bool started = Form_Load(m, store);
  LoadFields load;
  cmdload_Click(load, store);
  SaveFields save;
  const SavePlaces places = cmdsave_Click(save, m, store);
  StoreFields fill;
  cmdblstore_Click(fill, m, store);
  SumFields sum;
  cmdbufsum_Click(sum, m, store);
  return {QString("start %1 %2 %3 %4").arg(started).arg(Q(m.frmsumtool.txtbuffaddr), Q(m.frmsumtool.txtbufladdr)).arg(m.BufSize, 0, 16),
          QStringList{"load", Q(load.Text4), Q(load.Text3), Q(load.Drive1), Q(load.Dir1)}.join('|'),
          QStringList{"save", Q(save.Text7), Q(save.Text6), Q(save.Text4), Q(save.Combo1), Q(save.Combo2), Q(save.Combo3),
                      Q(places.drive), Q(places.dir)}.join('|'),
          QStringList{"store", Q(fill.Text1), Q(fill.Text2), Q(fill.Text3)}.join('|'), "sum|" + Q(sum.Text6) + '|' + Q(sum.Text7)};
}

const QStringList kDefaults = {"start 1 00000000 0007FFFF 80000", "load|00000000|0007FFFF||",
                               "save|00000000|0007FFFF|10|Object File Only|BIN|8-8SUM||", "store|00000000|0007FFFF|00",
                               "sum|00000000|0007FFFF"};

}  // namespace

class TestSettingsGarbage : public QObject {
  Q_OBJECT
 private slots:
  void garbageOpensAsTheRulesSay_data() {
    QTest::addColumn<QByteArray>("store");
    QTest::addColumn<QStringList>("shown");
    QByteArray noise(4096, '\0');
    for (int i = 0; i < noise.size(); ++i) noise[i] = static_cast<char>((i * 7919 + 13) % 251);
    QTest::newRow("bytes of no format") << noise << kDefaults;
    QStringList fill = kDefaults;
    fill[3] = "store|00000000|0000FFFF|00";  // the one text among them
    QTest::newRow("values that are no text")
        << QByteArray("[Address]\nBufFirst=@Rect(1 2 3 4)\nBufLast=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x10NoSuchType)\n"
                      "LoadFirst=@Point(5 6)\nSaveFirst=@Size(1 1)\nstoreladdr=0000FFFF\n"
                      "[Format]\nFileType=@Rect(0 0 0 0)\n[FilePath]\nSaveDrive=@Point(0 0)\nSaveDir=/tmp\n")
        << fill;
    QTest::newRow("texts kept as they stand, unknown items leaving their list empty, a broken marker as text")
        << QByteArray("[Address]\nBufFirst=zz\nBufLast=12\nLoadLast=\"12345678901234567890\"\nSUMfaddr=@ByteArray(0000FFFF)\n"
                      "SUMladdr=\\x263a\nstoredata=@Variant(\n[Format]\nFileType=Object and YSM\nObjectFileFormat=hex\n"
                      "YSMFileFormat=32-32SUM\n[FilePath]\nLoadDir=/no/drive/before/it\n")
        << QStringList{"start 1 zz 12 120013", "load|00000000|12345678901234567890||", "save|zz|12|10||HEX|||",
                       "store|zz|12|@Variant(", "sum|0000FFFF|\u263a"};
  }

  void garbageOpensAsTheRulesSay() {
    QFETCH(QByteArray, store);
    TempSettings settings;
    QDir().mkpath(settings.path() + "/Morvi");
    QFile file(settings.path() + "/Morvi/Morvi.conf");
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(store) == store.size());
    file.close();
    QTEST(Opened(settings.store), "shown");
  }

  void aStoreThatCannotBeReadGivesTheDefaultsAndTakesNothing() {
    TempSettings settings;
    QVERIFY(QDir().mkpath(settings.path() + "/Morvi/Morvi.conf"));  // a folder where the file should be
    QCOMPARE(Opened(settings.store), kDefaults);
    Module1 m;
    QVERIFY(Form_Load(m, settings.store));
    StoreAreaOnExit(m, settings.store);
    QCOMPARE(Opened(settings.store), kDefaults);
  }
};

QTEST_MAIN(TestSettingsGarbage)
#include "test_settings_garbage.moc"
