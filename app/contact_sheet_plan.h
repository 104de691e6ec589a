// What is on a contact sheet: which pictures, and the command lines that make them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/option_table.h"
#include "pipeline/image.h"

namespace cvt::app {

/// What stands below a picture takes so much of the width, even below a narrow one.
inline constexpr std::int32_t kNarrowest = 300;

/// A picture as its command line makes it.
struct Picture {
  pipeline::Image image;           // of the rows
  std::vector<std::uint8_t> rows;  // RowBytes apart
  std::string png;                 // the file
};

struct SheetCell {
  std::string name;
  std::vector<std::string> words;  // of the command line, from r2r on
  Picture picture = {};
};

struct SheetGroup {
  std::string heading;
  std::vector<SheetCell> cells;
};

struct Sheet {
  std::string input;  // its name, without folders
  SheetCell original;
  std::vector<SheetGroup> groups;
};

/// The sheet for an image, its pictures still empty. Pictures that would be large are made smaller, unless
/// the user says their size.
Sheet PlanSheet(const Arguments& arguments, Extent image);

/// All cells, the original first.
std::vector<SheetCell*> CellsOf(Sheet& sheet);

/// The size of the pictures.
Extent PictureSize(const Arguments& arguments, Extent image);

/// What a shell takes apart into the words again.
std::string CommandLine(const std::vector<std::string>& words);

/// What is told below a picture: its size, its colours, the bytes of its file.
std::string FactsOf(const Picture& picture);

/// What is said of the whole sheet.
std::string SubtitleOf(const Sheet& sheet);

}  // namespace cvt::app
