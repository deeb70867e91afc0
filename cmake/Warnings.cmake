# One place for the warning flags of every target.
function(velmora_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  # GCC 12 reports -Wrestrict on ordinary `"literal" + std::string` at -O2 and above, a known false
  # positive of its inlined char_traits::copy (GCC bug 105651), fixed in GCC 13.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(VELMORA_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
