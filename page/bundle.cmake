# The page of `qz-isp report` and `sweep --plot`, which Node.js bundles from this directory and packages of the npm registry. No build goes
# to the registry unasked. report_page_source is the source file that holds the page or none.
set(QZ_ISP_REPORT_PAGE AUTO CACHE STRING "The page of qz-isp report: ON installs npm packages, AUTO takes those that are there")
set_property(CACHE QZ_ISP_REPORT_PAGE PROPERTY STRINGS AUTO ON OFF)
set(QZ_ISP_REPORT_BUNDLE_DIR ${CMAKE_BINARY_DIR}/report-bundle CACHE PATH "Where the page is bundled, for all presets")

find_program(QZ_ISP_NODE node)
find_program(QZ_ISP_NPM npm)
set(node_version 0)
if(QZ_ISP_NODE AND QZ_ISP_NPM)
  execute_process(COMMAND ${QZ_ISP_NODE} --version OUTPUT_VARIABLE node_version OUTPUT_STRIP_TRAILING_WHITESPACE)
  string(REPLACE v "" node_version "${node_version}")
endif()

set(report_page_source base/report_no_page.cpp) # in tools/
if(QZ_ISP_REPORT_PAGE STREQUAL AUTO OR QZ_ISP_REPORT_PAGE)
  if(node_version VERSION_GREATER_EQUAL 18)
    file(GLOB report_sources LIST_DIRECTORIES false CONFIGURE_DEPENDS
         ${CMAKE_CURRENT_LIST_DIR}/* ${CMAKE_CURRENT_LIST_DIR}/live/* ${CMAKE_CURRENT_LIST_DIR}/module/*.js
         ${CMAKE_CURRENT_LIST_DIR}/sweep/*)
    set(report_page_source ${QZ_ISP_REPORT_BUNDLE_DIR}/report_page.cpp)
    add_custom_command(
      OUTPUT ${report_page_source}
      COMMAND ${QZ_ISP_NODE} ${CMAKE_CURRENT_LIST_DIR}/build.mjs
              $<$<NOT:$<STREQUAL:${QZ_ISP_REPORT_PAGE},AUTO>>:--install> ${QZ_ISP_REPORT_BUNDLE_DIR}
      DEPENDS ${report_sources}
      COMMENT "Bundling the page of qz-isp report"
      COMMAND_EXPAND_LISTS)
    install(
      FILES ${QZ_ISP_REPORT_BUNDLE_DIR}/licences.txt
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qz-isp
      RENAME report-licences.txt
      COMPONENT tools
      OPTIONAL)
  elseif(QZ_ISP_REPORT_PAGE STREQUAL AUTO)
    message(STATUS "No page for qz-isp report: found node ${node_version}, expected node 18 or newer with npm")
  else()
    message(FATAL_ERROR "QZ_ISP_REPORT_PAGE: found node ${node_version}, expected node 18 or newer with npm")
  endif()
endif()

# The module that makes the page live, where it was built: report_module_source holds it or none.
set(QZ_ISP_MODULE_FILE ${CMAKE_SOURCE_DIR}/build/wasm/qz-isp-module.wasm CACHE FILEPATH
    "The WebAssembly module that the page of qz-isp report carries")
set(report_module_source base/report_no_module.cpp) # in tools/
if(EXISTS ${QZ_ISP_MODULE_FILE} AND node_version VERSION_GREATER_EQUAL 18)
  set(report_module_source ${CMAKE_CURRENT_BINARY_DIR}/report_module.cpp)
  add_custom_command(
    OUTPUT ${report_module_source}
    COMMAND ${QZ_ISP_NODE} ${CMAKE_CURRENT_LIST_DIR}/module/embed.mjs ${QZ_ISP_MODULE_FILE} ${report_module_source}
    DEPENDS ${QZ_ISP_MODULE_FILE} ${CMAKE_CURRENT_LIST_DIR}/module/embed.mjs
    COMMENT "Packing the module of the page")
endif()
