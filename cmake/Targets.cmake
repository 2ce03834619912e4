# What every target of this project shares: the include root, the warnings, the sanitizers.

add_library(txs_options INTERFACE)
target_include_directories(txs_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(txs_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${TXS_WERROR}>:-Werror>
  # GCC 12 sees overlaps in std::string's own code (its bug 105651). clang-tidy, which reads these
  # options too, does not know that warning.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-unknown-warning-option;-Wno-restrict>)
if(TXS_SANITIZE)
  # What these three find, the address sanitizer finds when it does harm; with GCC they take a third
  # of the compiling of whatever includes Qt. The fuzz targets, which clang builds, keep them.
  target_compile_options(txs_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    $<$<CXX_COMPILER_ID:GNU>:-fno-sanitize=null,vptr,object-size>)
  target_link_options(txs_options INTERFACE -fsanitize=address,undefined)
endif()
if(TXS_FUZZ)
  target_compile_options(txs_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

set(CMAKE_AUTOMOC_MOC_OPTIONS --include ${CMAKE_SOURCE_DIR}/cmake/moc_prelude.h)

# txs_add_library(NAME SOURCES ... LINKS ... [PRELUDE ...]): one floor of the house as a static library.
function(txs_add_library name)
  cmake_parse_arguments(arg "" "PRELUDE" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC txs_options ${arg_LINKS})
  if(arg_PRELUDE)
    txs_use_prelude(${name} ${arg_PRELUDE})
  endif()
endfunction()

# What is tested is built with all the sanitizers. The tests' own code goes without the optimiser and
# without the checks of undefined behaviour, which take its templates longer than the tests run.
# Only where the tests' code is fed with bytes for hours it is worth optimising.
set(txs_test_options)
if(TXS_SANITIZE AND NOT TXS_FUZZ)
  set(txs_test_options -O0 -fno-sanitize=undefined)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
  # Beyond that GCC 12 warns of copies out of bounds in std::string's own code.
  set(txs_test_options -O1)
endif()

# txs_add_test(NAME SOURCES ... LINKS ... [LABELS ...] [PRELUDE ...] [OWN_MAIN]): one GoogleTest program; each of its
# tests becomes a test of CTest, without a label of its own labelled like the program.
function(txs_add_test name)
  cmake_parse_arguments(arg "OWN_MAIN" "PRELUDE" "SOURCES;LINKS;LABELS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE txs_options ${arg_LINKS} GTest::gtest)
  target_compile_options(${name} PRIVATE ${txs_test_options})
  if(arg_PRELUDE)
    txs_use_prelude(${name} ${arg_PRELUDE})
  endif()
  if(NOT arg_OWN_MAIN)
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  if(NOT arg_LABELS)
    set(arg_LABELS ${name}) # an empty value would shift the properties that follow
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES LABELS "${arg_LABELS}" TIMEOUT 600 ENVIRONMENT QT_QPA_PLATFORM=offscreen)
endfunction()
