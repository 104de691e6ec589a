#include "app/caption_font.h"

namespace cvt::app {

namespace {

constexpr char kFirst = ' ';
constexpr char kBox = 0x7f;

// From the blank to the box: 9 rows of 5 bits, the top left one highest.
constexpr std::uint64_t kLetters[] = {
    0x000000000000, 0x042108401000, 0x0a5280000000, 0x0a57d5f52800, 0x047d1c5f1000, 0x19c88889cc00, 0x0c9499593400,
    0x042100000000, 0x022210820800, 0x082084222000, 0x00255d520000, 0x00213e420000, 0x000000031844, 0x00003e000000,
    0x000000031800, 0x010888884000, 0x0e8ceb98b800, 0x046108423800, 0x0e8844447c00, 0x1f088c18b800, 0x0232a5f10800,
    0x1f878218b800, 0x06443d18b800, 0x1f0888842000, 0x0e8c5d18b800, 0x0e8c5e113000, 0x003180031800, 0x003180031844,
    0x011110410400, 0x0007c1f00000, 0x104104444000, 0x0e8844401000, 0x0e8deb783c00, 0x0e8c7f18c400, 0x1e8c7d18f800,
    0x0e8c2108b800, 0x1c9463197000, 0x1f843d087c00, 0x1f843d084000, 0x0e8c2f18bc00, 0x118c7f18c400, 0x0e2108423800,
    0x071084293000, 0x119531494400, 0x108421087c00, 0x11dd6b18c400, 0x11cd6718c400, 0x0e8c6318b800, 0x1e8c7d084000,
    0x0e8c63593400, 0x1e8c7d494400, 0x0f841c10f800, 0x1f2108421000, 0x118c6318b800, 0x118c54a51000, 0x118c6b5dc400,
    0x118a88a8c400, 0x118a88421000, 0x1f0888887c00, 0x0e4210843800, 0x108208208400, 0x0e1084213800, 0x045440000000,
    0x0000000003e0, 0x082000000000, 0x000382f8bc00, 0x1087a318f800, 0x0003a308b800, 0x010be318bc00, 0x0003a3f83800,
    0x064790842000, 0x0003e318bc2e, 0x1087a318c400, 0x040308423800, 0x02018421084c, 0x1084a98a4800, 0x0c2108423800,
    0x0006ab5ad400, 0x0007a318c400, 0x0003a318b800, 0x0007a318fa10, 0x0003e318bc21, 0x0005b1084000, 0x0003e0e0f800,
    0x084790841800, 0x00046318bc00, 0x000463151000, 0x00046b5aa800, 0x000454454400, 0x00046318bc2e, 0x0007c4447c00,
    0x022110420800, 0x042108421080, 0x082104422000, 0x000013600000, 0x1f8c6318fc00};

}  // namespace

bool HasInk(char letter, std::int32_t x, std::int32_t y) {
  const auto code = static_cast<unsigned char>(letter);
  const auto index = static_cast<std::size_t>((code < kFirst || code > kBox ? kBox : code) - kFirst);
  return (kLetters[index] >> (kLetterWidth * (kLetterHeight - y) - 1 - x) & 1) != 0;
}

std::string Letters(std::string_view text) {
  std::string letters;
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if (value >= 0x80 && value < 0xc0) continue;  // goes on with a character
    letters += value < kFirst || value >= 0x80 ? kBox : byte;
  }
  return letters;
}

std::vector<std::string> Wrapped(std::string_view text, std::size_t most) {
  std::vector<std::string> lines;
  while (text.size() > most) {
    const std::size_t blank = text.rfind(' ', most);
    const bool cuts = blank == std::string_view::npos || blank == 0;
    lines.emplace_back(text.substr(0, cuts ? most : blank));
    text.remove_prefix(cuts ? most : blank + 1);
  }
  lines.emplace_back(text);
  return lines;
}

}  // namespace cvt::app
