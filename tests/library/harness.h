// Runs one routine on one case in a fresh scripted world and keeps everything that can be compared.
#pragma once

#include <random>
#include <span>
#include <string>
#include <vector>

#include "tests/reference/reference.h"
#include "tests/scripted/world.h"

namespace cvt::test {

using BandRoutine = CvtStatus (*)(tagRasterPacked**, tagIGFD*, tagIGFD*, tagCRLA*);

/// A routine that takes planes, as one that takes any band.
template <CvtStatus (*kRoutine)(tagRasterPlane**, tagIGFD*, tagIGFD*, tagCRLA*)>
CvtStatus OnPlanes(tagRasterPacked** band, tagIGFD* source, tagIGFD* destination, tagCRLA* context) {
  auto* planes = reinterpret_cast<tagRasterPlane*>(*band);
  const CvtStatus status = kRoutine(&planes, source, destination, context);
  *band = reinterpret_cast<tagRasterPacked*>(planes);
  return status;
}

/// The four members of a family: the library's routine and which sibling it is.
struct Member {
  const char* name;
  Sibling which;
  BandRoutine library, twin;
};
extern const std::vector<Member> kNearestFamily;
extern const std::vector<Member> kMonoDiffusionFamily;

/// The context's settings, and the bands of one image with the descriptors that they are converted under.
struct Case {
  std::vector<BandPlan> bands;
  tagIGFD source{}, destination{};
  std::uint8_t halftoneMethod = kNearest, sameColorMap = 0, invertMono = 0, grayPalette = 0;
  std::uint16_t gammaActive = 0;
  std::uint16_t capacity = 0;
  std::vector<std::int16_t> errorRow;
  Script script;
};

/// A case of one band that is wide enough for nothing special: depths as given, indexed, no options.
Case PlainCase(bool planes, std::uint8_t sourceDepth, std::uint8_t destinationDepth, std::uint16_t width,
               std::uint16_t lines, std::uint8_t fill = 0);
std::size_t PixelBytes(bool planes, std::uint16_t width, std::uint16_t lines, std::uint16_t depth);

struct Outcome {
  std::vector<std::int16_t> statuses;  // of each band, up to and with the first that failed
  std::vector<Entry> log;
  std::vector<std::vector<std::uint8_t>> handedOn;
  std::vector<std::vector<std::uint8_t>> inputs;  // the caller's bands after the call
  std::vector<std::int16_t> errorRow;
  std::vector<std::uint16_t> runLengths;
  std::vector<std::uint32_t> values;
  std::vector<std::uint8_t> context;  // the record, pointers left out
  bool callersKept = true;            // the caller's band pointer and the context's pointers are untouched
  std::vector<std::string> leftAllocated;
  bool operator==(const Outcome&) const = default;

  std::vector<Entry> Calls(Call call) const;
};

/// A word of a band's block: of prefix and header as this machine stores it, of the pixels low byte first.
int WordAt(const std::vector<std::uint8_t>& block, std::size_t at);

/// convert: what stands in the context as convertProc; the scripted one ends every chain.
Outcome RunCase(const Case& what, BandRoutine routine, CvtConvertProc convert = ScriptedConvert);

/// Makes the world's descriptors and context what the case says.
void SetUp(World& world, const Case& what, CvtConvertProc convert);

/// Empty when two outcomes are the same, otherwise where they part.
std::string Difference(const Outcome& library, const Outcome& twin);
std::string Describe(const Case& what);

/// Random cases. A case depends on the seed and its number alone, or on the bytes of a fuzzer.
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
Case RandomCase(Dice& dice, Sibling which);

}  // namespace cvt::test
