// Conversions at the same time, each with a context of its own: nothing of one is seen in another. And in bands
// of any height, of which nothing is seen either.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/pipeline/picture.h"

namespace cvt::test {
namespace {

using namespace cvt::pipeline;

struct Work {
  Picture picture;
  Settings settings;
  std::vector<std::uint32_t> alone;  // what it gives in bands as tall as may be, when nothing else runs
};

// Every halftone on every kind of source and output, scaled in every way; no two have equal sizes.
std::vector<Work> AllWork() {
  const Image sources[] = {{61, 43, 1, GrayRamp(1)},
                           {61, 43, 4, GrayRamp(4), Layout::Planes},
                           {61, 43, 8, GrayRamp(8)},
                           {61, 43, kDirectDepth}};
  const std::int32_t depths[] = {1, 3, 8};
  const Halftone halftones[] = {Halftone::Nearest, Halftone::Diffusion, Halftone::Ordered};
  const Reduce reduces[] = {Reduce::Keep, Reduce::Decimate, Reduce::Smooth};
  std::vector<Work> work;
  for (std::int32_t i = 0; i < 4 * 3 * 3; ++i) {
    const std::int32_t depth = depths[i / 3 % 3];
    Settings settings{.depth = depth, .palette = GrayRamp(depth), .halftone = halftones[i % 3]};
    if (i / 9 == 3) settings.palette = Distinct(std::size_t{1} << depth);
    settings.gamma = 1.0 + 0.1 * (i % 5);
    settings.layout = i % 2 == 0 ? Layout::Packed : Layout::Planes;
    settings.width = 20 + 2 * i;
    settings.height = 30 + i;
    settings.reduce = reduces[i % 3];
    settings.enlarge = i % 4 == 0 ? Enlarge::Smooth : Enlarge::Replicate;
    const Picture picture = NoisePicture(sources[i / 9], static_cast<std::uint32_t>(i));
    work.push_back({picture, settings, Convert(picture, settings).pixels});
  }
  return work;
}

TEST(Concurrent, EachConversionGivesWhatItGivesAlone) {
  const std::vector<Work> work = AllWork();
  constexpr std::size_t kThreads = 4, kRounds = 3;
  std::atomic<std::size_t> next{0}, different{0};
  const auto run = [&] {
    for (std::size_t i = next++; i < kRounds * work.size(); i = next++) {
      const Work& one = work[i * 7 % work.size()];
      if (Convert(one.picture, one.settings).pixels != one.alone) ++different;
    }
  };
  std::vector<std::jthread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) threads.emplace_back(run);
  threads.clear();  // waits for them
  EXPECT_EQ(different, 0U);
}

TEST(Bands, AreNotSeenInWhatAConversionGives) {
  for (Work& one : AllWork())
    for (const std::int32_t lines : {1, 2, 9, 20}) {
      one.settings.bandLines = lines;
      EXPECT_EQ(Convert(one.picture, one.settings).pixels, one.alone)
          << one.picture.image.depth << " bits to " << one.settings.width << " x " << one.settings.height
          << " in bands of " << lines;
    }
}

}  // namespace
}  // namespace cvt::test
