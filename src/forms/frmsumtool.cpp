#include "forms/frmsumtool.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QListWidget>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>

#include "bufferops/ClearBuffer.h"
#include "bufferops/Dump.h"
#include "forms/Dialogs.h"
#include "image/KeyFilters.h"
#include "image/Startup.h"

namespace kestrum::forms {

namespace {

// The one local file of a drag, or empty when it carries anything else or
// a dialog is open.
QString DroppedFile(const QMimeData* data) {
  if (QApplication::activeModalWidget() || !data || !data->hasUrls()) return {};
  const QList<QUrl> urls = data->urls();
  if (urls.size() != 1 || !urls.front().isLocalFile()) return {};
  const QFileInfo file(urls.front().toLocalFile());
  return file.isFile() ? file.absoluteFilePath() : QString();
}

QLineEdit* MakeAddressBox(QWidget* parent, const char* name, QRect place) {
  auto* box = MakeChild<QLineEdit>(parent, name, place);
  box->setFont(MonoFont());
  return box;
}

}  // namespace

frmsumtool::frmsumtool(AppContext& ctx, QWidget* parent) : QMainWindow(parent), ctx_(ctx) {
  SetUpForm(this, "frmsumtool", QStringLiteral("Kestrum"), 8250, 3930);
  auto* client = new QWidget(this);
  client->setObjectName(QStringLiteral("client"));
  client->setFixedSize(Px(8250), Px(3930));
  setCentralWidget(client);

  auto* frame1 = MakeFrame(client, "Frame1", QStringLiteral("File Operation"), Twips(255, 210, 2685, 2070));
  auto* cmdload =
      MakeChild<QPushButton>(frame1, "cmdload", Twips(240, 270, 2160, 420), QStringLiteral("File Load"));
  auto* cmdsave =
      MakeChild<QPushButton>(frame1, "cmdsave", Twips(240, 690, 2160, 420), QStringLiteral("File Save"));
  MakeLabel(frame1, "Label8", QStringLiteral("Current File (Func F4)"), 630, 1275, 1515, 195);
  auto* Text1 = MakeChild<QLineEdit>(frame1, "Text1", Twips(255, 1530, 2160, 360));
  Text1->setEnabled(false);
  QPalette cyan = Text1->palette();
  for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    cyan.setColor(group, QPalette::Base, Qt::cyan);
    cyan.setColor(group, QPalette::Text, Qt::black);
  }
  Text1->setPalette(cyan);
  ShowNameWhole(Text1);

  auto* frame2 = MakeFrame(client, "Frame2", QStringLiteral("Buffer Operation"), Twips(3075, 210, 4890, 960));
  auto* cmdbufclear = MakeChild<QPushButton>(frame2, "cmdbufclear", Twips(255, 300, 1125, 450),
                                             QStringLiteral("Buffer Clear"));
  auto* cmdblstore = MakeChild<QPushButton>(frame2, "cmdblstore", Twips(1815, 300, 1125, 450),
                                            QStringLiteral("Block Store"));
  auto* cmdbufsum =
      MakeChild<QPushButton>(frame2, "cmdbufsum", Twips(3360, 300, 1125, 450), QStringLiteral("Buffer SUM"));

  auto* frame3 = MakeFrame(client, "Frame3", QStringLiteral("Buffer Dump"), Twips(3060, 1170, 4905, 2445));
  auto* cmdedit =
      MakeChild<QPushButton>(frame3, "cmdedit", Twips(360, 285, 705, 375), QStringLiteral("Dump"));
  MakeLabel(frame3, "Label1", QStringLiteral("Address"), 1305, 375, 570, 195);
  txteditaddr_ = MakeAddressBox(frame3, "txteditaddr", Twips(2010, 330, 1005, 315));
  HookKeyFilter(txteditaddr_, FilterAddressKey);
  QFont stepFont = font();
  stepFont.setPointSizeF(13.5);
  auto* cmdeditplus =
      MakeChild<QPushButton>(frame3, "cmdeditplus", Twips(3465, 255, 465, 465), QStringLiteral("+"));
  auto* cmdeditminus =
      MakeChild<QPushButton>(frame3, "cmdeditminus", Twips(3930, 255, 465, 465), QStringLiteral("-"));
  cmdeditplus->setFont(stepFont);
  cmdeditminus->setFont(stepFont);
  List1_ = MakeChild<QListWidget>(frame3, "List1", Twips(75, 780, 4755, 1530));
  List1_->setFont(MonoFont());
  List1_->setSelectionMode(QAbstractItemView::SingleSelection);

