#include "app/presets.h"

namespace cvt::app {

namespace {

constexpr const char* kHalftone = "--halftone";
constexpr const char* kThreshold = "--threshold";

constexpr Preset kPresets[] = {
    {"fax",
     "text and drawings: one bit by threshold, sharp edges and no dots",
     {{"--depth", "1"}, {kHalftone, "nearest"}}},
    {"label",
     "thermal printers: one bit, grays as clustered dots that such heads can print",
     {{"--depth", "1"}, {kHalftone, "ordered", kThreshold}, {"--matrix", "cluster4", kHalftone}}},
    {"photo-1bit",
     "photographs on paper: one bit by diffusion, lightened because ink spreads",
     {{"--depth", "1"}, {kHalftone, "diffusion", kThreshold}, {"--gamma", "1.3"}}},
    {"epaper-bw",
     "black and white e-paper: one bit by diffusion, tones as they are",
     {{"--depth", "1"}, {kHalftone, "diffusion", kThreshold}, {"--reduce", "smooth"}}},
    {"epaper-7",
     "seven-colour e-paper: matched against the inks as they look, written in their nominal colours",
     {{"--palette", "epaper-7"}, {kHalftone, "diffusion"}}},
    {"retro-16",
     "the look of early colour displays: their sixteen colours, by diffusion",
     {{"--palette", "retro-16"}, {kHalftone, "diffusion"}}},
    {"web-256",
     "small files for the web: the 256 best colours of the image, by diffusion",
     {{"--depth", "8"}, {"--palette", "adaptive"}, {kHalftone, "diffusion"}}}};

}  // namespace

std::span<const Preset> Presets() { return kPresets; }

}  // namespace cvt::app
