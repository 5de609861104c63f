// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/LocalizedError.h"
#include "Platform/Foundation/PlatformError.h"
#include "TonvaleRender/CommandLine.h"
#include "TonvaleRender/DetectCommand.h"
#include "TonvaleRender/HelpText.h"
#include "TonvaleRender/RenderCommand.h"
#include "TonvaleRender/UsageError.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <span>

namespace {

enum ExitStatus : int { success = 0, failure = 1, wrongUse = 2 };

/// @return whether all went well
bool run(std::span<char* const> arguments)
{
    const tonvale::CommandLine commandLine = tonvale::parseCommandLine(arguments);
    switch (commandLine.action) {
    case tonvale::CommandLine::Action::showHelp:
        std::cout << tonvale::helpText();
        break;
    case tonvale::CommandLine::Action::showVersion:
        std::cout << tonvale::versionText();
        break;
    case tonvale::CommandLine::Action::detect:
        return tonvale::runDetection(commandLine.request);
    case tonvale::CommandLine::Action::render:
        return tonvale::runRender(commandLine.request);
    }
    return true;
}

}  // namespace

int main(int argumentCount, char* arguments[])
{
    // A full file-size quota and a closed terminal are errors to report, not reasons to die
    // half-way through a file.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const bool isDone = run(std::span(arguments, static_cast<std::size_t>(argumentCount)));
        if (!std::cout.flush()) {
            throw tonvale::PlatformError("What there was to say could not be written.");
        }
        return isDone ? success : failure;
    } catch (const tonvale::UsageError& error) {
        std::cerr << "tonvale-render: " << error.errorDescription()
                  << " See tonvale-render --help.\n";
        return wrongUse;
    } catch (...) {
        std::cerr << "tonvale-render: " << tonvale::localizedDescription(std::current_exception())
                  << '\n';
        return failure;
    }
}
