// Contact sheets: captions are run, pictures are looked for, pages are opened in a browser.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "run.h"

namespace cvt::app::test {
namespace {

struct Figure {
  std::string png, command;
};

std::string Between(const std::string& text, const std::string& from, const std::string& to, std::size_t* at) {
  const std::size_t start = text.find(from, *at);
  if (start == std::string::npos) return "";
  const std::size_t end = text.find(to, start + from.size());
  *at = end;
  return text.substr(start + from.size(), end - start - from.size());
}

std::string Unescaped(std::string text) {
  const std::pair<const char*, const char*> kEntities[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}};
  for (const auto& [entity, character] : kEntities) {
    const std::string name = entity;
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; ++at) {
      text.replace(at, name.size(), character);
    }
  }
  return text;
}

std::string FromBase64(const std::string& text) {
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0, count = 0;
  for (const char c : text.substr(0, text.find('='))) {
    bits = bits << 6 | static_cast<std::uint32_t>(digits.find(c));
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 255);
  }
  return bytes;
}

std::vector<Figure> FiguresOf(const std::string& page) {
  std::vector<Figure> figures;
  for (std::size_t at = 0; page.find("<figure>", at) != std::string::npos;) {
    const std::string png = Between(page, "src=\"data:image/png;base64,", "\"", &at);
    figures.push_back({FromBase64(png), Unescaped(Between(page, "<code>", "</code>", &at))});
  }
  return figures;
}

struct Pixels {
  std::size_t width = 0, height = 0;
  std::string rgb;
};

Pixels PixelsOf(const Workplace& place, const std::string& png) {
  place.Write("pixels.png", png);
  EXPECT_EQ(place.Convert("pixels.png pixels.ppm --depth 24 --force").err, "");
  std::istringstream ppm(place.Read("pixels.ppm"));
  std::string magic;
  std::size_t most = 0;
  Pixels pixels;
  ppm >> magic >> pixels.width >> pixels.height >> most;
  ppm.get();
  pixels.rgb.assign(std::istreambuf_iterator<char>(ppm), {});
  return pixels;
}

bool IsAt(const Pixels& sheet, std::size_t at, const Pixels& picture) {
  const std::size_t x = at % (sheet.width * 3);
  if (x % 3 != 0 || x / 3 + picture.width > sheet.width) return false;
  for (std::size_t y = 0; y < picture.height; ++y) {
    const std::size_t row = picture.width * 3;
    const std::size_t from = at + y * sheet.width * 3;
    if (from + row > sheet.rgb.size() || sheet.rgb.compare(from, row, picture.rgb, y * row, row) != 0)
      return false;
  }
  return true;
}

std::size_t TimesIn(const Pixels& sheet, const Pixels& picture) {
  const std::string row = picture.rgb.substr(0, picture.width * 3);
  std::size_t times = 0;
  for (std::size_t at = 0; (at = sheet.rgb.find(row, at)) != std::string::npos; ++at) {
    times += IsAt(sheet, at, picture) ? 1U : 0U;
  }
  return times;
}

std::string Sheet(const Workplace& place, const std::string& words, const std::string& output) {
  const Ended ended = place.Shell("\"$R2R\" contact-sheet " + words + " " + output);
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(ended.out, "");
  return place.Read(output);
}

void DrawPicture(const Workplace& place, const std::string& name) {
  ASSERT_EQ(place.Shell("\"$R2R\" chart chart.png && \"$R2R\" convert --crop 60x40+180+150 chart.png " + name).err,
            "");
}

struct Page {
  const char* options;
  std::vector<std::string> headings, missing;
};
const Page kPages[] = {
    {"", {"Black and white by threshold matrix", "The 256 best colours"}, {"Your palette", "Ways to"}},
    {"--palette '#000,#f00,#fff' --size 50% --gamma 1.4",
     {"Your palette", "Ways to shrink", "--gamma 1.4"},
     {"e-paper", "grow"}},
    {"--reduce decimate --crop 30x20+9+9 --size 60x10", {"Ways to grow", "e-paper"}, {"shrink", "Your palette"}}};

TEST(ContactSheet, TellsHowEachPictureIsMade) {
  const Workplace place;
  const std::string name = "'-it'\\''s \"1\" & <2>  $HOME.png'";
  DrawPicture(place, "./" + name);
  for (const Page& row : kPages) {
    const std::string page = Sheet(place, std::string("--force ") + row.options + " ./" + name, "sheet.html");
    for (const std::string& heading : row.headings) EXPECT_NE(page.find(heading), page.npos) << heading;
    for (const std::string& heading : row.missing) EXPECT_EQ(page.find(heading), page.npos) << heading;
    const std::vector<Figure> figures = FiguresOf(page);
    EXPECT_GT(figures.size(), 25U);
    for (const Figure& figure : figures) {
      const std::vector<std::string> before = place.Names();
      ASSERT_EQ(place.Shell("r2r() { \"$R2R\" \"$@\"; }; " + figure.command).err, "") << figure.command;
      const std::vector<std::string> after = place.Names();
      ASSERT_EQ(after.size(), before.size() + 1) << figure.command;
      const std::string made = *std::mismatch(after.begin(), after.end(), before.begin(), before.end()).first;
      EXPECT_TRUE(place.Read(made) == figure.png) << figure.command;
      EXPECT_NE(page.find(std::to_string(figure.png.size()) + " bytes"), page.npos) << figure.command;
      std::filesystem::remove(place.path / made);
    }
  }
}

