# Compares the library's binary interface with the one written down in abi/: what its headers lay out (native.txt for
# 64 bits, x86.txt for 32) and what its files export (exports.txt). With -DUPDATE=ON writes it down instead.
#
#   cmake -DFOUND=layout.txt -DEXPECTED=native.txt -DSOURCE_TREE=dir [-DNM=nm -DLIBRARY_DIRECTORY=dir] [-DUPDATE=ON]
#         -P abi_test.cmake
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE headers ${SOURCE_TREE}/include/*.h ${SOURCE_TREE}/platform/include/*.h)

function(check_or_update file found)
  set(path ${CMAKE_CURRENT_LIST_DIR}/abi/${file})
  if(UPDATE)
    file(WRITE ${path} "${found}")
    return()
  endif()
  file(READ ${path} expected)
  if(found STREQUAL expected)
    return()
  endif()
  string(REPLACE "\n" ";" found_lines "${found}")
  string(REPLACE "\n" ";" expected_lines "${expected}")
  set(gone "${expected_lines}")
  list(REMOVE_ITEM gone ${found_lines})
  list(REMOVE_ITEM found_lines ${expected_lines})
  message(SEND_ERROR "The binary interface differs from tests/shipped/abi/${file}.\nNew lines: ${found_lines}\n"
                     "Lines gone: ${gone}\nA change on purpose is written down by `make abi`.")
endfunction()

# Every structure and every numbered constant of the headers has to be in the layout program's list.
function(check_nothing_is_missing layout)
  foreach(header IN LISTS headers)
    file(STRINGS ${header} lines
         REGEX "^(typedef (struct|union) [a-z0-9_]+ {|    [A-Z0-9_]+ = |#define [A-Z0-9_]+ [0-9]+u)")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^(typedef (struct|union) |    |#define )([A-Za-z0-9_]+).*" "\\3" name "${line}")
      if(NOT layout MATCHES "(^|\n)${name} ")
        message(SEND_ERROR "abi/interface.inc lists everything public but ${name} of ${header}")
      endif()
    endforeach()
  endforeach()
endfunction()

function(list_exports result)
  set(text "")
  foreach(library IN ITEMS libqz_isp.so libqz_log.so libqz_mkn.so)
    execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY_DIRECTORY}/${library}
                    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[B-Zb-z] [^\n]+" symbols "${symbols}") # without A, the name of a version
    list(TRANSFORM symbols REPLACE "^. " "    ")
    list(SORT symbols)
    list(JOIN symbols "\n" symbols)
    string(APPEND text "${library}\n${symbols}\n")
  endforeach()
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

# Every function that a header declares is exported, and no other.
function(check_declared exports)
  set(declared "")
  foreach(header IN LISTS headers)
    file(READ ${header} text)
    string(REGEX MATCHALL "\n(QZ_ISP_API|QZ_MKN_API|QZ_LOG_PRINTF) [^;(]*\\(" functions "${text}")
    list(TRANSFORM functions REPLACE ".*[ *]([A-Za-z0-9_]+)\\($" "\\1")
    list(APPEND declared ${functions})
  endforeach()
  string(REGEX MATCHALL "\n    [A-Za-z0-9_]+" exported "${exports}")
  list(TRANSFORM exported STRIP)
  list(SORT exported)
  list(SORT declared)
  if(NOT declared STREQUAL exported)
    list(REMOVE_ITEM declared ${exported})
    message(SEND_ERROR "Declared and exported functions differ; declared only: ${declared}")
  endif()
endfunction()

file(READ ${FOUND} layout)
check_nothing_is_missing("${layout}")
check_or_update(${EXPECTED} "${layout}")
if(LIBRARY_DIRECTORY)
  list_exports(exports)
  check_declared("${exports}")
  check_or_update(exports.txt "${exports}")
endif()
