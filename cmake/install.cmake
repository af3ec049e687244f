# What `cmake --install` lays down: libraries, headers, the tool with its manual pages and completion, documents,
# samples, the CMake package zelmLib (targets zelm::zelmLib and zelm::zelmMeasure), zelmLib.pc and zelmMeasure.pc. An
# installed tree can be moved.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set_target_properties(zelmLib PROPERTIES EXPORT_NAME zelmLib)
set_target_properties(zelmLibStatic PROPERTIES EXPORT_NAME zelmLibStatic)
install(TARGETS zelmLib EXPORT zelmLibTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS zelmLibStatic EXPORT zelmLibTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/zelmLib.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/zelm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
if(TARGET zelmMeasure)
  # It finds the core beside it, wherever the tree stands.
  set_target_properties(zelmMeasure PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS zelmMeasure EXPORT zelmLibTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(TARGETS zelmMeasureStatic EXPORT zelmLibTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES include/zelmMeasure.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(DIRECTORY include/zelmMeasure DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)
endif()
if(TARGET zelm)
  install(TARGETS zelm RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${ZELM_MANUAL_DIR}/ DESTINATION ${CMAKE_INSTALL_DATADIR})
endif()

# Documents keep their places to each other, so that their links lead somewhere. The API reference comes along once
# Doxygen has made it.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN Doxyfile EXCLUDE)
install(DIRECTORY samples DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY python/notebooks DESTINATION ${CMAKE_INSTALL_DOCDIR}/python FILES_MATCHING PATTERN *.ipynb)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zelmLib)
install(EXPORT zelmLibTargets NAMESPACE zelm:: DESTINATION ${package_dir})
# The static measuring library alone needs its thread library and solver at a user's link.
file(WRITE ${PROJECT_BINARY_DIR}/zelmLibConfig.cmake
  "find_package(TBB QUIET)\nfind_package(Ceres QUIET)\ninclude(\${CMAKE_CURRENT_LIST_DIR}/zelmLibTargets.cmake)\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zelmLibConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zelmLibConfig.cmake ${PROJECT_BINARY_DIR}/zelmLibConfigVersion.cmake
  DESTINATION ${package_dir})

# The prefix as seen from the folder of the .pc files.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(zelm_pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH zelm_pc_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" zelm_pc_prefix "\${pcfiledir}/${zelm_pc_prefix}")
endif()
foreach(kind libdir includedir)
  string(TOUPPER CMAKE_INSTALL_${kind} folder)
  if(IS_ABSOLUTE ${${folder}})
    set(zelm_pc_${kind} ${${folder}})
  else()
    set(zelm_pc_${kind} "\${prefix}/${${folder}}")
  endif()
endforeach()
set(pc_files zelmLib)
if(TARGET zelmMeasure)
  list(APPEND pc_files zelmMeasure)
endif()
foreach(name IN LISTS pc_files)
  configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
