// The sheet as a picture: three columns of cells, drawn in memory.
#include <algorithm>

#include "app/caption_font.h"
#include "app/contact_sheet_output.h"
#include "imageio/samples.h"

namespace cvt::app {

using pipeline::Failed;
using pipeline::Image;
using pipeline::Ok;
using pipeline::Status;

namespace {

constexpr std::int32_t kColumns = 3;
constexpr std::int32_t kMargin = 40, kGap = 28;
constexpr std::int32_t kSwatches = 14;  // height of a row of them
constexpr std::int32_t kHeading = 64;   // what a heading takes
constexpr std::int32_t kAbove = 12;     // between a picture and what stands below it
constexpr std::int32_t kWide = 480;     // from here on there is room for letters twice as large

constexpr IRGB kPaper{244, 244, 241}, kInk{27, 27, 27}, kFaint{107, 107, 100}, kEdge{211, 211, 205};

struct Canvas {
  std::int32_t width = 0, height = 0;
  std::vector<std::uint8_t> rgb;
};

struct Pen {
  IRGB color;
  std::int32_t scale;  // pixels that a dot of a letter is wide and high
};
constexpr Pen kTitlePen{kInk, 5}, kHeadingPen{kInk, 3}, kSubtitlePen{kFaint, 2};

constexpr std::int32_t Advance(Pen pen) { return (kLetterWidth + 1) * pen.scale; }
constexpr std::int32_t LineHeight(Pen pen) { return (kLetterHeight + 4) * pen.scale; }

std::vector<std::string> LinesOf(const std::string& text, std::int32_t width, Pen pen) {
  return Wrapped(Letters(text), static_cast<std::size_t>(width / Advance(pen)));
}

std::int32_t HeightOf(const std::string& text, std::int32_t width, Pen pen) {
  return static_cast<std::int32_t>(LinesOf(text, width, pen).size()) * LineHeight(pen);
}

std::uint8_t* At(Canvas& canvas, std::int32_t x, std::int32_t y) {
  return canvas.rgb.data() + (std::int64_t{y} * canvas.width + x) * 3;
}

// Answers where the next pixel is.
std::uint8_t* Put(IRGB color, std::uint8_t* to) {
  const std::uint8_t pixel[] = {color.red, color.green, color.blue};
  return std::copy_n(pixel, 3, to);
}

void Fill(Canvas& canvas, std::int32_t x, std::int32_t y, Extent size, IRGB color) {
  for (std::int32_t row = y; row < y + size.height; ++row) {
    std::uint8_t* to = At(canvas, x, row);
    for (std::int32_t k = 0; k < size.width; ++k) to = Put(color, to);
  }
}

void Write(Canvas& canvas, std::int32_t x, std::int32_t y, Pen pen, std::string_view letters) {
  for (const char letter : letters) {
    for (std::int32_t row = 0; row < kLetterHeight; ++row) {
      for (std::int32_t column = 0; column < kLetterWidth; ++column) {
        if (!HasInk(letter, column, row)) continue;
        Fill(canvas, x + column * pen.scale, y + row * pen.scale, {pen.scale, pen.scale}, pen.color);
      }
    }
    x += Advance(pen);
  }
}

// Answers where the next line would be.
std::int32_t WriteLines(Canvas& canvas, std::int32_t x, std::int32_t y, std::int32_t width, Pen pen,
                        const std::string& text) {
  for (const std::string& line : LinesOf(text, width, pen)) {
    Write(canvas, x, y, pen, line);
    y += LineHeight(pen);
  }
  return y;
}

void DrawPicture(Canvas& canvas, std::int32_t x, std::int32_t y, const Picture& picture) {
  const Image& image = picture.image;
  Fill(canvas, x - 1, y - 1, {image.width + 2, image.height + 2}, kEdge);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(image.width));
  const std::uint8_t* row = picture.rows.data();
  for (std::int32_t k = 0; k < image.height; ++k, row += pipeline::RowBytes(image)) {
    std::uint8_t* to = At(canvas, x, y + k);
    if (image.palette.empty()) {
      std::copy_n(row, pixels.size() * 3, to);
      continue;
    }
    imageio::UnpackRow(row, image.width, pipeline::StoredBits(image.depth), imageio::SameValues(), pixels.data());
    for (const std::uint8_t index : pixels) to = Put(image.palette[index], to);
  }
}

void DrawSwatches(Canvas& canvas, std::int32_t x, std::int32_t y, std::int32_t width,
                  const std::vector<IRGB>& palette) {
  if (palette.empty()) return;
  const auto count = static_cast<std::int32_t>(palette.size());
  Fill(canvas, x - 1, y - 1, {width + 2, kSwatches + 2}, kEdge);
  for (std::int32_t k = 0; k < count; ++k) {
    const std::int32_t from = width * k / count;
    Fill(canvas, x + from, y, {width * (k + 1) / count - from, kSwatches}, palette[static_cast<std::size_t>(k)]);
  }
}

struct Layout {
  Extent picture, cell;
  std::int32_t titleHeight;  // of the original and of what stands beside it
  Pen name, facts, command;
};

std::int32_t TitleWidth(const Layout& layout) { return 2 * layout.cell.width + kGap; }

Layout LayoutOf(const Sheet& sheet) {
  const Image& image = sheet.original.picture.image;
  const std::int32_t width = std::max(kNarrowest, image.width);
  const std::int32_t scale = width < kWide ? 1 : 2;
  Layout layout{{image.width, image.height}, {width, 0}, 0, {kInk, scale + 1}, {kFaint, scale}, {kInk, scale}};
  std::int32_t below = 0;
  for (const SheetGroup& group : sheet.groups) {
    for (const SheetCell& cell : group.cells) {
      below = std::max(below, HeightOf(CommandLine(cell.words), width, layout.command));
    }
  }
  layout.cell.height =
      image.height + kAbove + LineHeight(layout.name) + kSwatches + kAbove + LineHeight(layout.facts) + below;
  layout.titleHeight =
      std::max(layout.cell.height, HeightOf(sheet.input, TitleWidth(layout), kTitlePen) +
                                       HeightOf(SubtitleOf(sheet), TitleWidth(layout), kSubtitlePen));
  return layout;
}

std::int32_t RowsOf(const SheetGroup& group) {
  return (static_cast<std::int32_t>(group.cells.size()) + kColumns - 1) / kColumns;
}

Status TakeCanvas(const Sheet& sheet, const Layout& layout, Canvas* taken) {
  Canvas& canvas = *taken;
  canvas.width = 2 * kMargin + kColumns * layout.cell.width + (kColumns - 1) * kGap;
  canvas.height = 2 * kMargin + layout.titleHeight;
  for (const SheetGroup& group : sheet.groups) {
    canvas.height += kGap + kHeading + RowsOf(group) * (layout.cell.height + kGap);
  }
  const std::uint64_t bytes =
      std::uint64_t{3} * static_cast<std::uint32_t>(canvas.width) * static_cast<std::uint32_t>(canvas.height);
  if (bytes > canvas.rgb.max_size()) return pipeline::OutOfMemory();
  canvas.rgb.resize(static_cast<std::size_t>(bytes));
  Fill(canvas, 0, 0, {canvas.width, canvas.height}, kPaper);
  return Ok();
}

void DrawCell(Canvas& canvas, std::int32_t x, std::int32_t y, const Layout& layout, const SheetCell& cell) {
  const std::int32_t width = layout.cell.width;
  DrawPicture(canvas, x, y, cell.picture);
  y = WriteLines(canvas, x, y + layout.picture.height + kAbove, width, layout.name, cell.name);
  DrawSwatches(canvas, x, y, width, cell.picture.image.palette);
  if (!cell.picture.image.palette.empty()) y += kSwatches + kAbove;
  y = WriteLines(canvas, x, y, width, layout.facts, FactsOf(cell.picture));
  WriteLines(canvas, x, y, width, layout.command, CommandLine(cell.words));
}

void DrawGroup(Canvas& canvas, std::int32_t y, const Layout& layout, const SheetGroup& group) {
  Fill(canvas, kMargin, y, {canvas.width - 2 * kMargin, 2}, kInk);
  Write(canvas, kMargin, y + 18, kHeadingPen, group.heading);
  std::int32_t index = 0;
  for (const SheetCell& cell : group.cells) {
    const std::int32_t x = kMargin + index % kColumns * (layout.cell.width + kGap);
    DrawCell(canvas, x, y + kHeading + index / kColumns * (layout.cell.height + kGap), layout, cell);
    ++index;
  }
}

}  // namespace

