# FreeType, which knows what is inside a font file, and libarchive, which unpacks the compressed ones.
pkg_check_modules(freetype REQUIRED IMPORTED_TARGET freetype2)
pkg_check_modules(libarchive REQUIRED IMPORTED_TARGET libarchive)
