# The message bus of the host, on which the removable-media service is asked.
find_package(PkgConfig REQUIRED)
pkg_check_modules(libsystemd REQUIRED IMPORTED_TARGET libsystemd)
