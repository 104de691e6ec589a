// The sheet as a page: one style block, pictures and captions in the page itself.
#include <algorithm>
#include <cstdio>
#include <string_view>

#include "app/contact_sheet_output.h"

namespace cvt::app {

namespace {

// Pictures keep their pixels: no scaling, and where a screen has more pixels than the page, no blur.
constexpr std::string_view kStyle =
    "*{box-sizing:border-box}\n"
    "body{margin:0 auto;padding:40px;background:#f4f4f1;color:#1b1b1b;font:15px/1.5 system-ui,sans-serif}\n"
    "header,.row{display:flex;flex-wrap:wrap;gap:36px 28px}\n"
    "header div{flex:1;min-width:300px;max-width:44em}\n"
    "h1{margin:0 0 12px;font-size:40px;line-height:1.15;overflow-wrap:anywhere}\n"
    "h2{margin:56px 0 20px;padding-top:14px;border-top:2px solid #1b1b1b;font-size:21px;line-height:1.3}\n"
    "p{margin:0;color:#55554f}\n"
    "figure{margin:0}\n"
    "img{display:block;image-rendering:pixelated;box-shadow:0 0 0 1px #d3d3cd}\n"
    "figcaption{margin-top:12px}\n"
    ".facts{float:right;color:#6b6b64;font-size:13px;line-height:23px}\n"
    ".swatches{display:flex;height:14px;margin-top:8px;box-shadow:0 0 0 1px #d3d3cd}\n"
    ".swatches i{flex:1}\n"
    "code{display:block;margin-top:9px;padding:8px 10px;background:#e7e7e2;font:12.5px/1.5 ui-monospace,monospace;"
    "white-space:pre-wrap;overflow-wrap:anywhere;user-select:all}\n";

std::string Escaped(std::string_view text) {
  constexpr std::string_view kSpecial = "&<>\"";
  constexpr const char* kEntities[] = {"&amp;", "&lt;", "&gt;", "&quot;"};
  std::string escaped;
  for (const char c : text) {
    const std::size_t index = kSpecial.find(c);
    escaped += index == std::string_view::npos ? std::string(1, c) : kEntities[index];
  }
  return escaped;
}

std::string Base64(std::string_view bytes) {
  constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    std::uint32_t three = 0;
    for (std::size_t k = at; k < at + 3; ++k) {
      three = three << 8 | (k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0U);
    }
    for (std::uint32_t k = 0; k < 4; ++k) {
      text += at + k > bytes.size() ? '=' : kDigits[three >> (18 - 6 * k) & 63];
    }
  }
  return text;
}

std::string Swatches(const std::vector<IRGB>& palette) {
  if (palette.empty()) return "";
  std::string text = "<div class=\"swatches\">";
  for (const IRGB& color : palette) {
    char swatch[48];
    std::snprintf(swatch, sizeof swatch, "<i style=\"background:#%02x%02x%02x\"></i>", color.red, color.green,
                  color.blue);
    text += swatch;
  }
  return text + "</div>\n";
}

std::string Figure(const SheetCell& cell) {
  const pipeline::Image& image = cell.picture.image;
  return "<figure>\n<img width=\"" + std::to_string(image.width) + "\" height=\"" + std::to_string(image.height) +
         "\" alt=\"" + Escaped(cell.name) + "\" src=\"data:image/png;base64," + Base64(cell.picture.png) +
         "\">\n<figcaption><span class=\"facts\">" + FactsOf(cell.picture) + "</span><b>" + Escaped(cell.name) +
         "</b>\n" + Swatches(image.palette) + "<code>" + Escaped(CommandLine(cell.words)) +
         "</code></figcaption>\n</figure>\n";
}

std::string Head(const Sheet& sheet) {
  const std::string title = Escaped(sheet.input);
  const std::int32_t width = std::max(kNarrowest, sheet.original.picture.image.width);
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
         title + "</title>\n<style>\n" + std::string(kStyle) + "figure{width:" + std::to_string(width) +
         "px}\nbody{max-width:" + std::to_string(3 * width + 2 * 28 + 2 * 40) +
         "px}\n</style>\n</head>\n<body>\n<header>\n" + Figure(sheet.original) + "<div><h1>" + title +
         "</h1>\n<p>" + SubtitleOf(sheet) + " A click selects it.</p></div>\n</header>\n";
}

}  // namespace

std::string SheetPage(const Sheet& sheet) {
  std::string page = Head(sheet);
  for (const SheetGroup& group : sheet.groups) {
    page += "<h2>" + Escaped(group.heading) + "</h2>\n<div class=\"row\">\n";
    for (const SheetCell& cell : group.cells) page += Figure(cell);
    page += "</div>\n";
  }
  return page + "</body>\n</html>\n";
}

}  // namespace cvt::app
