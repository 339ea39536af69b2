# What all targets of the project share, so that each CMakeLists.txt only lists its rooms.

add_library(tessel_options INTERFACE)
target_compile_options(tessel_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                                -fno-semantic-interposition)
# gcc 12 warns of overlapping copies inside std::string's own operator+ (its bug 105651).
target_compile_options(tessel_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
if(TESSEL_WARNINGS_AS_ERRORS)
  target_compile_options(tessel_options INTERFACE -Werror)
endif()
if(TESSEL_SANITIZE)
  target_compile_options(tessel_options INTERFACE -fsanitize=${TESSEL_SANITIZE} -fno-omit-frame-pointer
                                                  -fno-sanitize-recover=all)
  target_link_options(tessel_options INTERFACE -fsanitize=${TESSEL_SANITIZE})
endif()
if(TESSEL_COVERAGE)
  target_compile_options(tessel_options INTERFACE --coverage)
  target_link_options(tessel_options INTERFACE --coverage)
endif()

# The sources of a room are what lies in its folder.
function(tessel_room_sources out)
  set(found)
  foreach(folder IN LISTS ARGN)
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND found ${files})
  endforeach()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# A static library of one folder that looks at nothing of the library proper.
function(tessel_static_room name)
  tessel_room_sources(sources ${name})
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/Source>)
    target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:tessel_options>)
  endif()
endfunction()
