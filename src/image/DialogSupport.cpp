#include "image/DialogSupport.h"

namespace kestrum {

Outcome RefuseEmpty(std::initializer_list<std::pair<const std::string*, const char*>> fields) {
  for (const auto& [text, words] : fields)
    if (text->empty()) return Outcome::Refuse(words);
  return Outcome::Done();
}

AddressRange PadAndRead(std::string& firstText, std::string& lastText, std::string (*pad)(std::string_view)) {
  firstText = pad(firstText);
  lastText = pad(lastText);
  return {AddressFromText(firstText), AddressFromText(lastText)};
}

void ShowWords(Platform& platform, const Outcome& outcome) {
  if (!outcome.words.empty()) platform.MsgBox(outcome.words);
}

}  // namespace kestrum
