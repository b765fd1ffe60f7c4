#pragma once
// The kinds of file the program reads and writes and the sums it works
// out, each with the one table of the names the dialogs list, the
// settings store and the messages use.
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>

namespace kestrum {

enum class ObjectFormat { BIN, HEX, S };
enum class SumKind { Sum8_8, Sum8_16, Sum16_16 };
// What a save writes.
enum class FileType { ObjectOnly, YsmOnly, ObjectAndYsm };

inline constexpr std::array<std::string_view, 3> kObjectFormatNames = {"BIN", "HEX", "S"};
inline constexpr std::array<std::string_view, 3> kSumKindNames = {"8-8SUM", "8-16SUM", "16-16SUM"};
inline constexpr std::array<std::string_view, 3> kFileTypeNames = {"Object File Only", "YSM File Only",
                                                                   "Object and YSM File"};

template <typename E>
constexpr const std::array<std::string_view, 3>& NamesOf() {
  if constexpr (std::is_same_v<E, ObjectFormat>)
    return kObjectFormatNames;
  else if constexpr (std::is_same_v<E, SumKind>)
    return kSumKindNames;
  else
    return kFileTypeNames;
}

// "BIN", "8-16SUM", "YSM File Only"...
template <typename E>
constexpr std::string_view NameOf(E value) {
  return NamesOf<E>()[static_cast<std::size_t>(value)];
}

// The value whose name equals text, ignoring case; none for any other text.
template <typename E>
constexpr std::optional<E> FromName(std::string_view text) {
  const auto& names = NamesOf<E>();
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string_view name = names[i];
    bool same = name.size() == text.size();
    for (std::size_t k = 0; same && k < name.size(); ++k) {
      const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
      same = lower(name[k]) == lower(text[k]);
    }
    if (same) return static_cast<E>(i);
  }
  return std::nullopt;
}

}  // namespace kestrum
