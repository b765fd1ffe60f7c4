#include "forms/FormSupport.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLabel>

namespace kestrum::forms {

QWidget* MakeLabel(QWidget* parent, const char* name, const QString& caption, int left, int top,
                   int width, int height) {
  auto* label = new QLabel(caption, parent);
  label->setObjectName(QString::fromLatin1(name));
  label->move(Px(left), Px(top));
  label->adjustSize();
  // The design size is a minimum: a caption is never clipped by it.
  if (width > 0) label->resize(std::max(label->width(), Px(width)), std::max(label->height(), Px(height)));
  return label;
}

QGroupBox* MakeFrame(QWidget* parent, const char* name, const QString& caption, QRect place) {
  auto* frame = new QGroupBox(caption, parent);
  frame->setObjectName(QString::fromLatin1(name));
  frame->setGeometry(place);
  frame->setStyleSheet(QStringLiteral("QGroupBox#%1::title { color: blue; }").arg(QString::fromLatin1(name)));
  return frame;
}

QFont MonoFont(double points) {
  QFont font(QStringLiteral("Courier New"));
  font.setStyleHint(QFont::TypeWriter);
  font.setFixedPitch(true);
  font.setPointSizeF(points);
  return font;
}

void SetClientSize(QWidget* form, int widthTwips, int heightTwips) {
  form->setFixedSize(Px(widthTwips), Px(heightTwips));
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