  auto* frame4 =
      MakeFrame(client, "Frame4", QStringLiteral("Buffer Area (Func D6)"), Twips(255, 2460, 2685, 1155));
  auto* txtbuffaddr = MakeAddressBox(frame4, "txtbuffaddr", Twips(1320, 300, 975, 330));
  auto* txtbufladdr = MakeAddressBox(frame4, "txtbufladdr", Twips(1320, 660, 975, 330));
  for (auto* box : {txtbuffaddr, txtbufladdr}) {
    box->setEnabled(false);
    box->setMaxLength(8);
  }
  MakeLabel(frame4, "Label3", QStringLiteral("First  Address"), 120, 310, 1035, 210);
  MakeLabel(frame4, "Label4", QStringLiteral("Last  Address"), 120, 670, 1035, 210);

  // Enter presses the focused button, as Space does.
  for (auto* button : client->findChildren<QPushButton*>()) button->setAutoDefault(true);
  cmdload->setToolTip(QStringLiteral("File Load (Alt+F, Load)"));
  cmdsave->setToolTip(QStringLiteral("File Save (Alt+F, Save)"));
  FitCaptions(client);

  // Focus follows the design's tab index.
  SetTabOrder({cmdload, cmdsave, cmdbufclear, cmdblstore, cmdbufsum, cmdedit, txteditaddr_, cmdeditplus,
               cmdeditminus, List1_});
  cmdload->setFocus();
  setAcceptDrops(true);

  auto* mnufile = menuBar()->addMenu(QStringLiteral("File(&F)"));
  mnufile->setObjectName(QStringLiteral("mnufile"));
  auto* mnuload = mnufile->addAction(QStringLiteral("Load"));
  mnuload->setObjectName(QStringLiteral("mnuload"));
  auto* mnusave = mnufile->addAction(QStringLiteral("Save"));
  mnusave->setObjectName(QStringLiteral("mnusave"));
  auto* mnuexit = mnufile->addAction(QStringLiteral("Exit"));
  mnuexit->setObjectName(QStringLiteral("mnuexit"));
  auto* mnusetup = menuBar()->addMenu(QStringLiteral("Set Up(&S)"));
  mnusetup->setObjectName(QStringLiteral("mnusetup"));
  auto* mnubufaddr = mnusetup->addAction(QStringLiteral("Buffer Address"));
  mnubufaddr->setObjectName(QStringLiteral("mnubufaddr"));
  auto* mnuhelp = menuBar()->addMenu(QStringLiteral("Help(&H)"));
  mnuhelp->setObjectName(QStringLiteral("mnuhelp"));
  auto* mnuversion = mnuhelp->addAction(QStringLiteral("Version"));
  mnuversion->setObjectName(QStringLiteral("mnuversion"));

