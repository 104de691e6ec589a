#include "support.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <iterator>

namespace cvt::imageio::test {

namespace {

std::string Word(std::size_t value) {
  std::string word;
  for (int shift = 24; shift >= 0; shift -= 8) word += static_cast<char>(value >> shift & 255);
  return word;
}

}  // namespace

std::string Bytes(std::string_view hex) {
  std::string digits;
  std::copy_if(hex.begin(), hex.end(), std::back_inserter(digits), [](char c) { return c != ' '; });
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

std::string Hex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const char c : bytes) {
    hex += kDigits[static_cast<unsigned char>(c) >> 4];
    hex += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return hex;
}

std::string Hex(const std::vector<IRGB>& colors) {
  std::string bytes;
  for (const IRGB& c : colors) {
    for (const std::uint8_t level : {c.red, c.green, c.blue}) bytes += static_cast<char>(level);
  }
  return Hex(bytes);
}

std::string Chunk(const std::string& type, const std::string& data) {
  const std::string summed = type + data;
  const auto* bytes = reinterpret_cast<const Bytef*>(summed.data());
  return Word(data.size()) + summed + Word(crc32(0, bytes, static_cast<uInt>(summed.size())));
}

std::string Deflated(const std::string& bytes) {
  std::string packed(compressBound(bytes.size()), '\0');
  uLongf size = packed.size();
  compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
           bytes.size());
  packed.resize(size);
  return packed;
}

std::string Png(const PngParts& parts) {
  const std::string header = Word(static_cast<std::size_t>(parts.width)) +
                             Word(static_cast<std::size_t>(parts.height)) + static_cast<char>(parts.bits) +
                             static_cast<char>(parts.colorType) + std::string(2, '\0') +
                             static_cast<char>(parts.interlace);
  return Bytes("89504e470d0a1a0a") + Chunk("IHDR", header) + parts.chunks + Chunk("IDAT", Deflated(parts.scan)) +
         Chunk("IEND", "");
}

std::string Changed(std::string file, std::size_t at, int bits) {
  file[at] = static_cast<char>(file[at] ^ bits);
  return file;
}

std::string Pam(int width, int depth, int largest, const std::string& type, std::string_view samples) {
  return "P7\nWIDTH " + std::to_string(width) + "\nHEIGHT 1\nDEPTH " + std::to_string(depth) + "\nMAXVAL " +
         std::to_string(largest) + "\nTUPLTYPE " + type + "\nENDHDR\n" + Bytes(samples);
}

Loaded Load(const std::string& path, const ReadOptions& options) {
  Loaded loaded;
  pipeline::RowSource source;
  loaded.status = OpenImage(path, options, &source);
  if (Failed(loaded.status)) return loaded;
  loaded.image = source.image;
  std::vector<std::uint8_t> row(pipeline::RowBytes(source.image));
  const int tail = source.image.width * pipeline::StoredBits(source.image.depth) % 8;
  for (std::int32_t y = 0; y < source.image.height; ++y) {
    loaded.status = source.read(row.data());
    if (Failed(loaded.status)) return loaded;
    if (tail != 0) row.back() = static_cast<std::uint8_t>(row.back() >> (8 - tail) << (8 - tail));
    loaded.rows.push_back(Hex({reinterpret_cast<const char*>(row.data()), row.size()}));
  }
  return loaded;
}

pipeline::Status Save(const std::string& path, const WriteOptions& options, const pipeline::Image& image,
                      const std::vector<std::string>& rowsHex) {
  pipeline::RowSink sink;
  if (pipeline::Status failed = CreateImage(path, options, &sink); Failed(failed)) return failed;
  if (pipeline::Status failed = sink.begin(image); Failed(failed)) return failed;
  for (std::size_t y = 0; y < rowsHex.size(); ++y) {
    const std::string row = Bytes(rowsHex[y]);
    pipeline::Status failed =
        sink.write(static_cast<std::int32_t>(y), reinterpret_cast<const std::uint8_t*>(row.data()));
    if (Failed(failed)) return failed;
  }
  return sink.end();
}

std::vector<IRGB> Colors(std::string_view hex) {
  const std::string bytes = Bytes(hex);
  std::vector<IRGB> colors;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const auto level = [&](std::size_t k) { return static_cast<std::uint8_t>(bytes[i + k]); };
    colors.push_back({level(0), level(1), level(2)});
  }
  return colors;
}

void ExpectRefusal(const pipeline::Status& status, pipeline::Code code, std::string_view says) {
  EXPECT_EQ(status.code, code) << status.message;
  EXPECT_NE(status.message.find(says), std::string::npos) << status.message << "\n  does not say: " << says;
  EXPECT_TRUE(status.message.ends_with(')')) << status.message;
  EXPECT_EQ(status.message.find('\n'), std::string::npos) << status.message;
}

void ExpectSuccessOrOneClearLine(const pipeline::Status& status) {
  if (!Failed(status)) return;
  ExpectRefusal(status, status.code, "");
  EXPECT_NE(status.code, pipeline::Code::Output);
}

std::vector<Format> WrittenFormats() {
  std::vector<Format> formats = {Format::Png, Format::Pgm, Format::Raw, Format::C};
  if (CVTR2R_BUILT_WITH_TIFF) formats.push_back(Format::Tiff);
  return formats;
}

}  // namespace cvt::imageio::test
