// How output files come into being: complete, under their name, or not at all.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support.h"

namespace cvt::imageio::test {
namespace {

using pipeline::Code;
using pipeline::GrayRamp;
using pipeline::Image;
using Names = std::vector<std::string>;

const Image kDot{1, 1, 8, GrayRamp(8)};
constexpr const char* kDotFile = "P5\n1 1\n255\nA";

TEST(Output, HasItsNameOnlyWhenItIsComplete) {
  const Folder folder;
  pipeline::RowSink sink;
  ASSERT_EQ(CreateImage(folder.Path("a.pgm"), {}, &sink).message, "");
  ASSERT_EQ(sink.begin(kDot).message, "");
  const std::uint8_t row[] = {0x41};
  ASSERT_EQ(sink.write(0, row).message, "");
  EXPECT_EQ(folder.Read("a.pgm"), "");
  ASSERT_EQ(sink.end().message, "");
  EXPECT_EQ(folder.Names(), Names{"a.pgm"});
  EXPECT_EQ(folder.Read("a.pgm"), kDotFile);
}

TEST(Output, LeavesNothingWhenItDoesNotEnd) {
  const Folder folder;
  for (const char* name : {"a.png", "a.pgm"}) {
    std::vector<std::string> noted;
    WriteOptions options;
    options.temporary = [&noted](const char* file) { noted.push_back(file == nullptr ? "gone" : file); };
    {
      pipeline::RowSink sink;
      ASSERT_EQ(CreateImage(folder.Path(name), options, &sink).message, "");
      ASSERT_EQ(sink.begin(kDot).message, "");
      ASSERT_EQ(noted.size(), 1U);
      EXPECT_EQ(folder.Names(), Names{std::filesystem::path(noted[0]).filename()});
    }
    EXPECT_TRUE(folder.Names().empty());
    EXPECT_EQ(noted.back(), "gone");
  }
}

TEST(Output, KeepsAFileThatExists) {
  const Folder folder;
  folder.Write("a.pgm", "old");
  pipeline::RowSink sink;
  EXPECT_EQ(CreateImage(folder.Path("a.pgm"), {}, &sink).code, Code::Output);
  EXPECT_EQ(folder.Read("a.pgm"), "old");
  EXPECT_EQ(folder.Names(), Names{"a.pgm"});
}

TEST(Output, KeepsAFileThatAppearsMeanwhile) {
  const Folder folder;
  {
    pipeline::RowSink sink;
    ASSERT_EQ(CreateImage(folder.Path("a.pgm"), {}, &sink).message, "");
    ASSERT_EQ(sink.begin(kDot).message, "");
    folder.Write("a.pgm", "theirs");
    EXPECT_EQ(sink.end().code, Code::Output);
  }
  EXPECT_EQ(folder.Read("a.pgm"), "theirs");
  EXPECT_EQ(folder.Names(), Names{"a.pgm"});
}

TEST(Output, ReplacesWhenToldToAndKeepsThePermissions) {
  const Folder folder;
  const std::string path = folder.Write("a.pgm", "old");
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  ASSERT_EQ(Save(path, {Format::FromSuffix, Existing::Replace, {}}, kDot, {"41"}).message, "");
  EXPECT_EQ(folder.Read("a.pgm"), kDotFile);
  struct stat about {};
  ASSERT_EQ(::stat(path.c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 0777, 0640U);
}

TEST(Output, ReplacesWhatALinkLeadsTo) {
  const Folder folder;
  folder.Write("real.pgm", "old");
  std::filesystem::create_symlink("real.pgm", folder.path / "link.pgm");
  EXPECT_EQ(Save(folder.Path("link.pgm"), {}, kDot, {"41"}).code, Code::Output);
  ASSERT_EQ(Save(folder.Path("link.pgm"), {Format::FromSuffix, Existing::Replace, {}}, kDot, {"41"}).message, "");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path / "link.pgm"));
  EXPECT_EQ(folder.Read("real.pgm"), kDotFile);
}

TEST(Output, TellsWhenTheDiskIsFull) {
  for (const Format format : {Format::Png, Format::Pgm}) {
    const pipeline::Status status = Save("/dev/full", {format, Existing::Refuse, {}}, kDot, {"41"});
    EXPECT_EQ(status.code, Code::Output);
    EXPECT_NE(status.message.find("No space left"), std::string::npos) << status.message;
  }
}

TEST(Output, NeedsAFormatAndADirectory) {
  const Folder folder;
  pipeline::RowSink sink;
  EXPECT_EQ(CreateImage("-", {}, &sink).code, Code::Usage);
  EXPECT_EQ(CreateImage(folder.Path("a.jpg"), {}, &sink).code, Code::Usage);
  EXPECT_EQ(CreateImage(folder.Path("png"), {}, &sink).code, Code::Usage);
  EXPECT_EQ(CreateImage(folder.Path("none/a.png"), {}, &sink).code, Code::Output);
  EXPECT_EQ(CreateImage(folder.path.string(), {Format::Png, Existing::Replace, {}}, &sink).code, Code::Output);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(Output, SuffixesMayBeInCapitals) {
  const Folder folder;
  ASSERT_EQ(Save(folder.Path("A.PGM"), {}, kDot, {"41"}).message, "");
  EXPECT_EQ(folder.Read("A.PGM"), kDotFile);
}

}  // namespace
}  // namespace cvt::imageio::test
