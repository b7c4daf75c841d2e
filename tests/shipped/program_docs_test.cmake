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

check_command()
check_command(run)
check_command(report)
check_command(sweep)
check_command(tuning)
check_command(tuning pack)
check_command(tuning show)
check_command(record)
check_command(record show)
check_command(makernote)
check_command(makernote show)
check_command(diff)
