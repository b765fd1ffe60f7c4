#include "image/BusyScope.h"

namespace kestrum {

BusyScope::BusyScope(Platform& platform, std::initializer_list<bool*> buttons)
    : platform_(platform), buttons_(buttons) {
  platform_.SetMousePointer(vbHourglass);
  for (bool* enabled : buttons_) *enabled = false;
  platform_.BusyChanged();
}

void BusyScope::End() {
  if (!busy_) return;
  busy_ = false;
  platform_.SetMousePointer(vbDefault);
  for (bool* enabled : buttons_) *enabled = true;
  platform_.BusyChanged();
}

}  // namespace kestrum
