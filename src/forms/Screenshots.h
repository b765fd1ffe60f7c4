#pragma once
#include <QString>

#include "forms/FormSupport.h"

namespace kestrum::forms {

// Opens each window in turn, as the user first meets it, and saves a PNG of
// it into dir. Gives the number of pictures that could not be saved.
int SaveScreenshots(AppContext& ctx, const QString& dir);

}  // namespace kestrum::forms
