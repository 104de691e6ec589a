// Threshold matrices of ordered dither, made by formula.
//
// A pixel is white where the threshold of its place lies below its gray level. A matrix of N places spreads its
// thresholds so that gray level g turns g * N / 255 places white, rounded: black stays black, white stays white.
// Bayer matrices scatter the places as evenly as can be; clustered-dot matrices grow them out of few dots, for
// printers that cannot hold single pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace cvt::host {

struct Matrix {
  std::uint8_t width, height;
  std::vector<std::uint8_t> values;  // height rows of width thresholds
};

/// The names that MatrixNamed knows.
inline constexpr std::string_view kMatrixNames[] = {"bayer2",  "bayer4",   "bayer8",
                                                    "bayer16", "cluster4", "cluster8"};

/// A matrix by its name; nothing when there is none of that name.
///
/// cluster4 has one dot in a tile of 4 x 4, cluster8 two dots, on a diagonal, in one of 8 x 8.
std::optional<Matrix> MatrixNamed(std::string_view name);

/// Fills `values`, size * size bytes, with a Bayer matrix. size  in  2, 4, 8 or 16
void FillBayer(std::uint32_t size, std::uint8_t* values);

}  // namespace cvt::host
