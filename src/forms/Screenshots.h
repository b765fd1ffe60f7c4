#pragma once
#include <QString>

namespace kestrum::forms {

// Opens each of the seven windows in turn, as a user first meets them (an
// empty store, the lists at the current folder), and saves a PNG of each
// into dir under the form's name. objectFile, when given, is loaded into
// the image first and the main window shows its dump. Gives the number of
// pictures that could not be made.
int SaveScreenshots(const QString& dir, const QString& objectFile = {});

}  // namespace kestrum::forms
