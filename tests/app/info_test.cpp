// What `r2r info` tells.
#include <gtest/gtest.h>

#include "../imageio/tiff_support.h"
#include "run.h"

namespace cvt::app::test {
namespace {

// Lines of gray, one a page, of 200 x 100 pixels an inch.
void WriteTiff(const Workplace& place, const std::string& name, std::uint32_t width, int pages) {
  imageio::test::TiffParts parts{width, 1};
  parts.stripRows = 1;
  parts.pages = pages;
  parts.x = 200;
  parts.y = 100;
  imageio::test::WriteTiffFile(place.Path(name), parts, {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j'});
}

TEST(Info, TellsWhatAnImageIs) {
  const Workplace place;
  place.Write("gray", "P2 3 2 15  0 1 2 3 4 5");
  place.Write("page.pbm", "P4 9 1\nab");
  place.Write("bad", "no image");
  WriteTiff(place, "one.tif", 7, 1);
  WriteTiff(place, "two.tif", 5, 2);
  ASSERT_EQ(place.Convert("gray p.png --palette '#f00,#00ff00,white,#001,#002,#003,#004,#005,#006'").status, 0);
  const struct {
    const char* words;
    int status;
    const char* out;
  } cases[] = {
      {"gray", 0, "gray: PGM, 3 x 2 pixels, 4 bits packed, 16 grays, resolution not told\n"},
      {"- <page.pbm", 0,
       "standard input: PBM, 9 x 1 pixels, 1 bit packed, black and white, resolution not told\n"},
      {"p.png", 0,
       "p.png: PNG, 3 x 2 pixels, 4 bits packed, palette of 9 colours, resolution not told\n"
       "  #ff0000 #00ff00 #ffffff #000011 #000022 #000033 #000044 #000055\n  #000066\n"},
      {"one.tif", 0, "one.tif: TIFF, 7 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"},
      {"two.tif", 0,
       "two.tif page 1: TIFF, 5 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"
       "two.tif page 2: TIFF, 5 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"},
      {"two.tif --page 2", 0, "two.tif: TIFF, 5 x 1 pixels, 8 bits packed, 256 grays, 200 x 100 pixels an inch\n"},
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
  WriteTiff(place, "two.tif", 5, 2);
  place.Write("dot", "P1 1 1 1");  // has no page 2
  EXPECT_EQ(place.Convert("two.tif o.png").status, 2);
  EXPECT_EQ(place.Convert("two.tif - --format raw --page 2").out, "fghij");
  ASSERT_EQ(place.Convert("two.tif o.png --page 2 --size 10x4 --overlay dot").status, 0);
  EXPECT_EQ(place.Shell("\"$R2R\" info o.png").out,
            "o.png: PNG, 10 x 4 pixels, 8 bits packed, 256 grays, 399.999 x 399.999 pixels an inch\n");
}

}  // namespace
}  // namespace cvt::app::test
