# The page of `qz-isp report`, which Node.js bundles from this directory and packages of the npm registry. Without them
# the program has no page, and everything else builds. QZ_ISP_REPORT_PAGE is the source file that holds the page or none.
set(QZ_ISP_REPORT_BUNDLE_DIR ${CMAKE_BINARY_DIR}/report-bundle CACHE PATH "Where the page is bundled, for all presets")

find_program(QZ_ISP_NODE node)
find_program(QZ_ISP_NPM npm)
set(node_version 0)
if(QZ_ISP_NODE AND QZ_ISP_NPM)
  execute_process(COMMAND ${QZ_ISP_NODE} --version OUTPUT_VARIABLE node_version OUTPUT_STRIP_TRAILING_WHITESPACE)
  string(REPLACE v "" node_version "${node_version}")
endif()

if(node_version VERSION_GREATER_EQUAL 18)
  file(GLOB report_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/*)
  set(QZ_ISP_REPORT_PAGE ${QZ_ISP_REPORT_BUNDLE_DIR}/report_page.cpp)
  add_custom_command(
    OUTPUT ${QZ_ISP_REPORT_PAGE}
    COMMAND ${QZ_ISP_NODE} ${CMAKE_CURRENT_LIST_DIR}/build.mjs ${QZ_ISP_REPORT_BUNDLE_DIR}
    DEPENDS ${report_sources}
    COMMENT "Bundling the page of qz-isp report")
  install(
    FILES ${QZ_ISP_REPORT_BUNDLE_DIR}/licences.txt
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qz-isp
    RENAME report-licences.txt
    COMPONENT tools
    OPTIONAL)
else()
  message(STATUS "No page for qz-isp report: found node ${node_version}, expected node 18 or newer with npm")
  set(QZ_ISP_REPORT_PAGE report_no_page.cpp)
endif()
