# Looks at a built file as the loader will: what it links to and how it is hardened.
#
#   cmake -DREADELF=readelf -DFILE=file [-DNEEDED=libraries] [-DSONAME=name] [-DCALLS=functions] [-DAVOIDS=functions]
#         [-DCONSTANT=ON] -P elf_test.cmake
#
# NEEDED   every library that the file may link to, and has to
# CALLS    functions that it calls, each because a protection is compiled in
# AVOIDS   functions that it does not call, because their results differ between C libraries
# CONSTANT all its data of its own is read-only
cmake_minimum_required(VERSION 3.25)

function(read result)
  execute_process(COMMAND ${READELF} -W ${ARGN} ${FILE} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(expect text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(SEND_ERROR "${FILE}: ${what} is missing")
  endif()
endfunction()

function(expect_not text pattern what)
  if(text MATCHES "${pattern}")
    message(SEND_ERROR "${FILE} has ${what}")
  endif()
endfunction()

read(header --file-header)
read(segments --program-headers)
read(dynamic --dynamic)
read(symbols --dyn-syms)

# Libraries and position-independent programs have the same type.
expect("${header}" "Type: +DYN" "position independence")
expect("${segments}" "GNU_RELRO" "the segment that is read-only after relocation")
expect("${dynamic}" "FLAGS_1[^\n]* NOW" "binding at load time")
expect("${segments}" "GNU_STACK [^\n]* RW +0x" "a stack that is not executable")
expect_not("${segments}" "LOAD [^\n]* RWE " "a segment both writable and executable")
expect_not("${dynamic}" "TEXTREL" "text relocations")
expect_not("${dynamic}" "\\(RPATH\\)" "a search path that LD_LIBRARY_PATH cannot precede")
if(dynamic MATCHES "runpath: \\[([^]]*)\\]")
  set(searched "${CMAKE_MATCH_1}")
  set(beside "\\$ORIGIN(/[^:]*)?")
  if(NOT searched MATCHES "^${beside}(:${beside})*$")
    message(SEND_ERROR "${FILE} looks for libraries in ${searched}, expected places beside it")
  endif()
endif()

foreach(function IN LISTS CALLS)
  expect("${symbols}" " UND ${function}(@|\n| )" "a call of ${function}")
endforeach()

foreach(function IN LISTS AVOIDS)
  expect_not("${symbols}" " UND ${function}(@|\n| )" "a call of ${function}")
endforeach()

if(CONSTANT)
  read(sections --sections)
  read(symbols --syms)
  string(REGEX MATCHALL "\\[ *[0-9]+\\] \\.(data|bss)" writable "${sections}")
  list(TRANSFORM writable REPLACE ".*\\[ *([0-9]+)\\].*" "\\1")
  list(JOIN writable "|" writable)
  expect_not("${symbols}" " OBJECT [^\n]* (${writable}) _Z" "data that can be written")
endif()

if(DEFINED SONAME)
  expect("${dynamic}" "soname: \\[${SONAME}\\]" "the name ${SONAME}")
endif()
if(DEFINED NEEDED)
  string(REGEX MATCHALL "\\(NEEDED\\)[^\n]*\\[[^]]+\\]" needed "${dynamic}")
  list(TRANSFORM needed REPLACE ".*\\[(.*)\\]" "\\1")
  list(SORT needed)
  list(SORT NEEDED)
  if(NOT needed STREQUAL NEEDED)
    message(SEND_ERROR "${FILE} links to ${needed}, expected ${NEEDED}")
  endif()
endif()