Status WriteSheetPicture(const Sheet& sheet, const pipeline::RowSink& sink) {
  const Layout layout = LayoutOf(sheet);
  Canvas canvas;
  if (Status failed = TakeCanvas(sheet, layout, &canvas); Failed(failed)) return failed;
  DrawCell(canvas, kMargin, kMargin, layout, sheet.original);
  const std::int32_t beside = kMargin + layout.cell.width + kGap;
  const std::int32_t width = TitleWidth(layout);
  const std::int32_t below = WriteLines(canvas, beside, kMargin, width, kTitlePen, sheet.input);
  WriteLines(canvas, beside, below, width, kSubtitlePen, SubtitleOf(sheet));
  std::int32_t y = kMargin + layout.titleHeight + kGap;
  for (const SheetGroup& group : sheet.groups) {
    DrawGroup(canvas, y, layout, group);
    y += kGap + kHeading + RowsOf(group) * (layout.cell.height + kGap);
  }
  if (Status failed = sink.begin({canvas.width, canvas.height, pipeline::kDirectDepth}); Failed(failed)) {
    return failed;
  }
  for (std::int32_t row = 0; row < canvas.height; ++row) {
    if (Status failed = sink.write(row, At(canvas, 0, row)); Failed(failed)) return failed;
  }
  return sink.end();
}

}  // namespace cvt::app
