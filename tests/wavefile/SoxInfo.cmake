# Compares what `sox --i` reports of FILE with EXPECT: "name:channels:rate:bits:samples".
# sox must also read the whole file without a warning (a header that disagrees with the
# data draws one).
string(REPLACE ":" ";" EXPECT ${EXPECT})
list(SUBLIST EXPECT 1 4 expected)
set(got)
foreach(option -c -r -b -s)
  execute_process(COMMAND ${SOX} --i ${option} ${FILE} RESULT_VARIABLE rc
                  OUTPUT_VARIABLE value OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "sox --i ${option} ${FILE} failed (${rc})")
  endif()
  list(APPEND got ${value})
endforeach()
if(NOT got STREQUAL expected)
  message(FATAL_ERROR "sox --i on ${FILE}: channels;rate;bits;samples ${got}, written ${expected}")
endif()
execute_process(COMMAND ${SOX} -V2 ${FILE} -n RESULT_VARIABLE rc ERROR_VARIABLE warnings)
if(NOT rc EQUAL 0 OR warnings MATCHES "WARN|FAIL")
  message(FATAL_ERROR "sox reading ${FILE}: ${warnings}")
endif()
message(STATUS "sox agrees on ${FILE}: ${got}")
