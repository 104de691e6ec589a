// What builds without TIFF or JPEG say of such files.
#include <gtest/gtest.h>

#include <tuple>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;

TEST(Absent, FormatsAreNamedInOneClearLine) {
  const Folder folder;
  for (const auto& [built, format, head] : {std::tuple(CVTR2R_BUILT_WITH_TIFF, "TIFF", Bytes("49492a00")),
                                            std::tuple(CVTR2R_BUILT_WITH_JPEG, "JPEG", Bytes("ffd8ffe0"))}) {
    const pipeline::Status status = Load(folder.Write("a", head)).status;
    const std::string says = std::string("built without ") + format;
    EXPECT_EQ(status.code, built ? Code::Input : Code::Usage) << status.message;
    EXPECT_EQ(status.message.find(says) == std::string::npos, built) << status.message;
  }
  Format format = Format::FromSuffix;
  EXPECT_EQ(Failed(ChooseFormat("a.tif", Format::FromSuffix, &format)), !CVTR2R_BUILT_WITH_TIFF);
  EXPECT_EQ(Failed(ChooseFormat("-", Format::Tiff, &format)), !CVTR2R_BUILT_WITH_TIFF);
}

}  // namespace
}  // namespace cvt::imageio::test
