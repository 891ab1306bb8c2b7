# The libraries that the project leans on, each from the distribution.
find_package(Threads REQUIRED)
find_package(simdjson REQUIRED)
find_package(fmt REQUIRED)
find_package(date REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(utf8proc REQUIRED IMPORTED_TARGET libutf8proc)
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Darwin")  # which has property lists of its own
  find_package(OpenSSL REQUIRED COMPONENTS Crypto)
  pkg_check_modules(libplist REQUIRED IMPORTED_TARGET libplist-2.0)
endif()
