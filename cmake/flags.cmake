# Compile and link flags: hardening or sanitizers for all that is built here, one interface library for the code that
# ships in the device's libraries, and one for the desk, the programs and the tests around them.

set(CMAKE_C_STANDARD 99)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# A WebAssembly module has no addresses to vary, and can write neither to its code nor outside its memory.
if(NOT QZ_ISP_MODULE)
  # Position-independent programs too, not only libraries.
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  include(CheckPIESupported)
  check_pie_supported()
  add_compile_options(-fstack-protector-strong)
  add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack,--enable-new-dtags)
endif()
if(QZ_ISP_SANITIZE)
  add_compile_options(-O1 -g1 -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_compile_options(-fsanitize=${QZ_ISP_SANITIZE})
  add_link_options(-fsanitize=${QZ_ISP_SANITIZE})
else()
  # Fortified calls need an optimising build, and are in a sanitizer's way.
  add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()

# What is built finds its libraries wherever the build tree lies; LD_LIBRARY_PATH can still put others first.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

add_library(qz_isp_warnings INTERFACE)
target_compile_options(qz_isp_warnings INTERFACE -Wall -Wextra -Wconversion -Wshadow)

# Results are compared bit for bit: no contraction, no fast-math. The two flags that follow change no result; they let
# conversions and comparisons vectorise.
add_library(qz_isp_library_flags INTERFACE)
target_link_libraries(qz_isp_library_flags INTERFACE qz_isp_warnings)
target_compile_options(qz_isp_library_flags INTERFACE -ffp-contract=off -fno-math-errno -fno-trapping-math
                                                      $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti>)
if(NOT QZ_ISP_MODULE)
  target_link_options(qz_isp_library_flags INTERFACE -Wl,--as-needed)
endif()
if(NOT QZ_ISP_SANITIZE AND NOT QZ_ISP_MODULE)
  target_link_options(qz_isp_library_flags INTERFACE -Wl,--no-undefined,-z,text)
endif()

# What ships, not what surrounds it, counts its lines and branches.
if(QZ_ISP_COVERAGE)
  target_compile_options(qz_isp_library_flags INTERFACE --coverage -fprofile-abs-path)
  target_compile_definitions(qz_isp_library_flags INTERFACE QZ_COVERAGE)
  add_link_options(--coverage)
endif()

# Formatting, JSON and test headers cost most of the build where they are optimised, or watched for undefined behaviour,
# which the fuzz targets do for the desk. What has to be fast is named: qz_isp_fast_sources(source...)
add_library(qz_isp_program_flags INTERFACE)
target_link_libraries(qz_isp_program_flags INTERFACE qz_isp_warnings)
if(NOT QZ_ISP_SANITIZE)
  target_compile_options(qz_isp_program_flags INTERFACE $<$<NOT:$<CONFIG:Debug>>:-O1>)
else()
  target_compile_options(qz_isp_program_flags INTERFACE -O0)
  if(NOT QZ_ISP_FUZZ)
    target_compile_options(qz_isp_program_flags INTERFACE -fno-sanitize=undefined,float-cast-overflow)
  endif()
endif()
function(qz_isp_fast_sources)
  set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS $<$<CONFIG:Release>:-O3>)
endfunction()
