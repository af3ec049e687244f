# Defences against errors in memory, in release builds: zelm_options gets them where compiler and linker know them.
# Stack canaries, checked sizes of buffers in the C library, tables of addresses that are read-only once loaded, and
# jumps that land only where they may. Sanitizers check more, and bring their own.

option(ZELM_HARDEN "Defend release builds against errors in memory" ON)
if(NOT ZELM_HARDEN OR ZELM_SANITIZE)
  return()
endif()

include(CheckPIESupported)
check_pie_supported(LANGUAGES C CXX)

include(CheckCXXCompilerFlag)
include(CheckLinkerFlag)
include(CheckCXXSourceCompiles)

# Only optimised builds have the C library's checks of sizes.
set(optimised "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")

function(zelm_harden_compile flag)
  string(MAKE_C_IDENTIFIER "zelm_knows${flag}" known)
  set(CMAKE_REQUIRED_FLAGS -Werror)
  check_cxx_compiler_flag(${flag} ${known})
  if(${known})
    target_compile_options(zelm_options INTERFACE "$<${optimised}:${flag}>")
  endif()
endfunction()

function(zelm_harden_link flag)
  string(MAKE_C_IDENTIFIER "zelm_links${flag}" known)
  check_linker_flag(CXX ${flag} ${known})
  if(${known})
    target_link_options(zelm_options INTERFACE "$<${optimised}:${flag}>")
  endif()
endfunction()

zelm_harden_compile(-fstack-protector-strong)
zelm_harden_compile(-fstack-clash-protection)
zelm_harden_compile(-fcf-protection=full)
zelm_harden_compile(-mbranch-protection=standard)
zelm_harden_link(-Wl,-z,relro)
zelm_harden_link(-Wl,-z,now)
zelm_harden_link(-Wl,-z,noexecstack)
if(WIN32)
  zelm_harden_link(-Wl,--dynamicbase)
  zelm_harden_link(-Wl,--nxcompat)
endif()

# Level 3 also checks buffers whose size is known at run time alone; a library that does not know it says so.
set(CMAKE_REQUIRED_FLAGS "-O2 -Werror")
foreach(level IN ITEMS 3 2)
  set(CMAKE_REQUIRED_DEFINITIONS -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=${level})
  check_cxx_source_compiles("#include <cstring>\nint main() { return 0; }" zelm_fortify_${level})
  if(zelm_fortify_${level})
    target_compile_options(zelm_options INTERFACE
      "$<${optimised}:-U_FORTIFY_SOURCE>" "$<${optimised}:-D_FORTIFY_SOURCE=${level}>")
    break()
  endif()
endforeach()
unset(CMAKE_REQUIRED_FLAGS)
unset(CMAKE_REQUIRED_DEFINITIONS)
