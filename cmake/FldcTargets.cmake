# Compiler settings shared by every target, and the two functions that make targets.

add_library(fldc_settings INTERFACE)
target_compile_features(fldc_settings INTERFACE cxx_std_20)
target_include_directories(fldc_settings INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(
  fldc_settings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wconversion
            -Wsign-conversion
            -Wshadow
            -Wnon-virtual-dtor
            -Wold-style-cast
            -Wcast-align
            -Woverloaded-virtual
            $<$<NOT:$<BOOL:$<TARGET_PROPERTY:FLDC_TEST>>>:-Wnull-dereference>
            -Wduplicated-cond
            -Wlogical-op
            -Werror)
# Tests take pointers as they come; the compiler can't see that a null one fails the test anyway.
# No implicit conversion between bytes and text anywhere, and none of Qt's macro keywords.
target_compile_definitions(
  fldc_settings
  INTERFACE QT_NO_CAST_FROM_ASCII
            QT_NO_CAST_TO_ASCII
            QT_NO_CAST_FROM_BYTEARRAY
            QT_NO_URL_CAST_FROM_STRING
            QT_NO_KEYWORDS
            QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
            QT_USE_QSTRINGBUILDER
            QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(FLDC_SANITIZE)
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_compile_options(fldc_settings INTERFACE ${sanitizers} -Wno-null-dereference)
  target_link_options(fldc_settings INTERFACE ${sanitizers})
endif()

# The fuzzers: clang's libraries, whose warnings are not looked at; the other builds have the compiler
# that judges them.
if(FLDC_FUZZ)
  set(sanitizers -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_compile_options(fldc_settings INTERFACE ${sanitizers} -Wno-unknown-warning-option -Wno-error)
  target_compile_definitions(fldc_settings INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(fldc_settings INTERFACE ${sanitizers})
endif()

# What makes a fault of memory end the program instead of being used. The optimiser is needed for the
# checked functions of the C library.
add_library(fldc_hardening INTERFACE)
option(FLDC_HARDEN "Hardened executables" ON)
if(FLDC_HARDEN AND NOT FLDC_SANITIZE AND NOT FLDC_FUZZ)
  target_compile_options(fldc_hardening INTERFACE -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  target_compile_definitions(fldc_hardening INTERFACE _GLIBCXX_ASSERTIONS
                                                      $<$<NOT:$<CONFIG:Debug>>:_FORTIFY_SOURCE=3>)
  target_link_options(fldc_hardening INTERFACE -Wl,-z,relro,-z,now -pie)
endif()
target_link_libraries(fldc_settings INTERFACE fldc_hardening)

# fldc_library(name SOURCES file... LINKS library...): one static library per folder. The settings
# are the project's own: programs that link an installed library choose theirs.
function(fldc_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  add_library(rv4100_fldc::${name} ALIAS ${name})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_link_libraries(${name} PUBLIC $<BUILD_INTERFACE:fldc_settings> ${arg_LINKS})
endfunction()

# fldc_executable(name SOURCES file... LINKS library...)
function(fldc_executable name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE fldc_settings ${arg_LINKS})
endfunction()
