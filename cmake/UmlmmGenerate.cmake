# Files that the catalogue's generator makes.

# umlmm_generated(SET OUTVAR)
#
# Sets OUTVAR to the full paths of the files of a set (see catalogue/tables/outputs.txt). The target umlmm_generate_SET
# makes them in a folder of UMLMM_GENERATED_DIR that has the set's name; a target that compiles or includes them depends
# on it by add_dependencies, as umlmm_floor does, and umlmm_generate makes all sets. Files whose text stays the same are
# left untouched, so nothing is compiled anew for them.
function(umlmm_generated set out)
  if(NOT TARGET umlmm_generate_${set})
    umlmm_add_generated_set(${set})
  endif()
  get_target_property(files umlmm_generate_${set} UMLMM_FILES)
  set(${out} ${files} PARENT_SCOPE)
endfunction()

function(umlmm_add_generated_set set)
  set(catalogue ${PROJECT_SOURCE_DIR}/uml_metamodel_mi/catalogue)
  file(GLOB inputs CONFIGURE_DEPENDS
    ${catalogue}/generate.py ${catalogue}/generator/*.py
    ${catalogue}/tables/*.txt)
  file(GLOB templates CONFIGURE_DEPENDS ${catalogue}/templates/*.jinja)
  # Which files there are is known when the build is configured, so a changed table configures it anew.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${inputs})
  set(generate ${Python3_EXECUTABLE} -B ${catalogue}/generate.py)
  execute_process(COMMAND ${generate} --list ${set}
    OUTPUT_VARIABLE paths OUTPUT_STRIP_TRAILING_WHITESPACE
    RESULT_VARIABLE failed ERROR_VARIABLE reason)
  if(failed)
    message(FATAL_ERROR "The catalogue's tables are refused. ${reason}")
  endif()
  string(REPLACE "\n" ";" paths "${paths}")
  list(TRANSFORM paths PREPEND ${UMLMM_GENERATED_DIR}/${set}/ OUTPUT_VARIABLE files)
  set(stamp ${UMLMM_GENERATED_DIR}/${set}.stamp)
  add_custom_command(OUTPUT ${stamp} BYPRODUCTS ${files}
    COMMAND ${generate} --set ${set} --output ${UMLMM_GENERATED_DIR}/${set}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${inputs} ${templates}
    COMMENT "Making the ${set} of the metamodel from its tables" VERBATIM)
  add_custom_target(umlmm_generate_${set} DEPENDS ${stamp})
  if(NOT TARGET umlmm_generate)
    add_custom_target(umlmm_generate)
  endif()
  add_dependencies(umlmm_generate umlmm_generate_${set})
  set_source_files_properties(${files} PROPERTIES GENERATED TRUE)
  set_target_properties(umlmm_generate_${set} PROPERTIES UMLMM_FILES "${files}")
endfunction()
