// Stands in for TIFF in builds without libtiff.
#include "imageio/tiff_file.h"

namespace cvt::imageio {

using pipeline::Code;
using pipeline::Fail;
using pipeline::Image;
using pipeline::Status;

Status HaveTiff() {
  return Fail(Code::Usage, "this r2r was built without TIFF (choose another format, or build it with libtiff)");
}

Status OpenTiff(std::unique_ptr<InputFile>, const ReadOptions&, pipeline::RowSource*, Stored*) {
  return HaveTiff();
}

Status DescribeTiff(std::unique_ptr<InputFile>, const ReadOptions&, std::vector<Description>*) {
  return HaveTiff();
}

pipeline::RowSink WriteTiff(std::unique_ptr<OutputFile>, Compression) {
  return {[](const Image&) { return HaveTiff(); }, [](std::int32_t, const std::uint8_t*) { return HaveTiff(); },
          [] { return HaveTiff(); }};
}

}  // namespace cvt::imageio
