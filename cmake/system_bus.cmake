# libsystemd, with which the removable-media service is asked over the system's message bus.
find_package(PkgConfig REQUIRED)
pkg_check_modules(libsystemd REQUIRED IMPORTED_TARGET libsystemd)
