# The library's layers, bottom to top: base, kernels, engine, face. Each is
# an object library compiled against an include view: a folder of links to
# exactly the headers that layer may use. An include of a higher layer then
# finds no file and does not compile.

# Creates the view `name` from paths relative to the source tree (folders
# or single headers) and returns its folder in PAVONA_VIEW_<name>.
function(pavona_include_view name)
  set(view ${PROJECT_BINARY_DIR}/include-views/${name})
  file(REMOVE_RECURSE ${view})
  foreach(path IN LISTS ARGN)
    get_filename_component(parent ${view}/${path} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${path} ${view}/${path} SYMBOLIC)
  endforeach()
  set(PAVONA_VIEW_${name} ${view} PARENT_SCOPE)
endfunction()

# Our own warnings, fatal where PAVONA_WERROR is on.
function(pavona_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra
    $<$<BOOL:${PAVONA_WERROR}>:-Werror>)
endfunction()

# pavona_add_layer(NAME SEES path...): the object library pavona_<NAME>,
# which sees only the listed paths. Sources are added by each folder.
function(pavona_add_layer name)
  cmake_parse_arguments(ARG "" "" "SEES" ${ARGN})
  pavona_include_view(${name} ${ARG_SEES})
  add_library(pavona_${name} OBJECT)
  set_target_properties(pavona_${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(pavona_${name} PRIVATE ${PAVONA_VIEW_${name}})
  pavona_warnings(pavona_${name})
  target_link_libraries(pavona_${name} PRIVATE Android::log)
  set(PAVONA_VIEW_${name} ${PAVONA_VIEW_${name}} PARENT_SCOPE)
endfunction()

pavona_add_layer(base SEES base)
pavona_add_layer(kernels SEES base zel colorconv
  src/neon/kmeans_assign.h src/neon/kmeans_sums.h
  src/neon/cluster_sort.h)
# The engine's calls take the host's records, so it sees that one header of
# the face.
pavona_add_layer(engine SEES base zel colorconv src api/pavona_host.h)
pavona_add_layer(face SEES base zel colorconv src api)

# Outside the library: hosts of our own (the tool, the palette tracker) see
# only the public headers and each other.
pavona_include_view(host tools tracker api/pavona_host.h api/pavona_ext.h)

# Every layer's objects in one target, for the shared library and for unit
# suites, benchmarks and fuzz targets that reach internals.
add_library(pavona_core INTERFACE)
target_sources(pavona_core INTERFACE
  $<TARGET_OBJECTS:pavona_base> $<TARGET_OBJECTS:pavona_kernels>
  $<TARGET_OBJECTS:pavona_engine> $<TARGET_OBJECTS:pavona_face>)
target_include_directories(pavona_core INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
target_link_libraries(pavona_core INTERFACE Android::log m)
