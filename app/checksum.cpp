#include "app/checksum.h"

#include <zlib.h>

#include <array>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "imageio/samples.h"

namespace cvt::app {

namespace {

struct Checker {
  pipeline::RowSink sink;
  pipeline::Image image;
  std::vector<std::uint8_t> row;
  std::uint32_t* crc;
};

void Count(Checker& checker, const std::uint8_t* row) {
  checker.row.assign(row, row + pipeline::RowBytes(checker.image));
  imageio::ClearTails(checker.image, checker.row.data());
  *checker.crc = static_cast<std::uint32_t>(::crc32_z(*checker.crc, checker.row.data(), checker.row.size()));
}

}  // namespace

pipeline::RowSink Checked(pipeline::RowSink sink, std::uint32_t* crc) {
  auto checker = std::make_shared<Checker>(Checker{std::move(sink), {}, {}, crc});
  return {[checker](const pipeline::Image& image) {
            checker->image = image;
            *checker->crc = 0;
            return checker->sink.begin(image);
          },
          [checker](std::int32_t y, const std::uint8_t* row) {
            Count(*checker, row);
            return checker->sink.write(y, row);
          },
          [checker] { return checker->sink.end(); }};
}

std::string Hex(std::uint32_t crc) {
  std::array<char, 9> digits{};
  std::snprintf(digits.data(), digits.size(), "%08x", static_cast<unsigned>(crc));
  return digits.data();
}

}  // namespace cvt::app
