#pragma once
// Driving a modal dialog that a click of the main window is about to open:
// the click blocks in the dialog's own event loop, so the test's steps run
// from a timer inside that loop.
#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace kestrum::test {

// Runs drive on the dialog of type D once it runs modal, then closes it if
// drive left it open, so that the click returns. opened tells whether a D
// came up at all.
template <typename D>
void WhenModalOpens(bool& opened, std::function<void(D*)> drive) {
  opened = false;
  QTimer::singleShot(0, [&opened, drive] {
    QWidget* modal = QApplication::activeModalWidget();
    auto* dialog = qobject_cast<D*>(modal);
    if (!dialog) {
      if (modal) modal->close();
      return;
    }
    opened = true;
    drive(dialog);
    if (dialog->isVisible()) dialog->reject();
  });
}

}  // namespace kestrum::test
