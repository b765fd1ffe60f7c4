#pragma once
// What every form shares: the context it works in, design sizes in twips,
// fonts, and the key filters hooked to text boxes.
#include <QComboBox>
#include <QDialog>
#include <QFont>
#include <QGroupBox>
#include <QIcon>
#include <QLineEdit>
#include <QObject>
#include <QPushButton>
#include <QRect>
#include <QString>
#include <QWidget>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "image/Module1.h"
#include "image/Platform.h"
#include "image/Settings.h"

namespace kestrum::forms {

// The shared state and the two seams, owned by the program.
struct AppContext {
  Module1& m;
  Platform& platform;
  SettingsStore& store;
};

// Design sizes are in twips; 15 twips make a pixel at 100 % scale. Qt scales
// the pixels on high-resolution screens.
constexpr int Px(int twips) { return (twips + 7) / 15; }
inline QRect Twips(int left, int top, int width, int height) {
  return QRect(Px(left), Px(top), Px(width), Px(height));
}

// The platform as a form hands it to a handler of the core: when a busy
// scope begins or ends, show first copies the core's fields to the form's
// widgets, then the platform paints them, before the work goes on.
class FormPlatform : public Platform {
 public:
  FormPlatform(Platform& platform, std::function<void()> show)
      : platform_(platform), show_(std::move(show)) {}
  int MsgBox(const std::string& text, int style, const std::string& title) override {
    return platform_.MsgBox(text, style, title);
  }
  void SetMousePointer(int pointer) override { platform_.SetMousePointer(pointer); }
  void BusyChanged() override {
    show_();
    platform_.BusyChanged();
  }

 private:
  Platform& platform_;
  std::function<void()> show_;
};

inline QString Q(const std::string& s) { return QString::fromStdString(s); }
inline std::string S(const QString& s) { return s.toStdString(); }

// A form's fields of the core tied to its widgets: each text to a box, each
// Enabled flag to a button.
template <typename Fields>
struct FieldWidgets {
  std::vector<std::pair<std::string Fields::*, QLineEdit*>> texts;
  std::vector<std::pair<bool Fields::*, QPushButton*>> buttons;

  Fields Read() const {
    Fields f;
    for (const auto& [field, box] : texts) f.*field = S(box->text());
    for (const auto& [field, button] : buttons) f.*field = button->isEnabled();
    return f;
  }
  void Show(const Fields& f) const {
    for (const auto& [field, box] : texts) box->setText(Q(f.*field));
    for (const auto& [field, button] : buttons) button->setEnabled(f.*field);
  }
};

// Presses a dialog's button whose work the core does: handler runs on the
// fields with a platform that shows them (through show) whenever the busy
// state changes, the fields come back to the widgets, and the dialog
// closes when the handler says so.
template <typename Fields, typename Show, typename Handler>
void PressButton(QDialog* dialog, Platform& platform, Fields f, Show show, Handler handler) {
  FormPlatform shown(platform, [&] { show(f); });
  const bool close = handler(f, shown);
  show(f);
  if (close) dialog->accept();
}

// The font of the forms' captions, buttons and boxes: a sans serif outline
// font at 8 pt, of the metrics the design sizes were made for.
QFont FormFont();

// What every form shares: object name, caption, font, a client area of the
// design's twips that can't be resized, disabled text boxes that stay
// readable. A dialog gets a fixed border with only a close button.
void SetUpForm(QWidget* form, const char* name, const QString& caption, int widthTwips, int heightTwips);

// Moves window so that it stands centred on area, with the frame the
// window manager draws round it (for a dialog not yet shown, the frame of
// its owner).
void CentreOn(QWidget* window, const QRect& area);

// The part of the screen a window of owner may take.
QRect ScreenArea(const QWidget* owner);

// A child widget with the given object name, placed by its design size.
template <typename W, typename... Args>
W* MakeChild(QWidget* parent, const char* name, QRect place, Args&&... args) {
  auto* w = new W(std::forward<Args>(args)..., parent);
  w->setObjectName(QString::fromLatin1(name));
  if (!place.isNull()) w->setGeometry(place);
  return w;
}

// A label whose size follows its caption, placed at left, top.
QWidget* MakeLabel(QWidget* parent, const char* name, const QString& caption, int left, int top,
                   int width = 0, int height = 0);

// A frame with a blue caption drawn on its top line, so that its inside
// begins half a caption below its top, as the design places its contents.
QGroupBox* MakeFrame(QWidget* parent, const char* name, const QString& caption, QRect place);

// The monospaced font of address fields and the dump: "Courier New" at
// 8.25 pt where the system has it, else the nearest monospaced outline font
// (never a bitmap font, which would be scaled up on high-resolution screens).
QFont MonoFont(double points = 8.25);

// Moves each label and check box of form (at any depth) left of its design
// place where its caption, in this system's font, would run into the
// control to its right or out of its frame; a label that lacks room even
// then breaks between its words, centred on its row and ending at the
// control. Captions keep their font. Gives the most pixels that a caption
// still lacks after that.
int FitCaptions(QWidget* form);

// Widens a drop-down list to its longest item, as far as the room to its
// right allows.
void FitDropDown(QComboBox* list);

// Makes def the button of Enter and cancel the one Esc stands for (a dialog
// rejects on Esc by itself; cancel must do no more than that), and names
// the keys in their tool tips. def and cancel may be the same button.
void SetDefaultAndCancel(QPushButton* def, QPushButton* cancel);

// Tab moves through the widgets in the order given.
void SetTabOrder(std::initializer_list<QWidget*> order);

// The program's icon, from the resources.
QIcon AppIcon();

// Where a frame of MakeFrame draws its caption, in the frame, and the top
// of its inside, below its line.
QRect FrameCaptionRect(const QGroupBox* frame);
int FrameInnerTop(const QGroupBox* frame);

// A box that shows a name: from its start, and whole in its tool tip.
void ShowNameWhole(QLineEdit* box);

using KeyFilter = int (*)(std::string_view fieldText, int keyCode);

// Runs every typed key of edit through filter before the field sees it.
void HookKeyFilter(QLineEdit* edit, KeyFilter filter);

}  // namespace kestrum::forms
