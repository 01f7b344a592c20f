# Fails when a public header reaches Boost or Eigen. Both live in /usr/include, so a compile
# alone cannot tell; instead each header is preprocessed on its own with -M, which lists every
# file it opens, directly or not, and no listed path may lie under boost/, eigen3/ or Eigen/.
# Arguments: CXX (the compiler), HEADER_DIR (the headers to check), GENERATED_DIR (the generated
# headers, Version.h).
file(GLOB_RECURSE headers RELATIVE ${HEADER_DIR} ${HEADER_DIR}/*.h)
set(flags -std=c++20 -M -x c++ -I${HEADER_DIR} -I${GENERATED_DIR})
set(failed "")
foreach(header IN LISTS headers)
  execute_process(COMMAND ${CXX} ${flags} ${HEADER_DIR}/${header}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(rc)
    string(APPEND failed "${header} does not preprocess:\n${out}\n")
  endif()
  string(REGEX MATCHALL "[^ \n]*/(boost|eigen3|Eigen)/[^ \n]*" hits "${out}")
  if(hits)
    list(SUBLIST hits 0 3 hits)
    list(JOIN hits "\n" hits)
    string(APPEND failed "${header} includes Boost or Eigen:\n${hits}\n")
  endif()
endforeach()
if(failed)
  message(FATAL_ERROR "${failed}")
endif()
list(LENGTH headers n)
message("${n} public headers checked: none opens Boost or Eigen")
