// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/TemporaryFolder.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace tonvale::test {

TemporaryFolder::TemporaryFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "tonvale-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    path_ = name;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;  // a leftover in the temporary directory fails no test
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace tonvale::test
