// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Precondition.h"
#include "TonvaleRender/CommandLine.h"
#include "TonvaleRender/UsageError.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

namespace {

using namespace tonvale;

/// The lines of a text, each a word of the command line; the last one needs no line feed.
std::vector<std::string> wordsOf(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> words = {"tonvale-render"};
    for (const std::uint8_t* const end = data + size; data != end;) {
        const std::uint8_t* const wordEnd = std::find(data, end, '\n');
        words.emplace_back(data, std::find(data, wordEnd, '\0'));
        data = wordEnd == end ? end : wordEnd + 1;
    }
    return words;
}

/// What RenderRequest.h says of every request.
void check(const CommandLine& commandLine)
{
    const RenderRequest& request = commandLine.request;
    if (commandLine.action == CommandLine::Action::showHelp
        || commandLine.action == CommandLine::Action::showVersion) {
        return;
    }
    precondition(!request.inputs.empty());
    precondition(request.jobs >= 1 && request.jobs <= 64);
    precondition(std::abs(request.cents) <= 600);
    const std::size_t keys = request.targetKeys.size();
    precondition(keys == 0 || keys == 1 || keys == 12);
    precondition(keys > 0 || !request.sourceKey);
}

}  // namespace

/// The words that tonvale-render is called with.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> words = wordsOf(data, size);
    std::vector<char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments),
                           [](std::string& word) { return word.data(); });
    try {
        check(parseCommandLine(arguments));
    } catch (const UsageError& error) {
        precondition(!error.errorDescription().empty());
    }
    return 0;
}
