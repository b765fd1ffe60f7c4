#pragma once
// Opening the six dialogs of the main window. Each fills its fields from the
// store, runs modal, and returns when it has closed; what it changes in the
// main window it writes into Module1::frmsumtool.
#include <QString>
#include <QWidget>

#include "forms/FormSupport.h"

namespace kestrum::forms {

// picked, a file's full name, opens the lists at its folder with the file
// picked, as a click on it would.
void ShowFrmLoad(AppContext& ctx, QWidget* owner, const QString& picked = {});
void ShowFrmSave(AppContext& ctx, QWidget* owner);
void ShowFrmStore(AppContext& ctx, QWidget* owner);
void ShowFrmSum(AppContext& ctx, QWidget* owner);
void ShowFrmBufAddr(AppContext& ctx, QWidget* owner);
void ShowFrmVersion(QWidget* owner);

}  // namespace kestrum::forms
