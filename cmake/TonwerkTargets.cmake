# SPDX-License-Identifier: GPL-3.0-or-later
# Project-wide settings applied per target, never directory-wide.

if(TONWERK_SANITIZE)
  string(REPLACE "," ";" _tonwerk_sanitizers "${TONWERK_SANITIZE}")
  set(TONWERK_SANITIZE_FLAGS -fsanitize=${TONWERK_SANITIZE} -fno-omit-frame-pointer)
  if("undefined" IN_LIST _tonwerk_sanitizers)
    list(APPEND TONWERK_SANITIZE_FLAGS -fno-sanitize-recover=undefined)
  endif()
endif()

# Warnings, sanitizers and the include root for one of our targets.
function(tonwerk_target_defaults target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                           -Wcast-align -Woverloaded-virtual -Wimplicit-fallthrough)
  if(TONWERK_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(TONWERK_SANITIZE_FLAGS)
    target_compile_options(${target} PRIVATE ${TONWERK_SANITIZE_FLAGS})
    target_link_options(${target} PRIVATE ${TONWERK_SANITIZE_FLAGS})
  endif()
endfunction()

# add_tonwerk_library(name folder sources...): one static library per folder, included as
# "folder/Header.h" from the repository root.
function(add_tonwerk_library name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  tonwerk_target_defaults(${name})
endfunction()
