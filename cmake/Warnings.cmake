# Common warning flags for the project's own targets.
function(tarni_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wno-unused-parameter -Wno-restrict)
endfunction()
