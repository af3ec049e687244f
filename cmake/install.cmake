# What `cmake --install` lays down: libraries, headers, the tool, the CMake package zelmLib (targets zelm::zelmLib and
# zelm::zelmMeasure), zelmLib.pc and zelmMeasure.pc.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set_target_properties(zelmLib PROPERTIES EXPORT_NAME zelmLib)
set_target_properties(zelmLibStatic PROPERTIES EXPORT_NAME zelmLibStatic)
install(TARGETS zelmLib EXPORT zelmLibTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS zelmLibStatic EXPORT zelmLibTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/zelmLib.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/zelm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
if(TARGET zelmMeasure)
  install(TARGETS zelmMeasure EXPORT zelmLibTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(TARGETS zelmMeasureStatic EXPORT zelmLibTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES include/zelmMeasure.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(DIRECTORY include/zelmMeasure DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()
if(TARGET zelm)
  install(TARGETS zelm RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zelmLib)
install(EXPORT zelmLibTargets NAMESPACE zelm:: DESTINATION ${package_dir})
# The static measuring library alone needs its thread library and solver at a user's link.
file(WRITE ${PROJECT_BINARY_DIR}/zelmLibConfig.cmake
  "find_package(TBB QUIET)\nfind_package(Ceres QUIET)\ninclude(\${CMAKE_CURRENT_LIST_DIR}/zelmLibTargets.cmake)\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zelmLibConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zelmLibConfig.cmake ${PROJECT_BINARY_DIR}/zelmLibConfigVersion.cmake
  DESTINATION ${package_dir})

configure_file(cmake/zelmLib.pc.in ${PROJECT_BINARY_DIR}/zelmLib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zelmLib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET zelmMeasure)
  configure_file(cmake/zelmMeasure.pc.in ${PROJECT_BINARY_DIR}/zelmMeasure.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/zelmMeasure.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()