  auto load = [this] { Run([this](Platform&) { ShowFrmLoad(ctx_, this); }); };
  auto save = [this] { Run([this](Platform&) { ShowFrmSave(ctx_, this); }); };
  connect(cmdload, &QPushButton::clicked, this, load);
  connect(mnuload, &QAction::triggered, this, load);
  connect(cmdsave, &QPushButton::clicked, this, save);
  connect(mnusave, &QAction::triggered, this, save);
  connect(cmdblstore, &QPushButton::clicked, this,
          [this] { Run([this](Platform&) { ShowFrmStore(ctx_, this); }); });
  connect(cmdbufsum, &QPushButton::clicked, this,
          [this] { Run([this](Platform&) { ShowFrmSum(ctx_, this); }); });
  namespace handlers = kestrum::frmsumtool;
  using Handler = void (*)(Module1&, Platform&);
  const std::pair<QPushButton*, Handler> buttons[] = {{cmdbufclear, handlers::cmdbufclear_Click},
                                                      {cmdedit, handlers::cmdedit_Click},
                                                      {cmdeditplus, handlers::cmdeditplus_Click},
                                                      {cmdeditminus, handlers::cmdeditminus_Click}};
  for (const auto& [button, handler] : buttons)
    connect(button, &QPushButton::clicked, this,
            [this, handler] { Run([&](Platform& p) { handler(ctx_.m, p); }); });
  connect(mnubufaddr, &QAction::triggered, this,
          [this] { Run([this](Platform&) { ShowFrmBufAddr(ctx_, this); }); });
  connect(mnuversion, &QAction::triggered, this, [this] { ShowFrmVersion(this); });
  connect(mnuexit, &QAction::triggered, this, &frmsumtool::Exit);

  fields_ = {{{&SumToolFields::txtbuffaddr, txtbuffaddr},
              {&SumToolFields::txtbufladdr, txtbufladdr},
              {&SumToolFields::Text1, Text1}},
             {{&SumToolFields::cmdeditplusEnabled, cmdeditplus},
              {&SumToolFields::cmdeditminusEnabled, cmdeditminus},
              {&SumToolFields::cmdloadEnabled, cmdload},
              {&SumToolFields::cmdsaveEnabled, cmdsave},
              {&SumToolFields::cmdbufclearEnabled, cmdbufclear},
              {&SumToolFields::cmdblstoreEnabled, cmdblstore},
              {&SumToolFields::cmdbufsumEnabled, cmdbufsum}}};
  started_ = handlers::Form_Load(ctx_.m, ctx_.store);
  ShowFields();
  // The menu bar stands above the client area.
  setFixedSize(sizeHint());
  CentreOn(this, ScreenArea(nullptr));
}

template <typename F>
void frmsumtool::Run(F&& handler) {
  ctx_.m.frmsumtool.txteditaddr = S(txteditaddr_->text());
  FormPlatform platform(ctx_.platform, [this] { ShowFields(); });
  handler(platform);
  ShowFields();
}

void frmsumtool::ShowFields() {
  const SumToolFields& w = ctx_.m.frmsumtool;
  fields_.Show(w);
  // Set only when it differs, so that what the user is typing keeps its cursor.
  if (txteditaddr_->text() != Q(w.txteditaddr)) txteditaddr_->setText(Q(w.txteditaddr));
  List1_->clear();
  for (const auto& row : w.List1) List1_->addItem(Q(row));
}

void frmsumtool::Exit() {
  StoreAreaOnExit(ctx_.m, ctx_.store);
  exited_ = true;
  hide();
  QCoreApplication::exit(0);
}

void frmsumtool::dragEnterEvent(QDragEnterEvent* event) {
  if (!DroppedFile(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void frmsumtool::dragMoveEvent(QDragMoveEvent* event) {
  if (!DroppedFile(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void frmsumtool::dropEvent(QDropEvent* event) {
  const QString file = DroppedFile(event->mimeData());
  if (file.isEmpty()) return;
  event->acceptProposedAction();
  // The drag ends first; the dialog runs modal after it.
  QMetaObject::invokeMethod(
      this, [this, file] { Run([this, &file](Platform&) { ShowFrmLoad(ctx_, this, file); }); },
      Qt::QueuedConnection);
}

void frmsumtool::closeEvent(QCloseEvent* event) {
  if (!exited_) StoreAreaOnExit(ctx_.m, ctx_.store);
  exited_ = true;
  event->accept();
}

}  // namespace kestrum::forms
