# Installs into a scratch prefix and builds the examples against what was installed, as the documents say: through the
# CMake package and through pkg-config, warnings being errors; so with the program that the documents show. Runs what it
# built, also with another log library in place of the one that was installed.
#
#   cmake -DBUILD_TREE=dir -DSOURCE_TREE=dir -DSCRATCH=dir -DGENERATOR=name -DC_COMPILER=cc -DCXX_COMPILER=c++
#         [-DFLAGS=flags] [-DEMULATOR=command] -P install_test.cmake
cmake_minimum_required(VERSION 3.25)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(run_examples directory)
  run(${EMULATOR} ${directory}/minimal)
  if(NOT output MATCHES "bytes in use +[0-9]+ of [0-9]+\n")
    message(FATAL_ERROR "minimal printed\n${output}")
  endif()
  run(${EMULATOR} ${directory}/makernote)
  if(NOT output MATCHES "QZ_ISP 2.6.1 v2.0_012.000_002\n.* 543 i8   x 9    0 0 0 0 0 2 ...\n$")
    message(FATAL_ERROR "makernote printed\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
set(prefix ${SCRATCH}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_TREE} --prefix ${prefix})
if(EXISTS ${prefix}/bin/qz-isp)
  set(own ${prefix}/share/doc/qz-isp)
  run(${EMULATOR} ${prefix}/bin/qz-isp run --frame 0 --scene ${own}/examples/scene.json --tuning ${own}/examples/tuning.json)
  # What the manual page points to.
  run(gzip -dc ${prefix}/share/man/man1/qz-isp.1.gz)
  string(REGEX MATCHALL "\n[.]IR? [a-z-]+[.]md" documents "${output}")
  list(LENGTH documents count)
  if(count EQUAL 0)
    message(FATAL_ERROR "qz-isp.1 names no document")
  endif()
  foreach(document IN LISTS documents)
    string(REGEX REPLACE ".* " "" document "${document}")
    if(NOT EXISTS ${own}/docs/${document})
      message(SEND_ERROR "qz-isp.1 points to ${document}, which is not installed with the program")
    endif()
  endforeach()
endif()

# The installed copy of the examples is what a newcomer starts from.
file(GLOB_RECURSE example ${prefix}/minimal.c)
cmake_path(GET example PARENT_PATH examples)
set(strict "${FLAGS} -Werror")

run(${CMAKE_COMMAND} -S ${examples} -B ${SCRATCH}/by-cmake -G ${GENERATOR} -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_C_FLAGS=${strict}
    -DCMAKE_CXX_FLAGS=${strict})
run(${CMAKE_COMMAND} --build ${SCRATCH}/by-cmake)
run_examples(${SCRATCH}/by-cmake)

file(GLOB_RECURSE pc_file ${prefix}/qz_isp.pc)
cmake_path(GET pc_file PARENT_PATH pkgconfig)
cmake_path(GET pkgconfig PARENT_PATH libraries)
file(COPY ${examples}/ DESTINATION ${SCRATCH}/by-pkg-config)
run(make -C ${SCRATCH}/by-pkg-config PKG_CONFIG_PATH=${pkgconfig} CC=${C_COMPILER} CXX=${CXX_COMPILER}
    CFLAGS=${strict} CXXFLAGS=${strict} LDFLAGS=-Wl,-rpath,${libraries})
run_examples(${SCRATCH}/by-pkg-config)

file(READ ${prefix}/share/doc/libqz-isp-dev/docs/using.md text)
string(REGEX REPLACE ".*It prints `([^`]*)`.*" "\\1" promised "${text}")
string(FIND "${text}" "```c\n" begin)
string(SUBSTRING "${text}" ${begin} -1 text)
string(REGEX REPLACE "^```c\n" "" text "${text}")
string(REGEX REPLACE "\n```.*" "\n" program "${text}")
file(WRITE ${SCRATCH}/camera.c "${program}")
separate_arguments(c_flags UNIX_COMMAND "${strict}")
run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pkgconfig} pkg-config --cflags --libs qz_isp)
separate_arguments(library_flags UNIX_COMMAND "${output}")
run(${C_COMPILER} -std=c99 -Wall -Wextra -pedantic ${c_flags} ${SCRATCH}/camera.c ${library_flags}
    -Wl,-rpath,${libraries} -o ${SCRATCH}/camera)
run(${EMULATOR} ${SCRATCH}/camera)
string(FIND "${output}" "${promised}\n" found)
if(found EQUAL -1)
  message(FATAL_ERROR "camera.c of using.md printed\n${output}")
endif()

# What comes first where the loader looks takes the place of the stand-in.
file(WRITE ${SCRATCH}/device/log.c "#include <stdio.h>
void qz_log(int level, const char *format, ...) { printf(\"device log %d %s\\n\", level, format); }
")
run(${C_COMPILER} ${c_flags} -shared -fPIC ${SCRATCH}/device/log.c -o ${SCRATCH}/device/libqz_log.so)
run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${SCRATCH}/device ${EMULATOR} ${SCRATCH}/camera)
if(NOT output MATCHES "device log 1 QZ ISP 2.7 VERSION %s\n")
  message(FATAL_ERROR "With a device's log library camera.c printed\n${output}")
endif()
