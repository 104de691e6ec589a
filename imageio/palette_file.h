// Palettes from files, and colours from words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cvt/records.h"
#include "pipeline/status.h"

namespace cvt::imageio {

/// Reads a palette: a .gpl file (a colour a line, three numbers and a name), a .hex file (rrggbb a line, with
/// or without #), a JASC .pal file, or the palette of an indexed .png file, whose transparency is not looked
/// at. 1 to 256 colours, order kept.
///
/// Code::Usage  another suffix
/// Code::Input  missing, unreadable, malformed or a PNG without a palette; the message tells the line
pipeline::Status ReadPalette(const std::string& path, std::vector<IRGB>* palette);

/// Whether the suffix is that of a palette file.
bool IsPaletteFile(const std::string& path);

/// Six hexadecimal digits, red first; nothing if it is anything else.
std::optional<IRGB> HexColor(std::string_view digits);

}  // namespace cvt::imageio
