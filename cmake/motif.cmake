# Motif ships neither a pkg-config file nor an imported target, so the target is made here. Its headers are marked as
# system headers, because they cause warnings.
find_package(X11 REQUIRED)
find_package(Motif REQUIRED)
add_library(motif INTERFACE IMPORTED)
target_include_directories(motif SYSTEM INTERFACE ${MOTIF_INCLUDE_DIR})
target_link_libraries(motif INTERFACE ${MOTIF_LIBRARIES} X11::Xt X11::X11)
