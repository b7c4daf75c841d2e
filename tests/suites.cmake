# Every tests/*_fault_test.cpp injects allocation faults; every other tests/*_test.cpp runs against the shared library.
file(GLOB suites CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} *_test.cpp)
foreach(source IN LISTS suites)
  string(REPLACE .cpp "" suite ${source})
  if(suite MATCHES _fault_test$)
    qz_isp_fault_test(${suite})
  elseif(NOT suite STREQUAL tool_test)
    qz_isp_test(${suite})
  endif()
endforeach()

# Suites of routines that have a version for each vector width.
foreach(suite IN ITEMS bicubic checksum matrix nearest polynomial table_resize)
  qz_isp_every_path(${suite}_test)
endforeach()
