// A place for bytes that have to be gone back to.
#pragma once

namespace cvt::imageio {

/// A file without a name in the directory for temporary files, open for reading and writing. -1 and errno
/// where there can be none.
int CreateSpool();

}  // namespace cvt::imageio
