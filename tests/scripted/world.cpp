#include "tests/scripted/world.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

#include "tests/scripted/prefix.h"

struct tagOpList {
  std::uint8_t unused;
};

namespace cvt::test {

namespace {

constexpr std::int64_t kSourceName = -1, kDestinationName = -2, kContextName = -3, kTableName = -4, kListName = -5,
                       kNextName = -6, kStranger = -99;
thread_local World* current = nullptr;

void FillFresh(std::uint8_t* base, std::uint32_t size, std::uint32_t ordinal) {
  for (std::uint32_t i = 0; i < size; ++i) base[i] = static_cast<std::uint8_t>(0x5A + 7 * i + 31 * ordinal);
}

}  // namespace

IRGB* SharedPalette() {
  static std::vector<IRGB> palette = [] {
    std::vector<IRGB> made(kPaletteEntries);
    std::mt19937 dice(17);
    for (IRGB& c : made) {
      const auto bits = static_cast<std::uint32_t>(dice());
      c = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
           static_cast<std::uint8_t>(bits >> 16)};
    }
    return made;
  }();
  return palette.data();
}

std::uint8_t* SharedTable() {
  static std::vector<std::uint8_t> table = [] {
    std::vector<std::uint8_t> made(kTableBytes);
    std::mt19937 dice(18);
    for (std::uint8_t& b : made) b = static_cast<std::uint8_t>(dice());
    return made;
  }();
  return table.data();
}

tagOpList* SharedList() {
  static tagOpList list{};
  return &list;
}

std::int64_t Hash(const void* data, std::size_t bytes, std::uint64_t seed) {
  const auto* at = static_cast<const std::uint8_t*>(data);
  std::uint64_t sum = 14695981039346656037u ^ seed;
  for (std::size_t i = 0; i < bytes; ++i) sum = (sum ^ at[i]) * 1099511628211u;
  return static_cast<std::int64_t>(sum >> 16);
}

World::World(const Script& what, std::uint16_t capacity, const std::vector<std::int16_t>& errorRow)
    : script(what),
      runLengths(capacity, 0xEEEE),
      values(capacity, 0xEEEEEEEE),
      errors(errorRow),
      stageSlot(&stage) {
  current = this;
  stage.bandLimit = 65535;
  next = {&stageSlot, &nextBand, nullptr};
  context.runLengths = runLengths.data();
  context.values = values.data();
  context.runCount = capacity;
  context.errorRow = errors.data();
  context.searchTable = SharedTable();
  context.next = &next;
  context.convertProc = ScriptedConvert;
}

World::~World() {
  while (!live_.empty()) Release(live_.begin()->second.base);
  current = nullptr;
}

World& World::Here() { return *current; }

tagRasterPacked* World::MakeBand(const BandPlan& plan) {
  const auto body = static_cast<std::uint32_t>(kBandHeaderBytes + plan.pixels.size());
  std::uint8_t* base = Take(body + kBandPrefixBytes, BlockKind::CallersBand);
  auto* band = reinterpret_cast<tagRasterPacked*>(base + kBandPrefixBytes);
  SetPrefix(band, {plan.planes ? kPlaneBand : kPackedBand, static_cast<std::uint16_t>(body)});
  const std::uint32_t planeBytes = ((plan.width + 15u) >> 3 & ~1u) * plan.lineCount;
  *band = {plan.left,      plan.top,   plan.width,
           plan.lineCount, plan.depth, static_cast<std::uint16_t>(plan.planes ? planeBytes : 0x7777)};
  if (!plan.pixels.empty()) std::memcpy(band + 1, plan.pixels.data(), plan.pixels.size());
  return band;
}

// Every block is a malloc block of exactly the size asked for, so that a sanitizer sees the first byte
// beyond either end.
std::uint8_t* World::Take(std::uint32_t size, BlockKind kind) {
  if (size > kLargestBlock) return nullptr;
  auto* base = static_cast<std::uint8_t*>(std::malloc(size));
  FillFresh(base, size, ++ordinals_);
  live_[base] = {base, size, ordinals_, kind};
  return base;
}

bool World::Release(void* base) {
  const auto found = live_.find(base);
  if (found == live_.end()) return false;
  std::memset(found->second.base, 0xDD, found->second.size);
  std::free(found->second.base);
  live_.erase(found);
  return true;
}

Block* World::Holding(const void* inside) {
  auto found = live_.upper_bound(inside);
  if (found == live_.begin()) return nullptr;
  Block& block = (--found)->second;
  const auto* at = static_cast<const std::uint8_t*>(inside);
  return at <= block.base + block.size ? &block : nullptr;
}

std::int64_t World::Identify(const void* what) const {
  if (what == nullptr) return 0;
  if (what == &source) return kSourceName;
  if (what == &destination) return kDestinationName;
  if (what == &context) return kContextName;
  if (what == SharedTable()) return kTableName;
  if (what == SharedList()) return kListName;
  if (what == &next) return kNextName;
  auto found = live_.upper_bound(what);
  if (found == live_.begin()) return kStranger;
  const Block& block = (--found)->second;
  const bool isBand = block.kind == BlockKind::Band || block.kind == BlockKind::CallersBand;
  return what == block.base + (isBand ? kBandPrefixBytes : 0) ? block.ordinal : kStranger;
}

std::vector<std::uint8_t> World::BytesOf(const void* band) {
  const Block* block = Holding(band);
  if (block == nullptr) return {};
  return {block->base, block->base + block->size};
}

std::int64_t World::ErrorRowHash() const {
  return script.watchesErrorRow ? Hash(errors.data(), errors.size() * 2) : 0;
}

std::vector<Block> World::InOrder() const {
  std::vector<Block> blocks;
  for (const auto& [base, block] : live_) blocks.push_back(block);
  std::sort(blocks.begin(), blocks.end(), [](const Block& a, const Block& b) { return a.ordinal < b.ordinal; });
  return blocks;
}

std::vector<std::string> World::LeftAllocated() const {
  static constexpr std::array<const char*, 3> kNames = {"heap block", "band", "descriptor copy"};
  std::vector<std::string> left;
  for (const Block& block : InOrder())
    if (const auto kind = static_cast<std::size_t>(block.kind); kind < kNames.size())
      left.push_back(std::string(kNames[kind]) + " of " + std::to_string(block.size) + " bytes");
  return left;
}

std::vector<std::vector<std::uint8_t>> World::CallersHeap() const {
  std::vector<std::vector<std::uint8_t>> blocks;
  for (const Block& block : InOrder())
    if (block.kind == BlockKind::CallersHeap) blocks.emplace_back(block.base, block.base + block.size);
  return blocks;
}

}  // namespace cvt::test
