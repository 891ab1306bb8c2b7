# What every target of the project is compiled with.
add_library(vostrel_plain_options INTERFACE)
target_compile_options(vostrel_plain_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # GCC 12 takes "text" + std::string for overlapping copies once it optimises; GCC 13 knows better.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
target_include_directories(vostrel_plain_options INTERFACE "${PROJECT_SOURCE_DIR}/core")

# And nearly all are instrumented where a sanitizer is asked for.
add_library(vostrel_options INTERFACE)
target_link_libraries(vostrel_options INTERFACE vostrel_plain_options)

if(VOSTREL_SANITIZE)
  # Optimising what a sanitizer instruments takes the compiler twice as long and spares the tests a few seconds; of the
  # debugger's information its reports need the lines.
  target_compile_options(vostrel_options INTERFACE
    -fsanitize=${VOSTREL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O0 -g1
    # What a sanitizer adds makes GCC take the standard library's own variants and functions for uninitialized.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(vostrel_options INTERFACE -fsanitize=${VOSTREL_SANITIZE})
endif()

find_program(VOSTREL_CCACHE ccache)
if(VOSTREL_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${VOSTREL_CCACHE}")
endif()
