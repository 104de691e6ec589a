#include "app/option_table.h"

#include <algorithm>
#include <cstdint>

#include "imageio/image_file.h"

namespace cvt::app {

using imageio::Compression;
using imageio::Format;
using pipeline::Enlarge;
using pipeline::Halftone;
using pipeline::Layout;
using pipeline::Reduce;

namespace {

constexpr std::int64_t kMostPixels = 1000000000000;
constexpr std::int64_t kMostJobs = 256;
constexpr std::int64_t kMostPages = 65535;
// What a piece of memory can have: less than 2 GiB on a machine of 32 bits.
constexpr std::int64_t kMostMebibytes = std::min<std::int64_t>(1 << 20, PTRDIFF_MAX >> 20);
constexpr const char* kColorForm = "black, white, #rgb or #rrggbb";

template <class Enum>
constexpr Word Named(const char* name, Enum value, const char* what) {
  return {name, static_cast<std::int64_t>(value), what};
}

constexpr Word kReduces[] = {Named("keep", Reduce::Keep, "shrink so that runs of the keep colour never vanish"),
                             Named("decimate", Reduce::Decimate, "shrink by leaving pixels out"),
                             Named("smooth", Reduce::Smooth, "shrink by averaging areas")};
constexpr Word kEnlarges[] = {Named("replicate", Enlarge::Replicate, "grow by repeating pixels"),
                              Named("smooth", Enlarge::Smooth, "grow by blending neighbours")};
constexpr Word kHalftones[] = {
    Named("nearest", Halftone::Nearest, "the closest colour, pixel by pixel"),
    Named("diffusion", Halftone::Diffusion, "errors are passed on to the neighbours: best for photographs"),
    Named("ordered", Halftone::Ordered, "a fixed pattern of thresholds: steady, packs well")};
constexpr Word kLayouts[] = {Named("packed", Layout::Packed, "the bits of a pixel side by side"),
                             Named("planes", Layout::Planes, "a plane for each bit")};
constexpr Word kFormats[] = {Named("png", Format::Png, "indexed, gray and direct colour"),
                             Named("tiff", Format::Tiff, "the same in strips; one bit as fax machines write it"),
                             Named("pbm", Format::Pbm, "black and white, binary"),
                             Named("pgm", Format::Pgm, "grays, binary"),
                             Named("ppm", Format::Ppm, "direct colour, binary"),
                             Named("pam", Format::Pam, "black and white, grays or direct colour, binary"),
                             Named("raw", Format::Raw, "rows of pixels or planes, no header"),
                             Named("c", Format::C, "the same rows as an array in a C source")};
constexpr Word kCompressions[] = {Named("none", Compression::None, "as it is"),
                                  Named("lzw", Compression::Lzw, "read by everything"),
                                  Named("deflate", Compression::Deflate, "smaller"),
                                  Named("g4", Compression::G4, "of fax machines: one bit only")};

const OptionRow kConvertOptions[] = {
    {"Geometry", "--crop", "WxH+X+Y", "cut out a rectangle before anything else",
     Form<pipeline::Crop>{&Arguments::crop, ParseCrop, "WxH+X+Y, pixels up to 65535"}},
    {"Geometry", "--size", "WxH|W|xH|N%", "new size; one number keeps the aspect ratio",
     Form<SizeWish>{&Arguments::size, ParseSize, "WxH, W, xH or N%, sides from 1 to 65535, percents to 100000"}},
    {"Geometry", "--reduce", "",
     "how to shrink; default keep for 1-bit and indexed images, smooth for gray and colour",
     Choice{&Arguments::reduce, kReduces}},
    {"Geometry", "--enlarge", "", "how to grow; default replicate", Choice{&Arguments::enlarge, kEnlarges}},
    {"Geometry", "--keep-color", "COLOR", "whose runs never vanish with --reduce keep; default black",
     Form<IRGB>{&Arguments::keepColor, ParseColor, kColorForm}},
    {"Colour", "--depth", "N",
     "1 to 8: indexed, 24: direct colour; raw and c only: 15 and 16 (5 bits a channel), 32; default: by palette, "
     "format and input",
     Form<std::int64_t>{&Arguments::depth, ParseDepth, "1 to 8, 15, 16, 24 or 32"}},
    {"Colour", "--palette", "SPEC",
     "a name of r2r list palettes, FILE.gpl, .hex, .pal or .png, or #rrggbb,#rrggbb,...; order kept; default: "
     "the image's own if it fits, else gray or adaptive",
     Text{&Arguments::palette}},
    {"Colour", "--halftone", "", "default: diffusion, or nearest where the output has all colours of the input",
     Choice{&Arguments::halftone, kHalftones}},
    {"Colour", "--matrix", "NAME|FILE.pgm",
     "thresholds of --halftone ordered: a name of r2r list matrices, or a picture of them; default bayer8",
     Text{&Arguments::matrix}},
    {"Colour", "--threshold", "N", "1 bit without halftoning: white from gray level N up, 0 to 256",
     Number{&Arguments::threshold, 0, 256}},
    {"Colour", "--gamma", "G", "tone curve before reduction, 0.1 to 10; above 1 is lighter; default 1",
     Form<double>{&Arguments::gamma, ParseGamma, "a number from 0.1 to 10"}},
    {"Colour", "--invert", "", "swap black and white", Switch{&Arguments::invert}},
    {"Colour", "--background", "COLOR",
     "what transparent pixels lie on: black, white, #rgb, #rrggbb; default white",
     Form<IRGB>{&Arguments::background, ParseColor, kColorForm}},
    {"Output", "--overlay", "FILE[+X+Y]",
     "lay an indexed or gray image of up to 8 bits over the output, its top left pixel at X, Y; default 0, 0",
     Text{&Arguments::overlay}},
    {"Output", "--transparent", "COLOR|INDEX",
     "pixels of --overlay that are left out; what the file itself has transparent lies on --background",
     Form<PixelWish>{&Arguments::transparent, ParsePixel,
                     "an index from 0 to 255, black, white, #rgb or #rrggbb"}},
    {"Output", "--format", "",
     "default: by suffix, with --out-dir that of the input; raw is the rows one after another, c an array of them",
     Choice{&Arguments::format, kFormats}},
    {"Output", "--layout", "", "how the last band and the rows of raw are laid out; default packed",
     Choice{&Arguments::layout, kLayouts}},
    {"Output", "--compress", "", "of TIFF; default g4 for black and white, else lzw",
     Choice{&Arguments::compress, kCompressions}},
    {"Output", "--force", "", "replace outputs that exist; they are refused otherwise", Switch{&Arguments::force}},
    {"Output", "--skip-existing", "", "leave outputs that exist as they are, and go on",
     Switch{&Arguments::skipExisting}},
    {"Output", "--out-dir", "DIR", "convert every INPUT into this directory, which is made if it is missing",
     Text{&Arguments::outDir}},
    {"Running", "--preset", "NAME", "a bundle of options of r2r list presets; options that are given win over it",
     Text{&Arguments::preset}},
    {"Running", "--explain", "", "print the chain of conversions, then convert", Switch{&Arguments::explain}},
    {"Running", "-j", "N", "with --out-dir: convert N images at a time; default 1",
     Number{&Arguments::jobs, 1, kMostJobs}},
    {"Running", "--files-from", "FILE",
     "with --out-dir: read names of inputs from FILE, one a line; - is standard input",
     Text{&Arguments::filesFrom}},
    {"Running", "-0", "", "the names of --files-from end in zero bytes, not in line ends",
     Switch{&Arguments::nulBetween}},
    {"Running", "--shard", "I/N", "with --out-dir: convert every Nth input only, from the Ith on",
     Form<Shard>{&Arguments::shard, ParseShard, "I/N, I from 1 to N"}},
    {"Running", "--report", "FILE",
     "write one JSON object a line and image, - is standard output: input, output, status, message, width, "
     "height, milliseconds, crc32",
     Text{&Arguments::report}},
    {"Running", "--page", "N", "of a file of several pages; needed where there are several",
     Number{&Arguments::page, 1, kMostPages}},
    {"Running", "--max-pixels", "N", "refuse larger inputs; default 2147483647",
     Number{&Arguments::maxPixels, 1, kMostPixels}},
    {"Running", "--max-memory", "MIB",
     "for images that must be held whole or in large parts (interlaced, progressive, tiled, overlays); default 256",
     Number{&Arguments::maxMemory, 1, kMostMebibytes}},
    {"Running", "-q", "", "no progress", Switch{&Arguments::quiet}},
    {"Running", "-v", "", "tell what was made of each image", Switch{&Arguments::verbose}}};

}  // namespace

std::span<const OptionRow> ConvertOptions() { return kConvertOptions; }

std::string Joined(std::span<const Word> words) {
  std::string joined;
  for (const Word& word : words) {
    if (!joined.empty()) joined += '|';
    joined += word.name;
  }
  return joined;
}

const char* Examples() {
  return "Examples:\n"
         "  r2r convert --size 400x300 --depth 1 photo.png badge.png\n"
         "      a photograph for a small black and white display\n"
         "  r2r convert --size 33% scan.pbm small.pbm\n"
         "      a scanned page at a third of its size, hairlines kept\n"
         "  r2r convert --preset web-256 -j 4 --out-dir web shots/*.png\n"
         "      the 256 best colours of each of many pictures, four at a time\n";
}

}  // namespace cvt::app
