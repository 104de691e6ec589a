#include <algorithm>

#include "app/caption_font.h"
#include "app/contact_sheet_output.h"

namespace cvt::app {

using pipeline::Failed;
using pipeline::Image;
using pipeline::Status;

namespace {

constexpr std::int32_t kColumns = 3;
constexpr std::int32_t kMargin = 40, kGap = 28;
constexpr std::int32_t kNarrowest = 300;  // of what stands below a picture
constexpr std::int32_t kSwatches = 14;    // height of a row of them
constexpr std::int32_t kHeading = 64;     // what a heading takes
constexpr std::int32_t kAbove = 12;       // between a picture and what stands below it
constexpr std::int32_t kNameLine = 26, kCommandLine = 14;

constexpr IRGB kPaper{244, 244, 241}, kInk{27, 27, 27}, kFaint{107, 107, 100}, kEdge{211, 211, 205};

struct Canvas {
  std::int32_t width, height;
  std::vector<std::uint8_t> rgb;
};

struct Pen {
  IRGB color;
  std::int32_t scale;  // pixels that a dot of a letter is wide and high
};
constexpr Pen kTitlePen{kInk, 4}, kHeadingPen{kInk, 3}, kNamePen{kInk, 2}, kCommandPen{kInk, 1},
    kFactsPen{kFaint, 1}, kSubtitlePen{kFaint, 2};

constexpr std::int32_t Advance(Pen pen) { return (kLetterWidth + 1) * pen.scale; }

std::size_t LettersIn(std::int32_t width, Pen pen) {
  return static_cast<std::size_t>(std::max(1, width / Advance(pen)));
}

void Fill(Canvas& canvas, std::int32_t x, std::int32_t y, Extent size, IRGB color) {
  for (std::int32_t row = y; row < y + size.height; ++row) {
    const std::int64_t start = (std::int64_t{row} * canvas.width + x) * 3;
    std::uint8_t* to = canvas.rgb.data() + start;
    for (std::int32_t k = 0; k < size.width; ++k, to += 3) {
      to[0] = color.red;
      to[1] = color.green;
      to[2] = color.blue;
    }
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
  for (const std::string& line : Wrapped(Letters(text), LettersIn(width, pen))) {
    Write(canvas, x, y, pen, line);
    y += kCommandLine * pen.scale;
  }
  return y;
}

IRGB ColorAt(const Picture& picture, std::int32_t x, std::int32_t y) {
  const Image& image = picture.image;
  const std::uint8_t* row = picture.rows.data() + pipeline::RowBytes(image) * static_cast<std::size_t>(y);
  if (image.palette.empty()) return {row[3 * x], row[3 * x + 1], row[3 * x + 2]};
  const std::int32_t bits = pipeline::StoredBits(image.depth);
  const std::int32_t bit = x * bits;
  return image.palette[static_cast<std::size_t>(row[bit / 8] >> (8 - bits - bit % 8) & ((1 << bits) - 1))];
}

void DrawPicture(Canvas& canvas, std::int32_t x, std::int32_t y, const Picture& picture) {
  const Image& image = picture.image;
  Fill(canvas, x - 1, y - 1, {image.width + 2, image.height + 2}, kEdge);
  for (std::int32_t row = 0; row < image.height; ++row) {
    for (std::int32_t column = 0; column < image.width; ++column) {
      Fill(canvas, x + column, y + row, {1, 1}, ColorAt(picture, column, row));
    }
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
  Extent picture;
  std::int32_t cellWidth, cellHeight;
};

Layout LayoutOf(const Sheet& sheet) {
  const Image& image = sheet.original.picture.image;
  Layout layout{{image.width, image.height}, std::max(kNarrowest, image.width), 0};
  std::size_t lines = 0;
  for (const SheetGroup& group : sheet.groups) {
    for (const SheetCell& cell : group.cells) {
      const std::string letters = Letters(CommandLine(cell.words));
      lines = std::max(lines, Wrapped(letters, LettersIn(layout.cellWidth, kCommandPen)).size());
    }
  }
  layout.cellHeight =
      image.height + kAbove + kNameLine + kSwatches + kAbove + static_cast<std::int32_t>(lines) * kCommandLine;
  return layout;
}

std::int32_t RowsOf(const SheetGroup& group) {
  return (static_cast<std::int32_t>(group.cells.size()) + kColumns - 1) / kColumns;
}

Canvas BlankCanvas(const Sheet& sheet, const Layout& layout) {
  Canvas canvas{
      2 * kMargin + kColumns * layout.cellWidth + (kColumns - 1) * kGap, 2 * kMargin + layout.cellHeight, {}};
  for (const SheetGroup& group : sheet.groups) {
    canvas.height += kGap + kHeading + RowsOf(group) * (layout.cellHeight + kGap);
  }
  canvas.rgb.resize(std::size_t{3} * static_cast<std::size_t>(canvas.width) *
                    static_cast<std::size_t>(canvas.height));
  Fill(canvas, 0, 0, {canvas.width, canvas.height}, kPaper);
  return canvas;
}

void DrawCell(Canvas& canvas, std::int32_t x, std::int32_t y, const Layout& layout, const SheetCell& cell) {
  DrawPicture(canvas, x, y, cell.picture);
  y += layout.picture.height + kAbove;
  Write(canvas, x, y, kNamePen, Letters(cell.name));
  const std::string facts = FactsOf(cell.picture);
  const std::int32_t factsWidth = Advance(kFactsPen) * static_cast<std::int32_t>(facts.size());
  Write(canvas, x + layout.cellWidth - factsWidth, y + 7, kFactsPen, facts);
  y += kNameLine;
  DrawSwatches(canvas, x, y, layout.cellWidth, cell.picture.image.palette);
  WriteLines(canvas, x, y + kSwatches + kAbove, layout.cellWidth, kCommandPen, CommandLine(cell.words));
}

void DrawGroup(Canvas& canvas, std::int32_t y, const Layout& layout, const SheetGroup& group) {
  Fill(canvas, kMargin, y, {canvas.width - 2 * kMargin, 2}, kInk);
  Write(canvas, kMargin, y + 18, kHeadingPen, group.heading);
  std::int32_t index = 0;
  for (const SheetCell& cell : group.cells) {
    const std::int32_t x = kMargin + index % kColumns * (layout.cellWidth + kGap);
    DrawCell(canvas, x, y + kHeading + index / kColumns * (layout.cellHeight + kGap), layout, cell);
    ++index;
  }
}

}  // namespace

Status WriteSheetPicture(const Sheet& sheet, const pipeline::RowSink& sink) {
  const Layout layout = LayoutOf(sheet);
  Canvas canvas = BlankCanvas(sheet, layout);
  DrawCell(canvas, kMargin, kMargin, layout, sheet.original);
  const std::int32_t beside = kMargin + layout.cellWidth + kGap;
  const std::int32_t titleWidth = canvas.width - kMargin - beside;
  const std::int32_t below = WriteLines(canvas, beside, kMargin, titleWidth, kTitlePen, sheet.input);
  WriteLines(canvas, beside, below, titleWidth, kSubtitlePen, SubtitleOf(sheet));
  std::int32_t y = kMargin + layout.cellHeight + kGap;
  for (const SheetGroup& group : sheet.groups) {
    DrawGroup(canvas, y, layout, group);
    y += kGap + kHeading + RowsOf(group) * (layout.cellHeight + kGap);
  }
  if (Status failed = sink.begin({canvas.width, canvas.height, pipeline::kDirectDepth}); Failed(failed)) {
    return failed;
  }
  for (std::int32_t row = 0; row < canvas.height; ++row) {
    const std::uint8_t* from = canvas.rgb.data() + std::int64_t{3} * canvas.width * row;
    if (Status failed = sink.write(row, from); Failed(failed)) return failed;
  }
  return sink.end();
}

}  // namespace cvt::app
