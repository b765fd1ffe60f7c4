#pragma once
// Opening the six dialogs of the main window. Each fills its fields from the
// store, runs modal, and returns when it has closed; what it changes in the
// main window it writes into Module1::frmsumtool.
#include <QWidget>

#include "forms/FormSupport.h"

namespace kestrum::forms {

void ShowFrmLoad(AppContext& ctx, QWidget* owner);
void ShowFrmSave(AppContext& ctx, QWidget* owner);
void ShowFrmStore(AppContext& ctx, QWidget* owner);
void ShowFrmSum(AppContext& ctx, QWidget* owner);
void ShowFrmBufAddr(AppContext& ctx, QWidget* owner);
void ShowFrmVersion(QWidget* owner);

}  // namespace kestrum::forms
