#include "imageio/spool.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace cvt::imageio {

int CreateSpool() {
  std::error_code ignored;  // without a directory the name is one that mkstemp refuses
  std::string name = (std::filesystem::temp_directory_path(ignored) / ".r2r-XXXXXX").string();
  const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor >= 0) ::unlink(name.c_str());
  return descriptor;
}

}  // namespace cvt::imageio
