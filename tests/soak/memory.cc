// SPDX-License-Identifier: MIT
#include "soak/memory.h"

#include <unistd.h>

#include <sstream>

#include "soak/font_model.h"

#ifdef GLYPHWARD_SANITIZE
#include <sanitizer/allocator_interface.h>
#endif

namespace gw::soak {

std::size_t heap_bytes() {
#ifdef GLYPHWARD_SANITIZE
    return __sanitizer_get_current_allocated_bytes();
#else
    return 0;
#endif
}

std::size_t resident_bytes() {
    std::istringstream in(bytes_of("/proc/self/statm"));
    std::size_t pages = 0;
    in >> pages >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace gw::soak
