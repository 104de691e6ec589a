// Counting and choosing colours.
//
// Three steps: the occupied cells become samples (mean colour and weight), groups of samples are parted greedily
// by planes across one channel, and the groups' means are improved by moving samples to the nearest mean.
// The error that a parting takes away from samples of weight w, colour x and sums W = sum of w, S = sum of w * x
// is
//
//   |S1|^2 / W1 + |S2|^2 / W2 - |S|^2 / W
//
// With weights scaled to some 2^20 altogether and colours in quarters of a level, everything stays below 2^63.

#include "host/adaptive.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <tuple>

#include "host/bits.h"

namespace cvt::host {
namespace {

constexpr unsigned kCellBits = 6;
constexpr std::size_t kBins = std::size_t{1} << kCellBits;  // cells along a channel
constexpr std::size_t kCells = kBins * kBins * kBins;
constexpr std::size_t kChannels = 3;
constexpr std::size_t kMostColors = 256;

// ---- Samples ----

using Quarters = std::array<std::int16_t, kChannels>;  // a colour, in quarters of a level

struct Sample {
  Quarters color;
  std::uint64_t weight;
  std::size_t cell;
};

constexpr std::size_t BinOf(std::size_t cell, std::size_t channel) {
  return cell >> kCellBits * (kChannels - 1 - channel) & (kBins - 1);
}

constexpr std::uint64_t DivideRounded(std::uint64_t a, std::uint64_t by) { return (a + by / 2) / by; }

Quarters MeanQuarters(const ColorCell& sums) {
  const auto mean = [&sums](std::uint64_t sum) {
    return static_cast<std::int16_t>(DivideRounded(4 * sum, sums.pixels));
  };
  return {mean(sums.red), mean(sums.green), mean(sums.blue)};
}

IRGB MeanColor(const ColorCell& sums) {
  return {Low8(DivideRounded(sums.red, sums.pixels)), Low8(DivideRounded(sums.green, sums.pixels)),
          Low8(DivideRounded(sums.blue, sums.pixels))};
}

void Add(ColorCell* to, const ColorCell& more) {
  to->pixels += more.pixels;
  to->red += more.red;
  to->green += more.green;
  to->blue += more.blue;
}

std::vector<Sample> SamplesOf(const ColorCounts& counts) {
  constexpr int kWeightBits = 20;
  std::uint64_t pixels = 0;
  for (const ColorCell& cell : counts.cells) pixels += cell.pixels;
  const int shift = std::max(0, static_cast<int>(std::bit_width(pixels)) - kWeightBits);
  std::vector<Sample> samples;
  for (std::size_t i = 0; i < counts.cells.size(); ++i) {
    const ColorCell& cell = counts.cells[i];
    if (cell.pixels == 0) continue;
    samples.push_back({MeanQuarters(cell), std::max<std::uint64_t>(1, cell.pixels >> shift), i});
  }
  return samples;
}

// ---- Parting ----

struct Moments {
  std::uint64_t weight;
  std::array<std::uint64_t, kChannels> sums;
};

void Add(Moments* to, const Moments& more) {
  to->weight += more.weight;
  for (std::size_t c = 0; c < kChannels; ++c) to->sums[c] += more.sums[c];
}

Moments Without(const Moments& all, const Moments& part) {
  Moments rest = all;
  rest.weight -= part.weight;
  for (std::size_t c = 0; c < kChannels; ++c) rest.sums[c] -= part.sums[c];
  return rest;
}

// |S|^2 / W; the more, the less error is left.
std::uint64_t Fit(const Moments& m) {
  std::uint64_t square = 0;
  for (std::uint64_t sum : m.sums) square += sum * sum;
  return square / m.weight;
}

// Samples first to before end, and the best way to part them: those whose bin of the channel is below `bin`
// from the others. No gain: they cannot be parted.
struct Group {
  std::size_t first, end;
  std::uint64_t gain;
  std::size_t channel, bin;
};

using Bins = std::array<std::array<Moments, kBins>, kChannels>;

void FillBins(const std::vector<Sample>& samples, const Group& group, Bins* bins) {
  *bins = {};
  for (std::size_t i = group.first; i < group.end; ++i) {
    const Sample& sample = samples[i];
    Moments moments{sample.weight, {}};
    for (std::size_t c = 0; c < kChannels; ++c)
      moments.sums[c] = sample.weight * static_cast<std::uint64_t>(sample.color[c]);
    for (std::size_t c = 0; c < kChannels; ++c) Add(&(*bins)[c][BinOf(sample.cell, c)], moments);
  }
}

void PartChannel(const std::array<Moments, kBins>& bins, const Moments& all, std::size_t channel, Group* group) {
  const std::uint64_t whole = Fit(all);
  Moments below{};
  for (std::size_t bin = 1; bin < kBins; ++bin) {
    Add(&below, bins[bin - 1]);
    if (bins[bin - 1].weight == 0) continue;
    const Moments above = Without(all, below);
    if (above.weight == 0) return;
    const std::uint64_t parted = Fit(below) + Fit(above);
    if (parted <= whole + group->gain) continue;
    group->gain = parted - whole;
    group->channel = channel;
    group->bin = bin;
  }
}

Group MakeGroup(const std::vector<Sample>& samples, std::size_t first, std::size_t end) {
  Group group{first, end, 0, 0, 0};
  Bins bins;
  FillBins(samples, group, &bins);
  Moments all{};
  for (const Moments& bin : bins[0]) Add(&all, bin);
  for (std::size_t c = 0; c < kChannels; ++c) PartChannel(bins[c], all, c, &group);
  return group;
}

// Orders the samples so that each group is a stretch of them. Parts the group that gains most, the earliest of
// equals.
std::vector<Group> PartSamples(std::vector<Sample>& samples, std::size_t howMany) {
  std::vector<Group> groups{MakeGroup(samples, 0, samples.size())};
  while (groups.size() < howMany) {
    const auto best = std::max_element(groups.begin(), groups.end(),
                                       [](const Group& a, const Group& b) { return a.gain < b.gain; });
    if (best->gain == 0) break;
    const Group parted = *best;
    const auto at = [&samples](std::size_t i) { return samples.begin() + static_cast<std::ptrdiff_t>(i); };
    const auto middle = std::stable_partition(at(parted.first), at(parted.end), [&parted](const Sample& s) {
      return BinOf(s.cell, parted.channel) < parted.bin;
    });
    const auto cut = static_cast<std::size_t>(middle - samples.begin());
    *best = MakeGroup(samples, parted.first, cut);
    groups.push_back(MakeGroup(samples, cut, parted.end));
  }
  return groups;
}

// ---- Refining ----

// Centres by channel, in 16 bits, so that the compiler measures many distances at a time.
struct Centers {
  std::size_t count;
  std::int16_t channel[kChannels][kMostColors];
};

Centers CentersOf(const std::vector<ColorCell>& groups) {
  Centers centers{groups.size(), {}};
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const Quarters mean = MeanQuarters(groups[i]);
    for (std::size_t c = 0; c < kChannels; ++c) centers.channel[c][i] = mean[c];
  }
  return centers;
}

// A centre's index rides in the low 8 bits of its distance: the least number is the nearest one's.
std::size_t NearestCenter(const Centers& centers, const Quarters& color) {
  std::int32_t best = std::numeric_limits<std::int32_t>::max();
  for (std::size_t i = 0; i < centers.count; ++i) {
    const auto away = [&](std::size_t c) { return static_cast<std::int16_t>(centers.channel[c][i] - color[c]); };
    const std::int32_t red = away(0), green = away(1), blue = away(2);
    const std::int32_t key = (red * red + green * green + blue * blue) * 256 + static_cast<std::int32_t>(i);
    best = std::min(best, key);
  }
  return static_cast<std::size_t>(best & 0xFF);
}
static_assert(3 * 1020 * 1020 < std::numeric_limits<std::int32_t>::max() / 256 - 1);

// Sums of each group after its samples moved to the nearest centre; a group that lost all keeps what it had.
std::vector<ColorCell> Regroup(const ColorCounts& counts, const std::vector<Sample>& samples,
                               const std::vector<ColorCell>& groups) {
  const Centers centers = CentersOf(groups);
  std::vector<ColorCell> moved(groups.size());
  for (const Sample& sample : samples)
    Add(&moved[NearestCenter(centers, sample.color)], counts.cells[sample.cell]);
  for (std::size_t i = 0; i < groups.size(); ++i)
    if (moved[i].pixels == 0) moved[i] = groups[i];
  return moved;
}

// Rounds are fewer for images of very many colours: there each of them takes long and changes little.
std::size_t RoundsFor(std::size_t samples, std::size_t colors) {
  constexpr std::size_t kMostDistances = 12'000'000, kMostRounds = 32;
  return std::clamp(kMostDistances / (samples * colors), std::size_t{1}, kMostRounds);
}

std::vector<ColorCell> ChooseGroups(const ColorCounts& counts, std::vector<Sample>& samples, std::size_t howMany) {
  std::vector<ColorCell> groups;
  for (const Group& group : PartSamples(samples, howMany)) {
    ColorCell sums{};
    for (std::size_t i = group.first; i < group.end; ++i) Add(&sums, counts.cells[samples[i].cell]);
    groups.push_back(sums);
  }
  for (std::size_t round = RoundsFor(samples.size(), groups.size()); round > 0; --round)
    groups = Regroup(counts, samples, groups);
  return groups;
}

std::tuple<int, int, int> SortKey(IRGB color) {
  return {30 * color.red + 59 * color.green + 11 * color.blue, color.red, color.green};
}

}  // namespace

void CountColors(ColorCounts& counts, const IRGB* colors, std::size_t pixels) {
  counts.cells.resize(kCells);
  for (std::size_t i = 0; i < pixels; ++i) {
    const IRGB color = colors[i];
    constexpr unsigned kDropped = 8 - kCellBits;
    const std::size_t red = color.red >> kDropped, green = color.green >> kDropped, blue = color.blue >> kDropped;
    Add(&counts.cells[(red * kBins + green) * kBins + blue], {1, color.red, color.green, color.blue});
  }
}

std::vector<IRGB> ChoosePalette(const ColorCounts& counts, std::size_t howMany) {
  std::vector<Sample> samples = SamplesOf(counts);
  std::vector<ColorCell> groups;
  if (samples.size() > howMany)
    groups = ChooseGroups(counts, samples, howMany);
  else
    for (const Sample& sample : samples) groups.push_back(counts.cells[sample.cell]);
  std::vector<IRGB> palette(groups.size());
  std::transform(groups.begin(), groups.end(), palette.begin(), MeanColor);
  std::sort(palette.begin(), palette.end(), [](IRGB a, IRGB b) { return SortKey(a) < SortKey(b); });
  return palette;
}

}  // namespace cvt::host
