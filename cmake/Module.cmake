# One folder, one module. A module's headers are included as "folder/header.h", and a target sees
# only the folders of the modules that it links: each module publishes an include root of its own
# that holds nothing but a link to its folder. An include against the arrows of ARCHITECTURE.md
# therefore does not compile.

# zel_include_view(NAME FOLDER [FILES...]): an INTERFACE target whose include root shows the folder,
# or only the named files of it.
function(zel_include_view name folder)
  set(root ${CMAKE_BINARY_DIR}/include/${name})
  set(source ${CMAKE_SOURCE_DIR}/${folder})
  if(ARGN)
    file(MAKE_DIRECTORY ${root}/${folder})
    foreach(header IN LISTS ARGN)
      file(CREATE_LINK ${source}/${header} ${root}/${folder}/${header} SYMBOLIC)
    endforeach()
  else()
    file(MAKE_DIRECTORY ${root})
    file(CREATE_LINK ${source} ${root}/${folder} SYMBOLIC)
  endif()
  add_library(${name} INTERFACE)
  target_include_directories(${name} INTERFACE ${root})
endfunction()

# zel_module(FOLDER SOURCES... LINKS...): the OBJECT target zel_FOLDER built from the folder's
# sources, and its include view zel_FOLDER_headers.
function(zel_module folder)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  zel_include_view(zel_${folder}_headers ${folder})
  add_library(zel_${folder} OBJECT ${arg_SOURCES})
  target_link_libraries(zel_${folder} PUBLIC zel_${folder}_headers ${arg_LINKS} zel_options)
endfunction()
