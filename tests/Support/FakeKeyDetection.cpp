// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/FakeKeyDetection.h"

#include <fstream>

namespace tonvale::test {

namespace {

/// Python that writes `bytes` to a descriptor; everything is escaped, so any byte will do.
std::string pythonWrite(int descriptor, std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string literal;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        literal += {'\\', 'x', digits[value / 16], digits[value % 16]};
    }
    return "os.write(" + std::to_string(descriptor) + ", b'" + literal + "')\n";
}

}  // namespace

FakeKeyDetection::FakeKeyDetection()
{
    std::filesystem::create_directories(root_);
    Bundle::replaceMain(&bundle_);
}

FakeKeyDetection::~FakeKeyDetection()
{
    Bundle::replaceMain(nullptr);
}

void FakeKeyDetection::setScript(std::string_view python)
{
    std::ofstream(root_ / "detect_key.py") << python;
}

void FakeKeyDetection::setAnswer(std::string_view standardOutput, std::string_view standardError,
                                 int status)
{
    setScript("import os\n" + pythonWrite(1, standardOutput) + pythonWrite(2, standardError)
              + "os._exit(" + std::to_string(status) + ")\n");
}

}  // namespace tonvale::test
