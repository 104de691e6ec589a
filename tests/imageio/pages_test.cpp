// All pages of a TIFF at once: as each is when it is opened alone.
#include <gtest/gtest.h>

#include "support.h"
#include "tiff_support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

// Indices in tiles, grays of 16 bits, colours in planes with opacity, a fax.
std::vector<TiffParts> AllKinds() {
  std::vector<TiffParts> pages(4);
  pages[0].width = pages[0].height = 20;
  pages[0].bits = 4;
  pages[0].photometric = PHOTOMETRIC_PALETTE;
  for (std::size_t i = 1; i < pages.size(); ++i) pages[i].stripRows = 1;
  pages[1].bits = 16;
  pages[1].x = pages[1].y = 200;
  pages[2].samples = 4;
  pages[2].photometric = PHOTOMETRIC_RGB;
  pages[2].extra = {EXTRASAMPLE_UNASSALPHA};
  pages[2].planes = true;
  pages[3].width = 9;
  pages[3].bits = 1;
  pages[3].photometric = PHOTOMETRIC_MINISWHITE;
  pages[3].compression = COMPRESSION_CCITTFAX4;
  return pages;
}

std::string WritePages(const Folder& folder, const std::vector<TiffParts>& pages) {
  std::string path = folder.Path("pages.tif");
  for (TiffParts parts : pages) {
    if (!folder.Names().empty()) parts.mode = "al";  // behind the page before
    WriteTiffFile(path, parts, Scrambled(parts));
  }
  return path;
}

TEST(Pages, AreDescribedAsTheyAreOpened) {
  const Folder folder;
  const std::vector<TiffParts> pages = AllKinds();
  const std::string path = WritePages(folder, pages);
  std::vector<Description> all;
  ASSERT_FALSE(Failed(DescribeImage(path, {}, &all)));
  ASSERT_EQ(all.size(), pages.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    SCOPED_TRACE(i);
    ReadOptions options;
    options.page = static_cast<std::int32_t>(i + 1);
    std::vector<Description> alone;
    ASSERT_FALSE(Failed(DescribeImage(path, options, &alone)));
    ASSERT_EQ(alone.size(), 1U);
    const Loaded loaded = Load(path, options);
    for (const Description& page : {all[i], alone[0]}) {
      EXPECT_EQ(page.image.width, loaded.image.width);
      EXPECT_EQ(page.image.height, loaded.image.height);
      EXPECT_EQ(page.image.depth, loaded.image.depth);
      EXPECT_EQ(Hex(page.image.palette), Hex(loaded.image.palette));
      EXPECT_EQ(page.image.resolution.x, loaded.image.resolution.x);
      EXPECT_EQ(page.stored.bits, pages[i].bits);
      EXPECT_EQ(page.stored.transparency, i == 2);
    }
  }
}

TEST(Pages, BeforeOneThatIsNotReadAreTold) {
  const Folder folder;
  std::vector<TiffParts> pages = AllKinds();
  pages[2].photometric = PHOTOMETRIC_SEPARATED;
  pages[2].extra = {};
  std::vector<Description> told;
  ExpectRefusal(DescribeImage(WritePages(folder, pages), {}, &told), Code::Input, "CMYK");
  EXPECT_EQ(told.size(), 2U);
}

// A first directory that is nowhere, and one whose end, with the place of the next, is cut off.
TEST(Pages, ThatAreNoneAreDamage) {
  const Folder folder;
  const std::string nowhere = folder.Write("nowhere", Bytes("49492a00 00000000"));
  TiffParts one;
  one.stripRows = 1;
  WriteTiffFile(folder.Path("one"), one, {7});
  const std::string whole = folder.Read("one");
  const std::string cut = folder.Write("cut", whole.substr(0, whole.size() - 4));
  for (const std::string& path : {nowhere, cut}) {
    std::vector<Description> pages;
    ExpectRefusal(DescribeImage(path, {}, &pages), Code::Input, "the TIFF is damaged: ");
    ExpectRefusal(Load(path).status, Code::Input, "the TIFF is damaged: ");
    EXPECT_TRUE(pages.empty());
  }
}

}  // namespace
}  // namespace cvt::imageio::test
