# Texts that the program carries in files of their own, readable as what they are.

# Adds a source with that file's text to a target: `extern const std::string_view NAME;` in namespace vostrel.
function(vostrel_embed_text target file name)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  file(READ "${file}" text)
  set(source "${CMAKE_CURRENT_BINARY_DIR}/texts/${name}.cpp")
  file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT [=[
#include <string_view>

namespace vostrel {

extern const std::string_view @name@;
const std::string_view @name@ = R"vostrel(@text@)vostrel";

}  // namespace vostrel
]=])
  target_sources(${target} PRIVATE "${source}")
endfunction()
