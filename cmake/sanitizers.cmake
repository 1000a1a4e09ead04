# Run-time checks, for the whole build at once: mixing checked and unchecked code hides faults.
add_compile_options("$<$<OR:$<CONFIG:Debug>,$<BOOL:${ORVPAP_FUZZ}>>:-D_GLIBCXX_ASSERTIONS>")

set(_orvpap_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
if(ORVPAP_SANITIZE)
  add_compile_options(${_orvpap_sanitizers} -fno-omit-frame-pointer)
  add_link_options(${_orvpap_sanitizers})
endif()

# A fuzz target adds -fsanitize=fuzzer to its own link; everything else is only instrumented.
if(ORVPAP_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "ORVPAP_FUZZ needs clang: configure with the preset \"fuzz\".")
  endif()
  add_compile_options(-fsanitize=fuzzer-no-link ${_orvpap_sanitizers} -fno-omit-frame-pointer)
  add_link_options(${_orvpap_sanitizers})
endif()
