# Every tests/*_test.cpp is a suite: against the shared library, with its objects where it injects allocation faults, or
# with the parts of the program where its name starts with tool_.
file(GLOB suites CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} *_test.cpp)
foreach(source IN LISTS suites)
  string(REPLACE .cpp "" suite ${source})
  file(STRINGS ${source} injects REGEX "allocation_faults.h")
  if(injects)
    qz_isp_fault_test(${suite})
  elseif(NOT suite MATCHES "^tool_")
    qz_isp_test(${suite})
  elseif(QZ_ISP_TOOLS)
    qz_isp_tool_test(${suite})
  endif()
endforeach()

# Suites of routines that have a version for each vector width.
foreach(suite IN ITEMS bicubic checksum color_tables context matrix nearest polynomial table_resize)
  qz_isp_every_path(${suite}_test)
endforeach()

# The same records whatever built the library.
if(QZ_ISP_TOOLS)
  set(sample_record ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:qz-isp>)
  add_test(NAME sample_record COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/sample_record_test.sh ${sample_record})
  add_custom_target(
    update-digests
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/sample_record_test.sh --update ${sample_record}
    DEPENDS qz-isp
    VERBATIM)
endif()
