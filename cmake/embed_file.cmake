# Makes the bytes of a file part of a target, so that the program needs no file at run time:
#
#   orvpap_embed_file(TARGET FILE NAME)   declares "extern const std::array<unsigned char, N> NAME"
#                                         in the header embedded/NAME.h of that target
function(orvpap_embed_file target file name)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/embed_${target}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  file(SIZE "${file}" size)
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n" bytes "${bytes}")
  set(declaration "const std::array<unsigned char, ${size}> ${name}")
  file(CONFIGURE OUTPUT "${folder}/embedded/${name}.h" CONTENT
"// The bytes of a file, made by the build.
#pragma once
#include <array>
extern @declaration@;
" @ONLY)
  file(CONFIGURE OUTPUT "${folder}/${name}.cpp" CONTENT
"#include \"embedded/@name@.h\"
@declaration@{@bytes@};
" @ONLY)
  target_sources(${target} PRIVATE "${folder}/${name}.cpp")
  target_include_directories(${target} PRIVATE "${folder}")
endfunction()
