# Builds and runs the host program main.cpp against statkit the three ways a host embeds it:
#   MODE=find_package      the package installed to a scratch prefix, found by find_package(statkit);
#   MODE=pkg_config        the package installed to a scratch prefix and then moved elsewhere, compiled
#                          with the flags of pkg-config --cflags --libs statkit (the .pc file must be
#                          relocatable);
#   MODE=add_subdirectory  the source tree added to a host project with add_subdirectory.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(rc)
    message(FATAL_ERROR "${ARGN}\n${out}")
  endif()
  message("${out}")
endfunction()

if(MODE STREQUAL "add_subdirectory")
  # No build type, so that statkit could impose one (the project checks that it does not), and so
  # the library is built unoptimised, where the vector kernels must still give the right sums.
  run(${CMAKE_COMMAND} -S ${STATKIT_SOURCE_DIR}/tests/consumer/subdirectory -B ${WORK_DIR}/build
      -DSTATKIT_SOURCE_DIR=${STATKIT_SOURCE_DIR} -DCMAKE_CXX_COMPILER=${CXX})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/build --parallel 2 --target consumer)
  run(${WORK_DIR}/build/consumer)
  return()
endif()

run(${CMAKE_COMMAND} --install ${STATKIT_BINARY_DIR} --prefix ${WORK_DIR}/prefix)

if(MODE STREQUAL "find_package")
  run(${CMAKE_COMMAND} -S ${STATKIT_SOURCE_DIR}/tests/consumer -B ${WORK_DIR}/build
      -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix -DCMAKE_CXX_COMPILER=${CXX})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
  run(${WORK_DIR}/build/consumer)
elseif(MODE STREQUAL "pkg_config")
  file(RENAME ${WORK_DIR}/prefix ${WORK_DIR}/moved)
  file(GLOB_RECURSE pc ${WORK_DIR}/moved/*/statkit.pc)
  if(NOT pc)
    message(FATAL_ERROR "statkit.pc not installed")
  endif()
  get_filename_component(pcdir ${pc} DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${pcdir})
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs statkit
    RESULT_VARIABLE rc OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(rc OR NOT flags MATCHES "-I${WORK_DIR}/moved/")
    message(FATAL_ERROR "pkg-config does not point into the moved prefix: '${flags}'")
  endif()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${CXX} ${STATKIT_SOURCE_DIR}/tests/consumer/main.cpp ${flags} -o ${WORK_DIR}/consumer)
  run(${WORK_DIR}/consumer)
else()
  message(FATAL_ERROR "unknown MODE '${MODE}'")
endif()
