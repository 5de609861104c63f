# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

# Libraries of the distribution; scripts/packages.txt names their packages.

find_package(Threads REQUIRED)

