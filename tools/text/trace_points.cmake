# Turns the table of trace points into the rows of a C++ array. Works on the text as a whole: a cause may hold
# the semicolons that would split a list. The file is written anew only when it changes.
function(generate_trace_points table output)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${table})
  file(READ ${table} text)
  string(FIND "${text}" "\n" header_end)
  math(EXPR first_row "${header_end} + 1")
  string(SUBSTRING "${text}" ${first_row} -1 text)
  string(REPLACE "\\" "\\\\" text "${text}")
  string(REPLACE "\"" "\\\"" text "${text}")
  string(REGEX REPLACE "([^\t\n]+)\t([0-9]+)\t[^\t\n]*\t[^\t\n]*\t([^\t\n]*)\n" "{\"\\1\", \\2, \"\\3\"},\n" rows
                       "${text}")
  file(CONFIGURE OUTPUT ${output} CONTENT "${rows}" @ONLY)
endfunction()
