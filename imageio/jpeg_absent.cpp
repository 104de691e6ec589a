// Stands in for JPEG in builds without libjpeg.
#include "imageio/jpeg_file.h"

namespace cvt::imageio {

pipeline::Status OpenJpeg(std::unique_ptr<InputFile>, const ReadOptions&, pipeline::RowSource*, Stored*) {
  return pipeline::Fail(pipeline::Code::Usage,
                        "this r2r was built without JPEG (convert it to PNG first, or build r2r with libjpeg)");
}

}  // namespace cvt::imageio
