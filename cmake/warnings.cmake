# Every target of ours links project_warnings privately; what warns does not build. Compilers that our
# own checks do not use may warn of more.
option(ORVPAP_WARNINGS_ARE_ERRORS "What warns does not build" ON)
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual $<$<BOOL:${ORVPAP_WARNINGS_ARE_ERRORS}>:-Werror>)

# GCC 12, when optimising, sees overlapping copies inside its own std::string (its bug 105651) and reads
# of a std::optional's value without one, where there are none; clang-tidy looks for the real ones.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(project_warnings INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
