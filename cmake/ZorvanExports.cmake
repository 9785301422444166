# What the shared libraries export: what is ours, and nothing that the compiler made for itself of the templates and
# inline functions of other libraries (std, Qt, nlohmann-json), which would cost a program a search for each at its
# start. Of what is ours, a library that is CLOSED keeps the namespace `internal`, and one that is LOADED all but the
# functions that it is loaded for. tests/headers/exports.py tells what no header shows.

# The mangled names of functions, of tables and type information, of guards and statics of functions, and of thunks.
set(ZORVAN_MANGLED
    _ZN _ZNK _ZNR _ZNKR _ZNO _ZNKO _ZT?N _ZTIPN _ZGVN _ZGVZN* _ZZN _ZZNK _ZThn*_N _ZThn*_NK _ZTv0_n*_N _ZTv0_n*_NK)

# zorvan_limit_exports(<Component> <kind>): kind is OPEN, CLOSED or LOADED.
function(zorvan_limit_exports component kind)
  # Functions to load have plain names; std::hash is made for types of ours.
  set(patterns "    zorvan*;\n    _ZNKSt4hashIN6zorvan*;\n")
  foreach(prefix ${ZORVAN_MANGLED})
    if(kind STREQUAL OPEN)
      string(APPEND patterns "    ${prefix}6zorvan*;\n")
    elseif(kind STREQUAL CLOSED)
      # Names come after their lengths: all but "8internal".
      string(APPEND patterns "    ${prefix}6zorvan[!8]*;\n    ${prefix}6zorvan8[!i]*;\n")
    endif()
  endforeach()
  set(map ${PROJECT_BINARY_DIR}/exports/${component}.map)
  file(CONFIGURE OUTPUT ${map} CONTENT "{\n  global:\n${patterns}  local:\n    *;\n};\n")
  target_link_options(${component} PRIVATE -Wl,--version-script=${map})
  set_property(TARGET ${component} PROPERTY LINK_DEPENDS ${map})
endfunction()
