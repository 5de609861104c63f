# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

# Run by CPack on the installed tree before it becomes a package: manual pages are compressed as the
# distribution wants them, and every file is as old as the last commit, so that the package holds
# the same bytes whenever and wherever it is made.

file(GLOB pages "${CPACK_TEMPORARY_DIRECTORY}/usr/share/man/man1/*.1")
list(SORT pages)
foreach(page IN LISTS pages)
    execute_process(COMMAND gzip --best --no-name --force "${page}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()

if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(
        COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec
            touch --no-dereference "--date=@$ENV{SOURCE_DATE_EPOCH}" {} +
        COMMAND_ERROR_IS_FATAL ANY)
endif()
