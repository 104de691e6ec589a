// Names for C from the names of files.
#include <string>
#include <string_view>

#include "imageio/c_file.h"

namespace cvt::imageio {

namespace {

// Words of C and C++, and those that make constants of <stdint.h> with _WIDTH behind them.
constexpr std::string_view kTaken =
    " alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t char32_t char8_t class "
    "co_await co_return co_yield compl concept const const_cast consteval constexpr constinit continue decltype "
    "default delete do double dynamic_cast else enum explicit export extern false float for friend goto if inline "
    "int int16 int16_t int32 int32_t int64 int64_t int8 int8_t intmax intptr long main mutable namespace new "
    "noexcept not not_eq nullptr operator or or_eq private protected ptrdiff public register reinterpret_cast "
    "requires restrict return short signed size size_t sizeof static static_assert static_cast struct switch "
    "template this thread_local throw true try typedef typeid typename typeof typeof_unqual uint16 uint16_t "
    "uint32 uint32_t uint64 uint64_t uint8 uint8_t uintmax uintptr union unsigned using virtual void volatile "
    "wchar wchar_t while wint xor xor_eq ";

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsTaken(const std::string& name) { return kTaken.find(" " + name + " ") != std::string_view::npos; }

}  // namespace

std::string CName(const std::string& path) {
  if (path == "-") return "image";
  std::string_view stem = std::string_view(path).substr(path.rfind('/') + 1);
  stem = stem.substr(0, stem.rfind('.'));
  std::string name;
  for (const char c : stem) {
    const bool kept = IsLetter(c) || (c >= '0' && c <= '9');
    if (kept || !name.ends_with('_')) name += kept ? c : '_';  // two _ in a row are not for users
  }
  if (!name.empty() && IsLetter(name.front()) && !IsTaken(name)) return name;
  return name.starts_with('_') ? "image" + name : name.empty() ? "image" : "image_" + name;
}

}  // namespace cvt::imageio
