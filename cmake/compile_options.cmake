# The compile options that every target of the project shares, as one interface target.
add_library(compile_options INTERFACE)
target_compile_features(compile_options INTERFACE cxx_std_20)
target_include_directories(compile_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wformat=2
  # False alarms of g++ 12 on text + std::string (GCC bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${RESAMPLE_WERROR}>:-Werror>
  # Where several files are compiled as one, a name of one of them hides no name of another.
  $<$<BOOL:${CMAKE_UNITY_BUILD}>:-Wno-shadow>
  # A fused multiply-add would change the documented order of operations, and with it
  # positions and table indices.
  -ffp-contract=off)

find_package(Threads REQUIRED)
target_link_libraries(compile_options INTERFACE Threads::Threads)

if(RESAMPLE_SANITIZE)
  target_compile_options(compile_options INTERFACE
    -fsanitize=${RESAMPLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # Null pointers end the process as it is, and to check them all takes long to compile.
    -fno-sanitize=null
    # False alarms of g++ on instrumented library templates such as std::regex.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(compile_options INTERFACE -fsanitize=${RESAMPLE_SANITIZE})
endif()

# Some kinds of processors have an unsigned char; pools store signed ones.
if(NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|amd64|AMD64)$")
  target_compile_options(compile_options INTERFACE -fsigned-char)
endif()

# add_room(NAME SOURCES... LINKS...): one folder of src/ as one static library; its links say
# which rooms it may use.
function(add_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(${name} PUBLIC compile_options ${ROOM_LINKS})
endfunction()
