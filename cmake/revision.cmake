# SPDX-License-Identifier: GPL-3.0-or-later
# touchui_revision: an interface target that offers "revision.h" with the commit being built. The header is looked at on
# every build and rewritten only when the commit has changed. Run with -P it writes the header. An archive made by git
# knows its commit by revision.txt; any other tree without git gets zeros.
if(CMAKE_SCRIPT_MODE_FILE)
    cmake_minimum_required(VERSION 3.18)
    set(revision "")
    # In a container the checkout often belongs to another user, and git would refuse to look at it. Nothing of the
    # checkout is run here.
    set(git git -c safe.directory=* -C "${SOURCE_DIR}")
    execute_process(COMMAND ${git} rev-parse HEAD
        OUTPUT_VARIABLE revision OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    # A tree that merely lies inside some other checkout is not built from that checkout's commit.
    execute_process(COMMAND ${git} rev-parse --show-prefix
        OUTPUT_VARIABLE prefix OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(NOT revision MATCHES "^[0-9a-f]+$" OR prefix)
        # What git has written into an archive of a commit; as it is, it names none.
        file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/revision.txt revision LIMIT_COUNT 1)
    endif()
    if(NOT revision MATCHES "^[0-9a-f]+$")
        string(REPEAT "0" 40 revision)
    endif()
    file(CONFIGURE OUTPUT "${OUTPUT}" CONTENT "// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** The commit this program was built from; zeros when that is not known. */
constexpr char BuildRevision[] = \"${revision}\";
")
    return()
endif()

set(TOUCHUI_REVISION_DIR ${CMAKE_BINARY_DIR}/revision)
add_custom_target(touchui_revision_header
    COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${CMAKE_SOURCE_DIR}
        -DOUTPUT=${TOUCHUI_REVISION_DIR}/revision.h -P ${CMAKE_CURRENT_LIST_FILE}
    BYPRODUCTS ${TOUCHUI_REVISION_DIR}/revision.h
    COMMENT "Looking up the build revision")
add_library(touchui_revision INTERFACE)
target_include_directories(touchui_revision INTERFACE ${TOUCHUI_REVISION_DIR})
add_dependencies(touchui_revision touchui_revision_header)
