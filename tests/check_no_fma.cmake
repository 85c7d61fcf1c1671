# Fails when the engine library contains a fused multiply-add: one rounding
# where the plain arithmetic rounds twice would change results between the
# vector paths and between machines. Run with -DLIBRARY=<path of the library>.
find_program(OBJDUMP objdump REQUIRED)
execute_process(COMMAND ${OBJDUMP} -d ${LIBRARY} OUTPUT_VARIABLE code RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "objdump failed on ${LIBRARY}")
endif()
string(REGEX MATCHALL "vfn?m(add|sub)[a-z0-9]*" fused "${code}")
if(fused)
  list(REMOVE_DUPLICATES fused)
  message(FATAL_ERROR "fused multiply-add in the engine: ${fused}")
endif()
