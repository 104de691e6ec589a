#include "app/matrices.h"

#include <utility>

#include "host/matrices.h"
#include "imageio/matrix_file.h"

namespace cvt::app {

Outcome ReadMatrixWish(const std::optional<std::string>& name, pipeline::Thresholds* thresholds) {
  if (!name) return Done();
  if (std::optional<host::Matrix> matrix = host::MatrixNamed(*name)) {
    *thresholds = {matrix->width, matrix->height, std::move(matrix->values)};
    return Done();
  }
  if (imageio::IsMatrixFile(*name)) return {imageio::ReadMatrix(*name, thresholds), *name};
  return Usage("--matrix", "'" + *name + "' is no matrix (give a name that r2r list matrices shows, or FILE.pgm)");
}

}  // namespace cvt::app
