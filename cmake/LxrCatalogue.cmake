# lxr_add_catalogue(<target> SOURCE_DIR <dir> OUTPUT_DIR <dir>)
#
# Compiles a catalogue with genrb at build time. SOURCE_DIR holds one
# directory per bundle tree (application name), each with one
# <locale>.txt per locale whose table name is that locale:
#   <SOURCE_DIR>/LXRAdmin/de.txt  ->  <OUTPUT_DIR>/LXRAdmin/de.res
# Relative directories are taken from the calling CMakeLists' source and
# binary directories. <target> is a custom target in ALL; make the users of
# the catalogue depend on it. The top-level CMakeLists includes this file
# before it adds the directories that use it.
function(lxr_add_catalogue target)
  cmake_parse_arguments(PARSE_ARGV 1 CAT "" "SOURCE_DIR;OUTPUT_DIR" "")
  if(NOT CAT_SOURCE_DIR OR NOT CAT_OUTPUT_DIR)
    message(FATAL_ERROR "lxr_add_catalogue(${target}): SOURCE_DIR and OUTPUT_DIR are required")
  endif()
  get_filename_component(source_dir "${CAT_SOURCE_DIR}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_SOURCE_DIR}")
  get_filename_component(output_dir "${CAT_OUTPUT_DIR}" ABSOLUTE BASE_DIR "${CMAKE_CURRENT_BINARY_DIR}")
  file(GLOB sources CONFIGURE_DEPENDS "${source_dir}/*/*.txt")
  if(NOT sources)
    message(FATAL_ERROR "lxr_add_catalogue(${target}): no ${source_dir}/<application>/<locale>.txt")
  endif()
  set(outputs)
  foreach(source IN LISTS sources)
    get_filename_component(tree_dir "${source}" DIRECTORY)
    get_filename_component(tree "${tree_dir}" NAME)
    get_filename_component(locale "${source}" NAME_WE)
    set(output "${output_dir}/${tree}/${locale}.res")
    add_custom_command(
      OUTPUT "${output}"
      COMMAND ${CMAKE_COMMAND} -E make_directory "${output_dir}/${tree}"
      COMMAND ${GENRB} -q -k -e UTF-8 -d "${output_dir}/${tree}" "${source}"
      DEPENDS "${source}"
      COMMENT "Compiling catalogue ${tree}/${locale}"
      VERBATIM)
    list(APPEND outputs "${output}")
  endforeach()
  add_custom_target(${target} ALL DEPENDS ${outputs})
endfunction()
