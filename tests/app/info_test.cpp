// What `r2r info` tells, and `r2r verify`.
#include <gtest/gtest.h>

#include "run.h"

namespace cvt::app::test {
namespace {

using namespace std::string_literals;

std::string Word16(unsigned value) { return {static_cast<char>(value & 255), static_cast<char>(value >> 8)}; }
std::string Word32(unsigned value) { return Word16(value & 65535) + Word16(value >> 16); }

// A TIFF of one-line gray pages of these widths, 200 x 100 pixels an inch; every directory lies where the
// one before says, the pixels and the resolutions behind it.
std::string TiffOf(const std::vector<unsigned>& widths) {
  std::string file = "II*\0"s + Word32(8);
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const unsigned data = static_cast<unsigned>(file.size()) + 2 + 11 * 12 + 4, end = data + 16 + widths[i];
    const struct {
      unsigned tag, type, value;
    } tags[] = {{256, 4, widths[i]}, {257, 4, 1},         {258, 3, 8},       {259, 3, 1},
                {262, 3, 1},         {273, 4, data + 16}, {277, 3, 1},       {278, 4, 1},
                {279, 4, widths[i]}, {282, 5, data},      {283, 5, data + 8}};
    file += Word16(11);
    for (const auto& tag : tags) file += Word16(tag.tag) + Word16(tag.type) + Word32(1) + Word32(tag.value);
    file += Word32(i + 1 < widths.size() ? end : 0);
    file += Word32(200) + Word32(1) + Word32(100) + Word32(1) + std::string(widths[i], 'x');
  }
  return file;
}

TEST(Info, TellsWhatAnImageIs) {
  const Workplace place;
  place.Write("gray", "P2 3 2 15  0 1 2 3 4 5");
  place.Write("page.pbm", "P4 9 1\nab");
  place.Write("bad", "no image");
  place.Write("one.tif", TiffOf({7}));
  place.Write("two.tif", TiffOf({5, 6}));
  ASSERT_EQ(place.Convert("gray p.png --palette '#f00,#00ff00,white'").status, 0);
  const struct {
    const char* words;
    int status;
    const char* out;
  } cases[] = {
      {"gray", 0, "gray: PGM, 3 x 2 pixels, 4 bits packed, 16 grays, resolution not told\n"},
      {"- <page.pbm", 0,
       "standard input: PBM, 9 x 1 pixels, 1 bit packed, black and white, resolution not told\n"},
      {"p.png", 0,
       "p.png: PNG, 3 x 2 pixels, 2 bits packed, palette of 3 colours, resolution not told\n"
       "  #ff0000 #00ff00 #ffffff\n"},
      {"one.tif", 0, "one.tif: TIFF, 7 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"},
      {"two.tif", 0,
       "two.tif page 1: TIFF, 5 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"
       "two.tif page 2: TIFF, 6 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"},
      {"two.tif --page 2", 0, "two.tif: TIFF, 6 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"},
      {"two.tif --page 3", 2, ""},
      {"gray --page 2", 2, ""},
      {"bad", 3, ""},
      {"gray --max-pixels 5", 4, ""},
      {"bad gray none", 1, "gray: PGM, 3 x 2 pixels, 4 bits packed, 16 grays, resolution not told\n"},
      {"", 2, ""}};
  for (const auto& c : cases) {
    const Ended ended = place.Shell(std::string("\"$R2R\" info ") + c.words);
    EXPECT_EQ(ended.status, c.status) << c.words << ": " << ended.err;
    EXPECT_EQ(ended.out, c.out) << c.words;
    EXPECT_EQ(ended.err.empty(), c.status == 0) << c.words << ": " << ended.err;
  }
}

TEST(Info, ResolutionAndPagesReachTheOutput) {
  const Workplace place;
  place.Write("two.tif", TiffOf({5, 6}));
  EXPECT_EQ(place.Convert("two.tif o.png").status, 2);
  ASSERT_EQ(place.Convert("two.tif o.png --page 2 --size 12x4").status, 0);
  EXPECT_EQ(place.Shell("\"$R2R\" info o.png").out,
            "o.png: PNG, 12 x 4 pixels, 8 bits packed, 256 grays, 399.999 x 399.999 pixels an inch\n");
}

TEST(Verify, FindsAllResultsTheSame) {
  const Workplace place;
  const Ended ended = place.Shell("\"$R2R\" verify");
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(ended.out, "31 of 31 reference results are the same\n");
}

}  // namespace
}  // namespace cvt::app::test
