# morvil_folder(TARGET FOLDER SOURCES... [USES targets...] [LIBRARIES external...])
# Declares the library of one folder. Its headers are offered to its users alone: each target has an include folder of its own
# in the build tree that holds one link, named like the folder, to the sources.
function(morvil_folder target folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
  set(include_root ${CMAKE_BINARY_DIR}/include/${target})
  get_filename_component(parent ${include_root}/${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${include_root}/${folder} SYMBOLIC)
  if(NOT ARG_SOURCES)  # headers only, so far
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${include_root})
    target_link_libraries(${target} INTERFACE ${ARG_USES})
    return()
  endif()
  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC ${include_root})
  target_link_libraries(${target} PUBLIC ${ARG_USES} PRIVATE morvil_options ${ARG_LIBRARIES})
  morvil_read_system_headers_once(${target})
endfunction()

# The headers of Windows take longer to read than the sources behind them; they are read once for all folders.
function(morvil_read_system_headers_once target)
  if(WIN32)
    target_precompile_headers(${target} REUSE_FROM platform)
  endif()
endfunction()
