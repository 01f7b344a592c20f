include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS statkit EXPORT statkitTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/statkit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_BINARY_DIR}/include/statkit/array/Version.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/statkit/array)

set(STATKIT_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/statkit)
install(EXPORT statkitTargets NAMESPACE statkit:: DESTINATION ${STATKIT_CMAKE_DIR})
export(EXPORT statkitTargets NAMESPACE statkit:: FILE ${PROJECT_BINARY_DIR}/statkitTargets.cmake)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/statkitConfig.cmake.in
  ${PROJECT_BINARY_DIR}/statkitConfig.cmake INSTALL_DESTINATION ${STATKIT_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/statkitConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/statkitConfig.cmake ${PROJECT_BINARY_DIR}/statkitConfigVersion.cmake
  DESTINATION ${STATKIT_CMAKE_DIR})

# The pkg-config file finds the prefix from its own place (${pcfiledir}), so the package works
# wherever it is installed (cmake --install --prefix) or moved to afterwards.
set(STATKIT_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${STATKIT_PC_DIR})
  set(STATKIT_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH STATKIT_PC_UP /${STATKIT_PC_DIR} /)
  string(REGEX REPLACE "/$" "" STATKIT_PC_UP "${STATKIT_PC_UP}")
  set(STATKIT_PC_PREFIX "\${pcfiledir}/${STATKIT_PC_UP}")
endif()
foreach(kind LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE ${CMAKE_INSTALL_${kind}})
    set(STATKIT_PC_${kind} ${CMAKE_INSTALL_${kind}})
  else()
    set(STATKIT_PC_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
  endif()
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/cmake/statkit.pc.in ${PROJECT_BINARY_DIR}/statkit.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/statkit.pc DESTINATION ${STATKIT_PC_DIR})
