#include "forms/FormSupport.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <QStringList>
#include <QStyle>
#include <algorithm>

namespace kestrum::forms {

QWidget* MakeLabel(QWidget* parent, const char* name, const QString& caption, int left, int top, int width,
                   int height) {
  auto* label = new QLabel(caption, parent);
  label->setObjectName(QString::fromLatin1(name));
  label->move(Px(left), Px(top));
  label->adjustSize();
  // The design size is a minimum: a caption is never clipped by it.
  if (width > 0) label->resize(std::max(label->width(), Px(width)), std::max(label->height(), Px(height)));
  return label;
}

namespace {

// A frame drawn as designed: an etched line whose top runs through the
// middle of the blue caption.
class Frame : public QGroupBox {
 public:
  using QGroupBox::QGroupBox;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QRect caption = FrameCaptionRect(this);
    const QRect line(0, FrameInnerTop(this) - 2, width() - 1, height() - FrameInnerTop(this) + 1);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(line.adjusted(0, 0, -1, -1));
    painter.setPen(palette().color(QPalette::Light));
    painter.drawRect(line.adjusted(1, 1, 0, 0));
    painter.fillRect(caption, palette().window());
    painter.setPen(Qt::blue);
    painter.drawText(caption, Qt::AlignCenter, title());
  }
};

}  // namespace

QGroupBox* MakeFrame(QWidget* parent, const char* name, const QString& caption, QRect place) {
  auto* frame = new Frame(caption, parent);
  frame->setObjectName(QString::fromLatin1(name));
  frame->setGeometry(place);
  return frame;
}

QFont FormFont() {
  QFont font;
  font.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Arial"), QStringLiteral("Arimo"),
                    QStringLiteral("Nimbus Sans"), QStringLiteral("DejaVu Sans")});
  font.setStyleHint(QFont::SansSerif, QFont::ForceOutline);
  font.setPointSizeF(8);
  return font;
}

void SetUpForm(QWidget* form, const char* name, const QString& caption, int widthTwips, int heightTwips) {
  form->setObjectName(QString::fromLatin1(name));
  form->setWindowTitle(caption);
  // A fixed border: no minimize and no maximize button, no resizing.
  const Qt::WindowFlags kind = qobject_cast<QDialog*>(form) ? Qt::Dialog : Qt::Window;
  form->setWindowFlags(kind | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                       Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint);
  form->setFont(FormFont());
  form->setFixedSize(Px(widthTwips), Px(heightTwips));
  // A disabled text box holds what the user came for (a sum, the area, the
  // picked file): dark text on the form's grey instead of the white of a
  // field that takes typing.
  QPalette palette = form->palette();
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x30, 0x30, 0x30));
  palette.setColor(QPalette::Disabled, QPalette::Base, palette.color(QPalette::Active, QPalette::Window));
  form->setPalette(palette);
}

void CentreOn(QWidget* window, const QRect& area) {
  if (area.isEmpty()) return;
  QRect place = window->frameGeometry();
  // Before it shows, a dialog's frame is not known: its owner's tells what
  // the window manager will add.
  const QWidget* owner = window->parentWidget() ? window->parentWidget()->window() : nullptr;
  if (!window->isVisible() && owner && owner->isVisible()) {
    const QRect inner = owner->geometry(), outer = owner->frameGeometry();
    place.adjust(outer.left() - inner.left(), outer.top() - inner.top(), outer.right() - inner.right(),
                 outer.bottom() - inner.bottom());
  }
  place.moveCenter(area.center());
  window->move(place.topLeft());
}

QRect ScreenArea(const QWidget* owner) {
  const QScreen* screen = owner ? owner->screen() : QGuiApplication::primaryScreen();
  return screen ? screen->availableGeometry() : QRect();
}

