# Every tests/*_test.cpp is a suite: against the shared library, with its objects where it injects allocation faults or
# is about routines that have a version for each vector width, or with the desk library or the parts of the program
# where its name starts with desk_ or tool_.
set(width_suites bicubic checksum color_tables context lsc matrix nearest polynomial power table_resize)
file(GLOB suites CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} *_test.cpp)
foreach(source IN LISTS suites)
  string(REPLACE .cpp "" suite ${source})
  string(REPLACE _test.cpp "" subject ${source})
  file(STRINGS ${source} injects REGEX "allocation_faults.h")
  if(injects OR subject IN_LIST width_suites)
    set(with "")
    if(injects)
      list(APPEND with FAULTS)
    endif()
    if(subject IN_LIST width_suites)
      list(APPEND with WIDTHS)
    endif()
    qz_isp_object_test(${suite} ${with})
  elseif(NOT suite MATCHES "^(desk|tool)_")
    qz_isp_test(${suite})
  elseif(QZ_ISP_TOOLS)
    cmake_language(CALL qz_isp_${CMAKE_MATCH_1}_test ${suite})
  endif()
endforeach()
if(QZ_ISP_TOOLS)
  target_compile_definitions(tool_documents_test PRIVATE "QZ_SOURCE_TREE=\"${CMAKE_SOURCE_DIR}\"")
endif()

# The same records whatever built the library.
if(QZ_ISP_TOOLS)
  set(sample_record ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:qz-isp>)
  add_test(NAME sample_record COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/sample_record_test.sh ${sample_record})
  add_test(NAME sample_output COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/sample_output_test.sh ${sample_record})

  # Workers, which share nothing, where the sanitizer tells.
  if(QZ_ISP_SANITIZE STREQUAL thread)
    add_test(NAME threads_sweep COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/threads_sweep_test.sh $<TARGET_FILE:qz-isp>)
  endif()

  # On emulated processors too, which have other vectors than this one: the right ones are found.
  find_program(QZ_ISP_QEMU_X86_64 qemu-x86_64)
  if(QZ_ISP_QEMU_X86_64 AND CMAKE_SIZEOF_VOID_P EQUAL 8 AND CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64
     AND NOT QZ_ISP_SANITIZE)
    foreach(cpu IN ITEMS Nehalem max)
      add_test(NAME sample_record.on_${cpu} COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/sample_record_test.sh
                                                    ${QZ_ISP_QEMU_X86_64} -cpu ${cpu} $<TARGET_FILE:qz-isp>)
    endforeach()
  endif()

  # Random frames of the sample tuning; not only the same on every target, but as they have always been.
  add_executable(random_frames ${CMAKE_SOURCE_DIR}/verify/random_frames.c)
  target_compile_options(random_frames PRIVATE -ffp-contract=off)
  target_link_libraries(random_frames PRIVATE qz_isp_warnings qz_isp qz_mkn)
  add_custom_command(
    OUTPUT sample.vuxb
    COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:qz-isp> tuning pack
            ${CMAKE_SOURCE_DIR}/tools/sample/tuning.json sample.vuxb
    DEPENDS qz-isp ${CMAKE_SOURCE_DIR}/tools/sample/tuning.json)
  add_custom_target(sample_container ALL DEPENDS sample.vuxb)
  add_test(NAME random_frames COMMAND random_frames 3000 ${CMAKE_CURRENT_BINARY_DIR}/sample.vuxb 4f4ee29694d2edf8)

  add_custom_target(
    update-digests
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/sample_record_test.sh --update ${sample_record}
    COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/sample_output_test.sh --update ${sample_record}
    DEPENDS qz-isp
    VERBATIM)
endif()
