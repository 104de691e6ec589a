// --palette: names, files and lists of colours.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "app/report.h"
#include "cvt/records.h"

namespace cvt::app {

enum class PaletteKind : std::uint8_t { None, Gray, Cube, Adaptive, Colors };

/// A palette as wished for, before the image and the depth are known.
struct PaletteWish {
  PaletteKind kind = PaletteKind::None;
  std::vector<IRGB> colors = {};   // Colors: what pixels are matched against
  std::vector<IRGB> written = {};  // Colors: what the output tells instead; empty: the same
};

struct NamedPalette {
  const char* name;
  const char* what;
  PaletteKind kind;
  std::span<const IRGB> colors = {};
  std::span<const IRGB> written = {};
};

std::span<const NamedPalette> NamedPalettes();

Outcome ReadPaletteWish(const std::optional<std::string>& spec, PaletteWish* wish);

}  // namespace cvt::app
