// Names for C from the names of files.
#include <algorithm>
#include <string>
#include <string_view>

#include "imageio/c_file.h"

namespace cvt::imageio {

namespace {

// Words of C and C++, and macros that compilers define although nothing is included.
constexpr std::string_view kWords =
    " alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t char32_t char8_t class "
    "co_await co_return co_yield compl concept const const_cast consteval constexpr constinit continue decltype "
    "default delete do double dynamic_cast else enum explicit export extern false float for friend goto i386 if "
    "inline int linux long main mips mutable namespace new noexcept not not_eq nullptr operator or or_eq powerpc "
    "private protected public register reinterpret_cast requires restrict return short signed sizeof sparc static "
    "static_assert static_cast struct switch template this thread_local throw true try typedef typeid typename "
    "typeof typeof_unqual union unix unsigned using virtual void volatile while xor xor_eq PPC ";

// What <stdint.h> makes types and constants of, with an ending; the array's own constants end so as well.
constexpr std::string_view kIntegers =
    " int8 int16 int32 int64 int_fast8 int_fast16 int_fast32 int_fast64 int_least8 int_least16 int_least32 "
    "int_least64 intmax intptr ptrdiff sig_atomic size uint8 uint16 uint32 uint64 uint_fast8 uint_fast16 "
    "uint_fast32 uint_fast64 uint_least8 uint_least16 uint_least32 uint_least64 uintmax uintptr wchar wint ";
constexpr std::string_view kEndings[] = {"_t", "_min", "_max", "_width"};

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsAmong(std::string_view words, std::string_view word) {
  return words.find(" " + std::string(word) + " ") != std::string_view::npos;
}

// The constants are in capitals, whatever the name is in.
bool IsOfIntegers(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  std::string_view stem = name;
  for (const std::string_view ending : kEndings) {
    if (name.ends_with(ending)) stem.remove_suffix(ending.size());
  }
  return IsAmong(kIntegers, stem);
}

bool IsTaken(const std::string& name) { return IsAmong(kWords, name) || IsOfIntegers(name); }

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
