# The shared and the static library, and the core that the tests link with their own allocator.

get_property(layers GLOBAL PROPERTY ZELM_LAYERS)
set(zelm_objects "")
foreach(layer IN LISTS layers)
  list(APPEND zelm_objects $<TARGET_OBJECTS:${layer}>)
endforeach()

add_library(zelmLib SHARED ${zelm_objects} $<TARGET_OBJECTS:zelm_alloc>)
add_library(zelmLibStatic STATIC ${zelm_objects} $<TARGET_OBJECTS:zelm_alloc>)
set_target_properties(zelmLib PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1 OUTPUT_NAME zelmLib LINKER_LANGUAGE C)
set_target_properties(zelmLibStatic PROPERTIES OUTPUT_NAME zelmLib LINKER_LANGUAGE C)
target_link_libraries(zelmLib PRIVATE $<BUILD_INTERFACE:zelm_options> m)
target_link_libraries(zelmLibStatic PRIVATE $<BUILD_INTERFACE:zelm_options> PUBLIC m)
# As needed: the C++ runtime that CMake names for C++ objects is not.
target_link_options(zelmLib PRIVATE -Wl,--as-needed -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
if(NOT ZELM_SANITIZE)
  target_link_options(zelmLib PRIVATE -Wl,--no-undefined)
endif()
set_property(TARGET zelmLib APPEND PROPERTY LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
foreach(target zelmLib zelmLibStatic)
  add_library(zelm::${target} ALIAS ${target})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)
endforeach()

# The whole library without its allocator: the tests add one that can fail.
if(ZELM_BUILD_TESTS OR ZELM_BUILD_BENCH)
  add_library(zelm_core STATIC ${zelm_objects})
  set_target_properties(zelm_core PROPERTIES LINKER_LANGUAGE C)
  target_include_directories(zelm_core PUBLIC ${PROJECT_SOURCE_DIR}/include)
  foreach(layer IN LISTS layers)
    target_include_directories(zelm_core PUBLIC $<TARGET_PROPERTY:${layer},INTERFACE_INCLUDE_DIRECTORIES>)
  endforeach()
  target_link_libraries(zelm_core PUBLIC m)
endif()
