#pragma once
#include <QMainWindow>

#include "forms/FormSupport.h"

class QListWidget;

namespace kestrum::forms {

// The main window: file, buffer and dump operations, and the buffer area.
// Its fields live in Module1::frmsumtool; the widgets show them. A file
// dropped on it opens File Load with that file picked.
class frmsumtool : public QMainWindow {
  Q_OBJECT
 public:
  // Runs the start-up: the area from the store, the image sized and cleared.
  explicit frmsumtool(AppContext& ctx, QWidget* parent = nullptr);

  // Copies the fields of Module1 to the widgets.
  void ShowFields();

  // False when not even the default area could be had at start-up.
  bool started() const { return started_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // Runs a handler of the core between reading the typed field and showing
  // the fields again.
  template <typename F>
  void Run(F&& handler);
  void Exit();

  AppContext& ctx_;
  bool exited_ = false;
  bool started_ = false;
  FieldWidgets<SumToolFields> fields_;  // the area, the current file and the buttons
  QLineEdit* txteditaddr_ = nullptr;
  QListWidget* List1_ = nullptr;
};

}  // namespace kestrum::forms
