// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/CommandLine.h"

#include "Tonvale/Keys/TranspositionInterval.h"
#include "TonvaleRender/KeyParser.h"
#include "TonvaleRender/TerminalText.h"
#include "TonvaleRender/UsageError.h"

#include <getopt.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

namespace tonvale {

namespace {

constexpr int mostSemitones = 6;
constexpr int mostCents = 600;
constexpr int mostJobs = 64;  // each holds the sound of a few seconds and its threads

enum OptionCode : int {
    fromOption = 256,
    toOption,
    semitonesOption,
    centsOption,
    jobsOption,
    forceOption,
    quietOption,
    detectOption,
    helpOption,
    versionOption,
};

constexpr std::array<option, 12> longOptions{{
    {"from", required_argument, nullptr, fromOption},
    {"to", required_argument, nullptr, toOption},
    {"detect", no_argument, nullptr, detectOption},
    {"semitones", required_argument, nullptr, semitonesOption},
    {"cents", required_argument, nullptr, centsOption},
    {"jobs", required_argument, nullptr, jobsOption},
    {"output", required_argument, nullptr, 'o'},
    {"force", no_argument, nullptr, forceOption},
    {"quiet", no_argument, nullptr, quietOption},
    {"help", no_argument, nullptr, helpOption},
    {"version", no_argument, nullptr, versionOption},
    {nullptr, 0, nullptr, 0},
}};

/// The options as given, not yet checked against each other.
struct GivenOptions {
    std::optional<std::string> from, to, semitones, cents, jobs, output;
    bool detect = false;
    bool force = false;
    bool quiet = false;
    std::optional<CommandLine::Action> information;
    std::vector<std::string> inputs;
};

void set(std::optional<std::string>& value, std::string_view name)
{
    if (value) {
        throw UsageError(std::string(name) + " is given twice.");
    }
    value = optarg;
}

/// The option that getopt just complained about, as the user wrote it.
std::string offendingOption(const std::vector<char*>& words)
{
    const bool isLetter = optopt > 0 && optopt < 128;
    return isLetter ? std::string("-") + static_cast<char>(optopt)
                    : quotedText(words[static_cast<std::size_t>(optind - 1)]);
}

[[noreturn]] void refuseOption(const std::vector<char*>& words)
{
    const bool isKnown = optopt >= fromOption;  // then it was given a value that it does not take
    throw UsageError(offendingOption(words)
                     + (isKnown ? " is an option that takes no value." : " is not an option."));
}

void take(GivenOptions& given, int code, const std::vector<char*>& words)
{
    switch (code) {
    case fromOption:
        return set(given.from, "--from");
    case toOption:
        return set(given.to, "--to");
    case semitonesOption:
        return set(given.semitones, "--semitones");
    case centsOption:
        return set(given.cents, "--cents");
    case jobsOption:
        return set(given.jobs, "--jobs");
    case 'o':
        return set(given.output, "--output");
    case detectOption:
        given.detect = true;
        return;
    case forceOption:
        given.force = true;
        return;
    case quietOption:
        given.quiet = true;
        return;
    case helpOption:
        given.information = CommandLine::Action::showHelp;
        return;
    case versionOption:
        given.information = given.information.value_or(CommandLine::Action::showVersion);
        return;
    case ':':
        throw UsageError(offendingOption(words) + " needs a value.");
    default:
        refuseOption(words);
    }
}

GivenOptions readOptions(std::span<char* const> arguments)
{
    GivenOptions given;
    const int count = static_cast<int>(arguments.size());
    // getopt may reorder what it is given, so it works on a copy of the pointers.
    std::vector<char*> words(arguments.begin(), arguments.end());
    words.push_back(nullptr);
    opterr = 0;
    optind = 0;  // glibc: start anew, whatever was parsed before
    for (;;) {
        const int code = getopt_long(count, words.data(), ":o:", longOptions.data(), nullptr);
        if (code == -1) {
            break;
        }
        take(given, code, words);
    }
    for (int index = optind; index < count; ++index) {
        given.inputs.emplace_back(words[static_cast<std::size_t>(index)]);
    }
    return given;
}

struct Range {
    int least, most;
};

int parseNumber(std::string_view text, Range range, const std::string& name)
{
    std::string_view digits = text;
    if (digits.starts_with('+') && !digits.starts_with("+-")) {
        digits.remove_prefix(1);
    }
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number < range.least
        || number > range.most) {
        throw UsageError(name + " takes a whole number from " + std::to_string(range.least) + " to "
                         + std::to_string(range.most) + ", not " + quotedText(text) + ".");
    }
    return number;
}

/// Exactly one way to say how far, and all of it.
void checkShift(const GivenOptions& given)
{
    const bool byKeys = given.from || given.to || given.detect;
    const int ways = (byKeys ? 1 : 0) + (given.semitones ? 1 : 0) + (given.cents ? 1 : 0);
    if (ways == 0) {
        throw UsageError("How far? Give --from and --to, or --semitones, or --cents.");
    }
    if (ways > 1) {
        throw UsageError("Give only one of keys, --semitones and --cents.");
    }
    if (byKeys && !given.to) {
        throw UsageError("Which key should it be in? Add --to.");
    }
    if (byKeys && given.from.has_value() == given.detect) {
        throw UsageError(given.detect ? "Give only one of --from and --detect."
                                      : "Which key is it in? Add --from, or --detect.");
    }
}

/// "all" stands for the twelve keys of a mode.
std::vector<MusicKey> parseTargets(const std::string& text, std::optional<MusicKey> source)
{
    if (text != "all") {
        return {parseKey(text)};
    }
    // Of a song that is still to be heard the mode is not known; the major keys serve as well,
    // for the shift and the name of a file tell nothing but the note.
    const bool isMinor = source && source->isMinor();
    std::vector<MusicKey> keys;
    std::ranges::copy_if(MusicKey::allCases(), std::back_inserter(keys),
                         [&](MusicKey key) { return key.isMinor() == isMinor; });
    return keys;
}

void setShift(RenderRequest& request, const GivenOptions& given)
{
    checkShift(given);
    if (given.to) {
        if (given.from) {
            request.sourceKey = parseKey(*given.from);
        }
        request.targetKeys = parseTargets(*given.to, request.sourceKey);
    } else if (given.semitones) {
        request.countsSemitones = true;
        request.cents = centsForSemitones(
            parseNumber(*given.semitones, {-mostSemitones, mostSemitones}, "--semitones"));
    } else {
        request.cents = parseNumber(*given.cents, {-mostCents, mostCents}, "--cents");
    }
}

unsigned jobsFor(const GivenOptions& given)
{
    if (given.jobs) {
        return static_cast<unsigned>(parseNumber(*given.jobs, {1, mostJobs}, "--jobs"));
    }
    // The threads that each render keeps for itself wait for each other most of the time: as many
    // renders as processors use all of them, and more would only take memory.
    return std::clamp(std::thread::hardware_concurrency(), 1U, unsigned{mostJobs});
}

/// Options pasted from a text may have lost their two dashes to a long one.
void checkInputs(const std::vector<std::string>& inputs)
{
    const auto beginsWithLongDash = [](const std::string& word) {
        return word.starts_with("\u2013") || word.starts_with("\u2014");
    };
    if (std::ranges::any_of(inputs, beginsWithLongDash)) {
        throw UsageError("An option here begins with a long dash; type two short ones: --.");
    }
    if (inputs.empty()) {
        throw UsageError("Which song? Name one audio file.");
    }
}

/// --detect alone only listens, so there is nothing to shift or to save.
bool onlyDetects(const GivenOptions& given)
{
    return given.detect && !given.from && !given.to && !given.semitones && !given.cents
           && !given.output;
}

}  // namespace

CommandLine parseCommandLine(std::span<char* const> arguments)
{
    const GivenOptions given = readOptions(arguments);
    CommandLine commandLine;
    if (given.information) {
        commandLine.action = *given.information;
        return commandLine;
    }
    checkInputs(given.inputs);
    RenderRequest& request = commandLine.request;
    request.inputs.assign(given.inputs.begin(), given.inputs.end());
    if (given.output) {
        request.output = *given.output;
    }
    request.jobs = jobsFor(given);
    request.replacesOutput = given.force;
    request.isQuiet = given.quiet;
    if (onlyDetects(given)) {
        commandLine.action = CommandLine::Action::detect;
    } else {
        setShift(request, given);
    }
    return commandLine;
}

}  // namespace tonvale
