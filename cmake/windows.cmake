# What every Windows source sees: wide-character functions, and Windows 10 as the oldest system.
if(WIN32)
  add_compile_definitions(UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
endif()

# On Windows: gives a program its icon, its version and its manifest. `description` is what the task
# manager calls it.
function(orvpap_windows_program target description)
  if(NOT WIN32)
    return()
  endif()
  set(ORV_NAME "${target}")
  set(ORV_DESCRIPTION "${description}")
  set(ORV_ICON "${orvpap_SOURCE_DIR}/resources/orvpap.ico")
  set(ORV_MANIFEST "${orvpap_SOURCE_DIR}/resources/windows/program.manifest")
  string(REPLACE "." "," ORV_VERSION_NUMBERS "${orvpap_VERSION},0")
  set(resource "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  configure_file("${orvpap_SOURCE_DIR}/resources/windows/program.rc.in" "${resource}" @ONLY)
  set_property(SOURCE "${resource}" PROPERTY OBJECT_DEPENDS "${ORV_ICON};${ORV_MANIFEST}")
  target_sources(${target} PRIVATE "${resource}")
endfunction()
