# The libraries that the project leans on, each from the distribution.
find_package(Threads REQUIRED)
find_package(simdjson REQUIRED)
find_package(fmt REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)
