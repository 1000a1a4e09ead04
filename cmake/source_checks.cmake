# The rules of the source tree that no compiler knows, as tests.
if(CMAKE_CROSSCOMPILING)
  return()
endif()
find_package(Python3 REQUIRED COMPONENTS Interpreter)
foreach(_check includes boundaries texts)
  add_test(NAME source_check.${_check}
    COMMAND Python3::Interpreter "${PROJECT_SOURCE_DIR}/tools/check-${_check}.py")
endforeach()
