#include "app/option_table.h"

namespace cvt::app {

namespace {

constexpr std::int64_t kMostPixels = 1000000000000;

constexpr OptionRow kConvertOptions[] = {
    {"Colour", "--depth", "N", "bits of an output pixel, 1 to 8; default: by palette and input",
     Number{&Arguments::depth, 1, 8}},
    {"Colour", "--palette", "SPEC", "bw, gray, FILE.gpl, FILE.hex or #rrggbb,#rrggbb,...; order kept",
     Text{&Arguments::palette}},
    {"Colour", "--halftone", "nearest|diffusion", "default: diffusion for 1 bit, else nearest",
     Choice{&Arguments::halftone}},
    {"Colour", "--threshold", "N", "1 bit without halftoning: white from gray level N up, 0 to 256",
     Number{&Arguments::threshold, 0, 256}},
    {"Colour", "--invert", "", "swap black and white", Switch{&Arguments::invert}},
    {"Colour", "--background", "COLOR",
     "what transparent pixels lie on: black, white, #rgb, #rrggbb; default white", Text{&Arguments::background}},
    {"Output", "--format", "png|pbm|pgm|ppm", "default: by suffix", Choice{&Arguments::format}},
    {"Output", "--layout", "packed|planes", "how the last band is laid out; default packed",
     Choice{&Arguments::layout}},
    {"Output", "--force", "", "replace the output if it exists", Switch{&Arguments::force}},
    {"Running", "--explain", "", "print the chain of conversions, then convert", Switch{&Arguments::explain}},
    {"Running", "--max-pixels", "N", "refuse larger inputs; default 2147483647",
     Number{&Arguments::maxPixels, 1, kMostPixels}},
    {"Running", "-q", "", "no progress", Switch{&Arguments::quiet}}};

}  // namespace

std::span<const OptionRow> ConvertOptions() { return kConvertOptions; }

const char* Examples() {
  return "Examples:\n"
         "  r2r convert photo.png print.pbm\n"
         "      one bit a pixel by error diffusion, for a printer\n"
         "  r2r convert --palette '#000000,#ffffff,#ff0000' sign.png label.png\n"
         "      every pixel to the nearest of three colours\n"
         "  r2r convert --depth 4 --format png - - < scan.pgm > scan16.png\n"
         "      sixteen grays, in a pipe\n";
}

}  // namespace cvt::app