TEST(ContactSheet, MakesLargePicturesSmallerAndSaysSo) {
  const Workplace place;
  DrawPicture(place, "small.png");
  EXPECT_EQ(Sheet(place, "small.png", "small.html").find("--size"), std::string::npos);
  const std::string page = Sheet(place, "--crop 700x20+0+0 chart.png", "large.html");
  EXPECT_NE(page.find("--crop 700x20+0+0 --size 512 chart.png"), page.npos);
  EXPECT_NE(page.find("<img width=\"512\" height=\"15\""), page.npos);
}

// The letters that every caption begins with.
constexpr const char* kBegin[] = {"......###......", ".....#...#.....", "#.##.....##.##.", "##......#.##...",
                                  "#......#..#....", "#.....#...#....", "#....######...."};

Pixels Begin() {
  Pixels pixels{17, 7, ""};
  const std::string paper = "\xf4\xf4\xf1", ink = "\x1b\x1b\x1b";
  for (const std::string line : kBegin) {  // five columns a letter, one between
    for (std::size_t x = 0; x < 17; ++x) pixels.rgb += x % 6 < 5 && line[x / 6 * 5 + x % 6] == '#' ? ink : paper;
  }
  return pixels;
}

TEST(ContactSheet, IsOnePictureOfThePicturesAndTheirCaptions) {
  const Workplace place;
  DrawPicture(place, "p.png");
  const std::string sheet = Sheet(place, "p.png", "sheet.png");
  EXPECT_TRUE(Sheet(place, "p.png", "again.png") == sheet);
  const std::vector<Figure> figures = FiguresOf(Sheet(place, "p.png", "sheet.html"));
  const Pixels pixels = PixelsOf(place, sheet);
  EXPECT_EQ(TimesIn(pixels, Begin()), figures.size());
  for (const Figure& figure : figures)
    EXPECT_GE(TimesIn(pixels, PixelsOf(place, figure.png)), 1U) << figure.command;
}

TEST(ContactSheet, OpensInABrowser) {
  const Workplace place;
  if (place.Shell("command -v chromium").status != 0) GTEST_SKIP() << "chromium is not installed";
  DrawPicture(place, "'a & b.png'");
  const std::vector<Figure> figures = FiguresOf(Sheet(place, "'a & b.png'", "sheet.html"));
  const std::string browse =
      "HOME=$PWD/home timeout 200 chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run "
      "--disable-background-networking --disable-component-update --disable-sync --disable-dev-shm-usage "
      "--user-data-dir=$PWD/home/profile --force-device-scale-factor=1 --force-color-profile=srgb "
      "--hide-scrollbars --window-size=1100,6000 ";
  const Ended dom = place.Shell(browse + "--dump-dom \"file://$PWD/sheet.html\"");
  const std::vector<Figure> opened = FiguresOf(dom.out);
  ASSERT_EQ(opened.size(), figures.size()) << dom.err;
  for (std::size_t k = 0; k < figures.size(); ++k) EXPECT_EQ(opened[k].command, figures[k].command);
  const Ended shot = place.Shell(browse + "--screenshot=shot.png \"file://$PWD/sheet.html\"");
  const Pixels screen = PixelsOf(place, place.Read("shot.png"));
  for (const Figure& figure : figures) {
    EXPECT_GE(TimesIn(screen, PixelsOf(place, figure.png)), 1U) << figure.command << shot.err;
  }
}

struct Refusal {
  const char* words;
  int status;
  const char* line;
};
constexpr Refusal kRefusals[] = {
    {"- s.png", 2, "standard input: a contact sheet reads the image once for every picture (give a file)"},
    {". s.png", 2, ".: a contact sheet reads the image once for every picture (give a file)"},
    {"p.png s.jpg", 2, "s.jpg: a contact sheet is a picture or a page (name it .png or .html)"},
    {"p.png there.html", 5, "there.html: the file exists (give --force to replace it)"},
    {"p.png there.png", 5, "there.png: the file exists (give --force to replace it)"},
    {"\"$(printf '\\377').png\" s.html", 2, "captions cannot show this name (give the file another one)"},
    {"'\n.png' s.png", 2, "?.png: captions cannot show this name (give the file another one)"},
    {"p.png --size 2000 s.png", 4, "MiB, the limit is 256 (give a smaller --size, or raise it with --max-memory)"},
    {"p.png --palette adaptiv s.html", 2, "--palette: 'adaptiv' is no palette"},
    {"cut.png s.html", 3, "cut.png: "},
    {"none.png s.html", 3, "none.png: "},
    {"p.png --preset fax s.html", 2, "--preset: there is no such option (see r2r contact-sheet --help)"},
    {"p.png", 2, "contact-sheet: "}};

TEST(ContactSheet, RefusesInOneLine) {
  const Workplace place;
  DrawPicture(place, "p.png");
  place.Write("cut.png", place.Read("p.png").substr(0, 400));
  for (const char* name : {"there.html", "there.png"}) place.Write(name, "kept");
  for (const char* name : {"\xff.png", "\n.png"}) place.Write(name, place.Read("p.png"));
  const std::vector<std::string> before = place.Names();
  for (const Refusal& refusal : kRefusals) {
    const Ended ended = place.Shell(std::string("\"$R2R\" contact-sheet ") + refusal.words);
    EXPECT_EQ(ended.status, refusal.status) << ended.err;
    EXPECT_NE(ended.err.find(refusal.line), std::string::npos) << ended.err;
    EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1) << ended.err;
  }
  EXPECT_EQ(place.Names(), before);
  EXPECT_EQ(place.Read("there.png") + place.Read("there.html"), "keptkept");
}

}  // namespace
}  // namespace cvt::app::test
