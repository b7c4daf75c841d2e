# Every command and option that the program's own help names is in its manual page, and bash completes it.
#
#   cmake "-DPROGRAM=program;and arguments before" -DTOOLS=source directory -P program_docs_test.cmake
cmake_minimum_required(VERSION 3.25)

file(READ ${TOOLS}/qz-isp.1 manual)
string(REPLACE "\\-" "-" manual "${manual}")

function(check_command)
  execute_process(COMMAND ${PROGRAM} ${ARGN} --help OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "\n(Example|Exit|FILE).*" "" help "${help}")
  string(REGEX MATCHALL "\n  [a-z]+ |--[a-z-]+" words "${help}") # subcommands and options
  list(TRANSFORM words STRIP)
  list(JOIN ARGN " " command)
  execute_process(
    COMMAND bash -c "source '${TOOLS}/qz-isp.bash'
      COMP_WORDS=(qz-isp ${command} '') COMP_CWORD=$((\${#COMP_WORDS[@]} - 1)) && _qz_isp && echo \"\${COMPREPLY[*]}\"
      COMP_WORDS[COMP_CWORD]=-- && _qz_isp && echo \"\${COMPREPLY[*]}\""
    OUTPUT_VARIABLE completed COMMAND_ERROR_IS_FATAL ANY)
  list(LENGTH words count)
  if(count LESS 1)
    message(SEND_ERROR "qz-isp ${command}: no option in its help")
  endif()
  foreach(word IN LISTS words)
    if(NOT manual MATCHES "[ \n]${word}[ \n]")
      message(SEND_ERROR "qz-isp.1 says nothing of qz-isp ${command} ${word}")
    endif()
    if(NOT completed MATCHES "(^|[ \n])${word}[ \n]")
      message(SEND_ERROR "bash does not complete qz-isp ${command} ${word}, only ${completed}")
    endif()
  endforeach()
endfunction()

# What bash completes at the end of a line is, among other words, one after the other: each a regular expression.
function(check_names line)
  list(REMOVE_ITEM PROGRAM "") # without an emulator
  list(JOIN PROGRAM "' '" program)
  execute_process(
    COMMAND bash -c "source '${TOOLS}/qz-isp.bash'
      qz-isp() { '${program}' \"$@\"; }
      COMP_LINE=\"${line}\" COMP_POINT=\${#COMP_LINE} && _qz_isp && echo \" \${COMPREPLY[*]} \""
    OUTPUT_VARIABLE completed COMMAND_ERROR_IS_FATAL ANY)
  list(JOIN ARGN " (.* )?" names)
  if(NOT completed MATCHES "^ (.* )?${names} ")
    message(SEND_ERROR "bash completes \"${line}\" with${completed}")
  endif()
endfunction()

set(sample "${TOOLS}/sample")
check_names("qz-isp run --set hu" hue=)
check_names("qz-isp report --set colour.c" "colour[.]ccm[[]0]=")
check_names("qz-isp sweep --over tuning:x" "xnr[[]0/0][.]rows[[]0][.]key=" "xnr[[]0/2][.]rows[[]0][.]param=")
check_names("qz-isp run --tuning '${sample}/scene.json' --set hu")
check_names("qz-isp get --scene ${sample}/scene.json noise_reduction.p" "noise_reduction[.]param")
check_names("qz-isp sweep --over hue=1 --fields checksum,xnr." "checksum,xnr[.]param" "checksum,xnr[.]weight")
check_names("qz-isp run --scene ${sample}/scene.json --frame " all preview still)
check_names("qz-isp tuning show ${sample}/tuning.json xnr" "xnr[[]0/0]" "xnr[[]0/2]")

check_command()
check_command(get)
check_command(run)
check_command(report)
check_command(sweep)
check_command(tuning)
check_command(tuning pack)
check_command(tuning show)
check_command(tuning check)
check_command(record)
check_command(record show)
check_command(makernote)
check_command(makernote show)
check_command(compare)
check_command(diff)
