# Compile options of everything here, and zelm_add_layer(), which makes one folder of the library a layer.

# A warning that a newer compiler invents does not keep anyone from building.
set(zelm_known_GNU 12)
set(zelm_known_Clang 14)
string(REGEX MATCH "^[0-9]+" compiler_version "${CMAKE_CXX_COMPILER_VERSION}")
set(zelm_werror OFF)
if(ZELM_WERROR AND compiler_version LESS_EQUAL "${zelm_known_${CMAKE_CXX_COMPILER_ID}}")
  set(zelm_werror ON)
endif()

add_library(zelm_options INTERFACE)
target_compile_options(zelm_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
  # Results must not depend on the compiler's choice to fuse a product and a sum.
  -ffp-contract=off
  # Assertion texts name files as paths from the project's root.
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
  $<$<BOOL:${zelm_werror}>:-Werror>)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i[3-6]86|x86|x86_64|AMD64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 4)
  # SSE2 arithmetic, so that 32-bit and 64-bit builds round alike.
  target_compile_options(zelm_options INTERFACE -msse2 -mfpmath=sse)
endif()
if(ZELM_SANITIZE)
  target_compile_options(zelm_options INTERFACE
    -fsanitize=${ZELM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zelm_options INTERFACE -fsanitize=${ZELM_SANITIZE})
endif()

# Options of library code alone: hidden symbols, and nothing that would need the C++ runtime at load time.
add_library(zelm_library_options INTERFACE)
target_link_libraries(zelm_library_options INTERFACE zelm_options)
target_compile_options(zelm_library_options INTERFACE
  -fvisibility=hidden
  $<$<COMPILE_LANGUAGE:CXX>:-fvisibility-inlines-hidden -fno-exceptions -fno-rtti -fno-threadsafe-statics>)
target_include_directories(zelm_library_options INTERFACE ${PROJECT_SOURCE_DIR}/include)

# zelm_add_layer(<name> SOURCES <files> [BELOW <layers>]): makes the folder the object library zelm_<name>, whose
# internal headers are seen by the layers that name it in BELOW. (Object files are gathered in library.cmake; BELOW only
# opens include paths.)
function(zelm_add_layer name)
  cmake_parse_arguments(LAYER "" "" "SOURCES;BELOW" ${ARGN})
  add_library(zelm_${name} OBJECT ${LAYER_SOURCES})
  target_link_libraries(zelm_${name} PRIVATE zelm_library_options)
  target_include_directories(zelm_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  foreach(below IN LISTS LAYER_BELOW)
    target_include_directories(zelm_${name} PUBLIC
      $<TARGET_PROPERTY:zelm_${below},INTERFACE_INCLUDE_DIRECTORIES>)
  endforeach()
  set_property(GLOBAL APPEND PROPERTY ZELM_LAYERS zelm_${name})
endfunction()

# zelm_add_tier(<layer> <NAME> SOURCES <files> FLAGS <flags>): files of a layer that are built with flags of their own;
# the layer is built with ZELM_<NAME>_TIER.
function(zelm_add_tier layer name)
  cmake_parse_arguments(TIER "" "" "SOURCES;FLAGS" ${ARGN})
  target_sources(zelm_${layer} PRIVATE ${TIER_SOURCES})
  set_source_files_properties(${TIER_SOURCES} PROPERTIES COMPILE_OPTIONS "${TIER_FLAGS}")
  target_compile_definitions(zelm_${layer} PRIVATE ZELM_${name}_TIER)
endfunction()

# The vector tiers are built with flags of their own, in files that share no inline code with the rest.
# AVX2: 64-bit x86 only. SSE4.1: x86 only.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$" AND CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(ZELM_AVX2_FLAGS -mavx2 -mfma -mbmi -mbmi2 -mlzcnt -mmovbe)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i[3-6]86|x86|x86_64|AMD64)$")
  set(ZELM_SSE41_FLAGS -msse4.1)
endif()