QFont MonoFont(double points) {
  QFont font;
  font.setFamilies({QStringLiteral("Courier New"), QStringLiteral("Liberation Mono"),
                    QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Monospace")});
  font.setStyleHint(QFont::TypeWriter, QFont::ForceOutline);
  font.setFixedPitch(true);
  font.setPointSizeF(points);
  return font;
}

namespace {

constexpr int kCaptionGap = 3;  // between a caption and the control it names
constexpr int kEdge = 2;        // kept free inside a form's or frame's edge

bool IsCaption(const QWidget* w) {
  return qobject_cast<const QLabel*>(w) || qobject_cast<const QCheckBox*>(w);
}

bool SameRow(const QRect& a, const QRect& b) { return a.top() <= b.bottom() && b.top() <= a.bottom(); }

}  // namespace

QRect FrameCaptionRect(const QGroupBox* frame) {
  const QFontMetrics metrics(frame->font());
  return QRect(6, 0, metrics.horizontalAdvance(frame->title()) + 4, metrics.height());
}

int FrameInnerTop(const QGroupBox* frame) { return QFontMetrics(frame->font()).height() / 2 + 2; }

int FitCaptions(QWidget* form) {
  int lacking = 0;
  for (QWidget* caption : form->findChildren<QWidget*>()) {
    if (!IsCaption(caption) || caption->isWindow()) continue;
    const QWidget* parent = caption->parentWidget();
    const QSize need = caption->sizeHint();
    QRect row = caption->geometry();
    row.setHeight(std::max(row.height(), need.height()));
    // Hidden controls count: they show up later in the same place.
    int floor = kEdge;
    int limit = parent->width() - kEdge;
    for (const QWidget* sibling : parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      if (sibling == caption || sibling->isWindow() || !SameRow(row, sibling->geometry())) continue;
      if (sibling->x() > caption->x()) {
        limit = std::min(limit, sibling->x() - kCaptionGap);
      } else if (sibling->geometry().right() < caption->x()) {
        floor = std::max(floor, sibling->geometry().right() + 1 + kCaptionGap);
      }
    }
    int x = caption->x();
    if (x + need.width() > limit) x = std::max(floor, limit - need.width());
    if (x + need.width() <= limit) {
      // The design width is kept where there is room for it.
      const int width = std::max(need.width(), std::min(caption->width(), limit - x));
      caption->setGeometry(x, caption->y(), width, row.height());
      continue;
    }
    // No room on one line: a label breaks between its words, centred on its row.
    auto* label = qobject_cast<QLabel*>(caption);
    if (!label) {
      lacking = std::max(lacking, x + need.width() - limit);
      continue;
    }
    const QRect lines =
        label->fontMetrics().boundingRect(QRect(0, 0, limit - floor, 1000), Qt::TextWordWrap, label->text());
    lacking = std::max(lacking, lines.width() - (limit - floor));
    const auto* frame = qobject_cast<const QGroupBox*>(parent);
    const int top = frame ? FrameCaptionRect(frame).bottom() + 1 : 0;
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignRight |
                        Qt::AlignVCenter);  // its lines end at the control, as one line would
    label->setGeometry(std::max(floor, limit - lines.width()),
                       std::max(top, row.center().y() - lines.height() / 2),
                       std::min(lines.width(), limit - floor), lines.height());
  }
  return lacking;
}

void FitDropDown(QComboBox* list) {
  const QWidget* parent = list->parentWidget();
  int limit = parent->width() - kEdge;
  for (const QWidget* sibling : parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    if (sibling != list && !sibling->isWindow() && sibling->x() > list->x() &&
        SameRow(list->geometry(), sibling->geometry())) {
      limit = std::min(limit, sibling->x() - kCaptionGap);
    }
  }
  list->resize(std::max(list->width(), std::min(list->sizeHint().width(), limit - list->x())),
               list->height());
}

void SetDefaultAndCancel(QPushButton* def, QPushButton* cancel) {
  def->setDefault(true);
  if (def == cancel) {
    def->setToolTip(QStringLiteral("%1 (Enter, Esc)").arg(def->text()));
    return;
  }
  def->setToolTip(QStringLiteral("%1 (Enter)").arg(def->text()));
  cancel->setToolTip(QStringLiteral("%1 (Esc)").arg(cancel->text()));
}

void SetTabOrder(std::initializer_list<QWidget*> order) {
  for (auto it = order.begin(); it + 1 < order.end(); ++it) QWidget::setTabOrder(*it, *(it + 1));
}

void ShowNameWhole(QLineEdit* box) {
  QObject::connect(box, &QLineEdit::textChanged, box, [box](const QString& text) {
    box->setToolTip(text);
    box->setCursorPosition(0);
  });
}

QIcon AppIcon() {
  QIcon icon;
  for (int size : {16, 32, 48, 256}) {
    icon.addFile(QStringLiteral(":/kestrum/kestrum-%1.png").arg(size), QSize(size, size));
  }
  return icon;
}

namespace {

// The character code a key press hands a filter, or -1 for keys that type
// nothing (moves, Delete, Enter and Esc, which belong to the dialog).
int KeyCodeOf(const QKeyEvent* key) {
  switch (key->key()) {
    case Qt::Key_Backspace:
      return 8;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Delete:
    case Qt::Key_Insert:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      return -1;
    default:
      break;
  }
  if ((key->modifiers() & Qt::ControlModifier) && key->key() >= Qt::Key_A && key->key() <= Qt::Key_Z)
    return key->key() - Qt::Key_A + 1;
  const QString text = key->text();
  if (text.isEmpty()) return -1;
  const char16_t c = text.at(0).unicode();
  return c < 0x8000 ? static_cast<int>(c) : -static_cast<int>(0x10000 - c);
}

class KeyFilterHook : public QObject {
 public:
  KeyFilterHook(QLineEdit* edit, KeyFilter filter) : QObject(edit), edit_(edit), filter_(filter) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched != edit_ || event->type() != QEvent::KeyPress) return false;
    const int code = KeyCodeOf(static_cast<QKeyEvent*>(event));
    if (code < 0) return false;
    const int passed = filter_(edit_->text().toStdString(), code);
    if (passed == 0) return true;
    if (passed == 8 && code == 8) return false;
    edit_->insert(QString(QChar(static_cast<char16_t>(passed))));
    return true;
  }

 private:
  QLineEdit* edit_;
  KeyFilter filter_;
};

}  // namespace

void HookKeyFilter(QLineEdit* edit, KeyFilter filter) {
  edit->installEventFilter(new KeyFilterHook(edit, filter));
}

}  // namespace kestrum::forms
