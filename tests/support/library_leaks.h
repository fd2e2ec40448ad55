// SPDX-License-Identifier: MIT
#pragma once

#ifdef GLYPHWARD_SANITIZE
#include <sanitizer/lsan_interface.h>
#endif

namespace gw::test {

/// As long as this exists, memory that is allocated and lost is not reported. For calls in which a library
/// loses some: the user of this says which library it is and what it loses.
class LibraryLeaks {
  public:
    LibraryLeaks() {
#ifdef GLYPHWARD_SANITIZE
        __lsan_disable();
#endif
    }
    ~LibraryLeaks() {
#ifdef GLYPHWARD_SANITIZE
        __lsan_enable();
#endif
    }
    LibraryLeaks(const LibraryLeaks&) = delete;
    LibraryLeaks& operator=(const LibraryLeaks&) = delete;
};

}  // namespace gw::test
