# What every target of ours is built with, and the two functions that make them.

add_library(lorvane_options INTERFACE)
target_compile_options(lorvane_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                                 -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
target_compile_definitions(lorvane_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
                                                     QT_NO_KEYWORDS)
if(LORVANE_SANITIZE)
  target_compile_options(lorvane_options INTERFACE -fsanitize=${LORVANE_SANITIZE}
                                                   -fno-omit-frame-pointer)
  # What the standard library can check at run time: an empty optional, an index out of range.
  target_compile_definitions(lorvane_options INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(lorvane_options INTERFACE -fsanitize=${LORVANE_SANITIZE})
endif()

if(CMAKE_UNITY_BUILD)
  # What is a file's own meets that of others in a batch; the usual builds have these warnings.
  target_compile_options(lorvane_options INTERFACE -Wno-subobject-linkage -Wno-shadow)
endif()

# lorvane_library(name SOURCES ... LINKS ... PRIVATE_LINKS ...): one folder of src/. LINKS are the
# arrows out of it. Headers are included as "Folder/Header.h", through an include folder of the
# library's own that holds nothing but a link to its sources: a wrong arrow does not compile.
function(lorvane_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
  set(include ${PROJECT_BINARY_DIR}/include/${name})
  get_filename_component(parent ${include}/${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include}/${folder} SYMBOLIC)
  target_include_directories(${name} PUBLIC ${include})
  target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS} lorvane_options)
endfunction()

# lorvane_test(name SOURCES ... LINKS ... [LABEL unit]): one GoogleTest program.
function(lorvane_test name)
  cmake_parse_arguments(arg "" "LABEL" "SOURCES;LINKS" ${ARGN})
  if(NOT arg_LABEL)
    set(arg_LABEL unit)
  endif()
  add_executable(${name} ${arg_SOURCES})
  if(LORVANE_SANITIZE MATCHES thread)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/ThreadSanitizer.cpp)
  endif()
  target_link_libraries(${name} PRIVATE ${arg_LINKS} lorvane_options GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} PROPERTIES LABELS ${arg_LABEL} TIMEOUT 120 DISCOVERY_TIMEOUT 60)
endfunction()
