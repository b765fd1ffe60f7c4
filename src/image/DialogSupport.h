#pragma once
// What the handlers named after the dialogs share: refusing empty fields,
// reading two address fields as a range, showing an outcome's words, and
// running checked work in the busy state.
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "image/Address.h"
#include "image/BusyScope.h"
#include "image/Outcome.h"
#include "image/Platform.h"

namespace kestrum {

// A range of addresses, both ends included.
struct AddressRange {
  Address first = 0;
  Address last = 0;

  bool operator==(const AddressRange&) const = default;
};

// Refused with the words of the first empty field, in the order given;
// done when every field holds text.
Outcome RefuseEmpty(std::initializer_list<std::pair<const std::string*, const char*>> fields);

// Pads both address fields in place and reads them.
AddressRange PadAndRead(std::string& firstText, std::string& lastText, std::string (*pad)(std::string_view));

// Shows the outcome's words, when it has any.
void ShowWords(Platform& platform, const Outcome& outcome);

// The shape of a dialog's action button after its fields are read: a
// refusal is shown and nothing runs; otherwise work runs with the hourglass
// up and buttons disabled, and its words are shown once both are restored.
// Gives the refusal or work's outcome.
template <typename Work>
Outcome RunChecked(const Outcome& checked, Platform& platform, std::initializer_list<bool*> buttons,
                   Work&& work) {
  if (!checked.IsDone()) {
    ShowWords(platform, checked);
    return checked;
  }
  Outcome done;
  {
    const BusyScope busy(platform, buttons);
    done = work();
  }
  ShowWords(platform, done);
  return done;
}

}  // namespace kestrum
