#include "support/version.h"

namespace kestrel {

// The one record of the version: the build files read the version and the soname from this line.
const Version kVersion = {21, 2, 0, "dev", 1791, "21.2.0dev (1791)"};

}  // namespace kestrel
