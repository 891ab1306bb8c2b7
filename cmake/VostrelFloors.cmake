# The floors of the house, lowest first, as floors.txt lists them. A floor is one library: every source in its folder,
# linked only with the floors that the list allows it.
file(STRINGS "${PROJECT_SOURCE_DIR}/cmake/floors.txt" VOSTREL_FLOOR_LINES REGEX "^[a-z]")

if(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
  set(VOSTREL_SYSTEM macos)
else()
  set(VOSTREL_SYSTEM linux)
endif()

set(VOSTREL_FLOORS "")
foreach(line IN LISTS VOSTREL_FLOOR_LINES)
  string(REGEX MATCH "^([a-z]+) *: *([a-z ]*)" _ "${line}")
  set(floor "${CMAKE_MATCH_1}")
  string(REGEX MATCHALL "[a-z]+" below "${CMAKE_MATCH_2}")
  if(floor STREQUAL "cli")
    continue()
  endif()
  file(GLOB sources CONFIGURE_DEPENDS
    "${PROJECT_SOURCE_DIR}/core/${floor}/*.cpp"
    "${PROJECT_SOURCE_DIR}/core/${floor}/${VOSTREL_SYSTEM}/*.cpp"
    "${PROJECT_SOURCE_DIR}/core/${floor}/${VOSTREL_SYSTEM}/*.mm")
  if(sources)
    set(kind STATIC)
    set(reach PUBLIC)
  else()
    set(kind INTERFACE)
    set(reach INTERFACE)
  endif()
  add_library(vostrel_${floor} ${kind} ${sources})
  target_link_libraries(vostrel_${floor} ${reach} vostrel_options)
  foreach(lower IN LISTS below)
    target_link_libraries(vostrel_${floor} ${reach} vostrel_${lower})
  endforeach()
  list(APPEND VOSTREL_FLOORS vostrel_${floor})
endforeach()

target_link_libraries(vostrel_base PUBLIC fmt::fmt Threads::Threads PRIVATE PkgConfig::utf8proc date::date-tz)
target_link_libraries(vostrel_stores PRIVATE simdjson::simdjson)
if(TARGET PkgConfig::libplist)
  target_link_libraries(vostrel_platform PRIVATE PkgConfig::libplist OpenSSL::Crypto)
endif()

include(VostrelTexts)
vostrel_embed_text(vostrel_spacemap "${PROJECT_SOURCE_DIR}/core/spacemap/SpacePage.html" spacePageTemplate)
