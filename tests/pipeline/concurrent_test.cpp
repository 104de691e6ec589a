// Conversions at the same time, each with a context of its own: nothing of one is seen in another.
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
  std::vector<std::uint32_t> alone;  // what it gives when nothing else runs
};

// Every halftone on every kind of source and output, scaled in every way; no two have equal sizes.
std::vector<Work> AllWork() {
  const Image sources[] = {{61, 43, 1, GrayRamp(1)},
                           {61, 43, 4, GrayRamp(4), Layout::Planes},
                           {61, 43, 8, GrayRamp(8)},
                           {61, 43, kDirectDepth}};
  const Reduce reduces[] = {Reduce::Keep, Reduce::Decimate, Reduce::Smooth};
  std::vector<Work> work;
  for (const Image& source : sources) {
    for (const std::int32_t depth : {1, 3, 8}) {
      for (const Halftone halftone : {Halftone::Nearest, Halftone::Diffusion, Halftone::Ordered}) {
        const auto i = static_cast<std::uint32_t>(work.size());
        Settings settings{.depth = depth, .palette = GrayRamp(depth), .halftone = halftone};
        settings.layout = i % 2 == 0 ? Layout::Packed : Layout::Planes;
        settings.reduce = reduces[i % 3];
        settings.enlarge = i % 4 == 0 ? Enlarge::Smooth : Enlarge::Replicate;
        settings.width = static_cast<std::int32_t>(20 + 2 * i);
        settings.height = static_cast<std::int32_t>(30 + i);
        settings.gamma = 1.0 + 0.1 * (i % 5);
        work.push_back({NoisePicture(source, i), settings, {}});
        work.back().alone = Convert(work.back().picture, settings).pixels;
      }
    }
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

}  // namespace
}  // namespace cvt::test
