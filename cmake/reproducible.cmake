# Two builds of one commit in different folders give the same bytes: what a compiler notes of paths
# begins at the source folder, whether it was called with whole paths or, as a compiler cache does,
# from the build folder. scripts/check-reproducible compares.
file(RELATIVE_PATH up ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR})
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${up}=./)
if(NOT CMAKE_BINARY_DIR MATCHES "^${CMAKE_SOURCE_DIR}/")
  add_compile_options(-ffile-prefix-map=${CMAKE_BINARY_DIR}=./build)
endif()
