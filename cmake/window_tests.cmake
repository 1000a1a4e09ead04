# Adds the tests of a program that shows windows. Each is a process with a display of its own; under
# Wine they run one at a time.
#
#   orvpap_discover_window_tests(TARGET [gtest_discover_tests' arguments...])
function(orvpap_discover_window_tests target)
  orvpap_windows_program(${target} "Tests with windows")
  set(display "${orvpap_SOURCE_DIR}/tools/run-under-xvfb.sh")
  set(properties "")
  if(CMAKE_CROSSCOMPILING)
    list(APPEND display "${orvpap_SOURCE_DIR}/tools/run-under-wine.sh" --display
      "${CMAKE_BINARY_DIR}/wine-display")
    set(properties PROPERTIES RESOURCE_LOCK wine_display)
  endif()
  if(NOT CMAKE_HOST_WIN32)
    set_target_properties(${target} PROPERTIES CROSSCOMPILING_EMULATOR "${display}")
  endif()
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 ${ARGN}
    ${properties})
endfunction()
