# Installs the freshly built statkit into a scratch prefix, then configures,
# builds and runs a consumer project that finds it with find_package(statkit).
file(REMOVE_RECURSE ${WORK_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${STATKIT_BINARY_DIR} --prefix ${WORK_DIR}/prefix
  RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "install failed")
endif()
execute_process(COMMAND ${CMAKE_CTEST_COMMAND} --build-and-test
    ${STATKIT_SOURCE_DIR}/tests/consumer ${WORK_DIR}/build
    --build-generator "Unix Makefiles"
    --build-options -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix
    --test-command consumer
  RESULT_VARIABLE rc)
if(rc)
  message(FATAL_ERROR "consumer project failed")
endif()
if(NOT EXISTS ${WORK_DIR}/prefix/lib/pkgconfig/statkit.pc)
  message(FATAL_ERROR "pkg-config file not installed")
endif()
