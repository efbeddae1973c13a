# The program's folders are layers: a library may include the headers of its
# own folder and of the libraries it links, and nothing else. Every include is
# written from src ("cgi/fields.h"), so instead of exporting src, which would
# let any library include any header, each library gets an include folder of
# its own in the build tree that holds one link: <name> -> src/<name>.
#
#   driver -> pages -> fields, html -> i18n, cgi -> state -> platform
#
# tests/layers checks the includes against this order as well, so that a
# folder linked for another reason cannot be reached sideways.

# lxr_expose(<target> <folder> [FILES <header>...])
#
# Publishes src/<folder> to <target> and to whatever links it, as
# "<folder>/...". With FILES only those headers of the folder are published
# (a library built from part of a folder).
function(lxr_expose target folder)
  cmake_parse_arguments(PARSE_ARGV 2 EXPOSE "" "" "FILES")
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  if(EXPOSE_FILES)
    file(MAKE_DIRECTORY ${root}/${folder})
    foreach(header ${EXPOSE_FILES})
      file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${folder}/${header} ${root}/${folder}/${header}
           SYMBOLIC)
    endforeach()
  else()
    get_filename_component(parent ${root}/${folder} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${folder} ${root}/${folder} SYMBOLIC)
  endif()
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    target_include_directories(${target} INTERFACE ${root})
  else()
    target_include_directories(${target} PUBLIC ${root})
  endif()
endfunction()
