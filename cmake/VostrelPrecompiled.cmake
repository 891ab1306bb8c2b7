# The headers that nearly every source reads, read once a kind of source. Only sanitized builds do so, which start from
# nothing on every fresh machine: elsewhere a source that forgets an include has to show.
set(vostrel_usual_headers
  <algorithm> <chrono> <cstdint> <expected> <filesystem> <functional> <map> <memory> <mutex> <optional> <set> <span>
  <string> <string_view> <variant> <vector>)

# Names the headers for a kind, and the libraries that they belong to. Call it before `vostrel_precompile`.
function(vostrel_precompiled_kind kind libraries)
  if(NOT VOSTREL_SANITIZE)
    return()
  endif()
  file(WRITE "${CMAKE_BINARY_DIR}/precompiled_${kind}.cpp" "")
  add_library(vostrel_precompiled_${kind} OBJECT "${CMAKE_BINARY_DIR}/precompiled_${kind}.cpp")
  target_link_libraries(vostrel_precompiled_${kind} PRIVATE vostrel_options ${libraries})
  target_precompile_headers(vostrel_precompiled_${kind} PRIVATE ${vostrel_usual_headers} ${ARGN})
endfunction()

function(vostrel_precompile target kind)
  if(TARGET vostrel_precompiled_${kind})
    target_precompile_headers(${target} REUSE_FROM vostrel_precompiled_${kind})
  endif()
endfunction()
