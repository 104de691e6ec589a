// Runs one routine on one case in a fresh scripted world and keeps everything that can be compared.
#pragma once

#include <functional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "tests/reference/reference.h"
#include "tests/scripted/world.h"

namespace cvt::test {

// ---- Routines ----

using BandRoutine = CvtStatus (*)(tagRasterPacked**, tagIGFD*, tagIGFD*, tagCRLA*);

/// A routine that takes planes, as one that takes any band.
template <CvtStatus (*kRoutine)(tagRasterPlane**, tagIGFD*, tagIGFD*, tagCRLA*)>
CvtStatus OnPlanes(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  auto* planes = reinterpret_cast<tagRasterPlane*>(*band);
  const CvtStatus status = kRoutine(&planes, source, destination, context);
  *band = reinterpret_cast<tagRasterPacked*>(planes);
  return status;
}

/// A routine with its first arguments settled.
template <auto kRoutine, auto... kFirst>
CvtStatus With(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  return kRoutine(kFirst..., band, source, destination, context);
}

/// A routine of the library beside its twin.
struct Member {
  std::string name;
  Sibling which;
  BandRoutine library, twin;
};

inline constexpr Sibling kBitByte = {true, false}, kByteBit = {false, true}, kBitBit = {true, true},
                         kByteByte = {false, false};

template <auto kTwin, auto kFromBitToByte, auto kFromByteToBit, auto kFromBitToBit, auto kFromByteToByte>
std::vector<Member> FamilyOf(const std::string& stem) {
  return {{stem + "BitByte", kBitByte, OnPlanes<kFromBitToByte>, With<kTwin, kBitByte>},
          {stem + "ByteBit", kByteBit, kFromByteToBit, With<kTwin, kByteBit>},
          {stem + "BitBit", kBitBit, OnPlanes<kFromBitToBit>, With<kTwin, kBitBit>},
          {stem + "ByteByte", kByteByte, kFromByteToByte, With<kTwin, kByteByte>}};
}
extern const std::vector<Member> kNearestFamily, kMonoDiffusionFamily;

// ---- Cases ----

/// The context's settings, and the bands of one image with the descriptors that they are converted under.
struct Case {
  std::vector<BandPlan> bands;
  tagIGFD source{}, destination{};
  std::uint8_t halftoneMethod = kNearest, sameColorMap = 0, invertMono = 0, grayPalette = 0, scaleDownMethod = 0;
  std::uint16_t gammaActive = 0;
  std::uint16_t capacity = 0;
  std::uint16_t bandLimit = 65535;
  std::uint16_t operationCode = 0;  // 0: what the bands are
  std::uint32_t accumulator = 0;    // of a context that has already scaled
  std::size_t linePixels = 0;       // entries of the line arrays of smooth scaling
  std::vector<std::int16_t> errorRow;
  Script script;
};

inline std::uint8_t Byte(std::int64_t value) { return static_cast<std::uint8_t>(value); }
inline std::uint16_t Word(std::int64_t value) { return static_cast<std::uint16_t>(value); }

/// A case of one band that is wide enough for nothing special: depths as given, indexed, no options.
Case PlainCase(bool planes, int sourceDepth, int destinationDepth, int width, int lines, std::uint8_t fill = 0);
std::size_t PixelBytes(bool planes, std::uint16_t width, std::uint16_t lines, std::uint16_t depth);
/// Gives a band a depth, and the bytes that it takes more.
void SetDepth(BandPlan& band, int depth, std::uint8_t fill);
/// A band at 0, 0 of the values of its pixels, line by line.
BandPlan BandOf(bool planes, int depth, std::size_t width, const std::vector<std::uint32_t>& values);
/// 256 entries; entry n is gray n: (30 n + 59 n + 11 n) / 100 = n.
IRGB* GrayRamp();

struct Outcome {
  std::vector<std::int16_t> statuses;  // of each band, up to and with the first that failed
  std::vector<Entry> log;
  std::vector<std::vector<std::uint8_t>> handedOn;
  std::vector<std::vector<std::uint8_t>> inputs;   // the caller's bands after the call
  std::vector<std::vector<std::uint8_t>> buffers;  // that scaling was given
  std::vector<std::int16_t> errorRow;
  std::vector<std::uint16_t> runLengths;
  std::vector<std::uint32_t> values;
  std::vector<std::uint8_t> context;  // the record, pointers left out
  bool callersKept = true;            // the caller's band pointer and the context's pointers are untouched
  std::vector<std::string> leftAllocated;
  bool operator==(const Outcome&) const = default;

  std::vector<Entry> Calls(Call call) const;
  /// An argument of every such call.
  std::vector<int> Args(Call call, std::size_t which) const;
  /// "top+lines" of every band that was handed on.
  std::string Pieces() const;
};

/// A word of a band's block: of prefix and header as this machine stores it, of the pixels low byte first.
int WordAt(const std::vector<std::uint8_t>& block, std::size_t at);

/// What else a case needs in its world, before the first band.
using Furnish = std::function<void(World&)>;
/// Line buffer and line arrays, all of them blocks of the caller's heap.
void FurnishForScaling(World& world, std::size_t entries, std::size_t pixels);
/// Makes the world's descriptors and context what the case says.
void SetUp(World& world, const Case& what, CvtConvertProc convert);
/// convert: what stands in the context as convertProc; the scripted one ends every chain.
Outcome RunCase(const Case& what, BandRoutine routine, CvtConvertProc convert = ScriptedConvert,
                const Furnish& furnish = {});

/// Empty when two outcomes are the same, otherwise where they part.
std::string Difference(const Outcome& library, const Outcome& twin);
std::string Describe(const Case& what);

// ---- Random cases ----

/// A case depends on the seed and its number alone, or on the bytes of a fuzzer.
class Dice {
 public:
  explicit Dice(std::uint32_t number);
  /// Every choice takes bytes as long as there are any.
  explicit Dice(std::span<const std::uint8_t> bytes) : engine_(bytes.empty() ? 0 : bytes.back()), bytes_(bytes) {}
  int Between(int low, int high) {
    const auto choices = static_cast<std::uint32_t>(high - low + 1);
    return low + static_cast<int>((bytes_.empty() ? engine_() : Taken(choices)) % choices);
  }
  bool OneIn(int n) { return Between(1, n) == 1; }
  template <class T>
  T Of(std::initializer_list<T> choices) {
    return choices.begin()[Between(0, static_cast<int>(choices.size()) - 1)];
  }

 private:
  std::uint32_t Taken(std::uint32_t choices);

  std::mt19937 engine_;
  std::span<const std::uint8_t> bytes_;
};
std::uint32_t Seed();            // CVTR2R_TEST_SEED or a fixed number
int Rounds(int ordinaryNumber);  // times CVTR2R_TEST_ROUNDS, if set
void FillPixels(Dice& dice, std::vector<std::uint8_t>& pixels);
Case RandomCase(Dice& dice, Sibling which);

}  // namespace cvt::test
