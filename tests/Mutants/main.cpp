// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// Damages good songs in many ways and goes with each through the reader and the render, with some
// through the model too. Nothing of it may crash, hang, leak or take more than its share.

#include "Mutants/Mutant.h"
#include "Mutants/SongTrials.h"
#include "Mutants/Tally.h"
#include "Mutants/Trial.h"
#include "Support/MusicFixtures.h"
#include "Support/TemporaryFolder.h"

#include <getopt.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <string_view>

namespace {

using namespace tonvale::test;

struct Options {
    std::uint32_t count = 500;  ///< mutants
    std::uint32_t model = 50;   ///< of them
    std::uint32_t seed = 20261121;
    std::uint32_t first = 0;  ///< the index of the first mutant
    std::filesystem::path keep = ".";
};

[[noreturn]] void explain()
{
    std::cerr << "Usage: mutants [--count N] [--model M] [--seed S] [--first INDEX]"
                 " [--keep FOLDER]\n";
    std::exit(2);
}

std::uint32_t numberOf(std::string_view text)
{
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        explain();
    }
    return number;
}

Options parse(int argumentCount, char** arguments)
{
    Options options;
    constexpr std::array<option, 6> names{{{"count", required_argument, nullptr, 'c'},
                                           {"model", required_argument, nullptr, 'm'},
                                           {"seed", required_argument, nullptr, 's'},
                                           {"first", required_argument, nullptr, 'f'},
                                           {"keep", required_argument, nullptr, 'k'},
                                           {nullptr, 0, nullptr, 0}}};
    for (;;) {
        switch (getopt_long(argumentCount, arguments, "", names.data(), nullptr)) {
        case 'c':
            options.count = numberOf(optarg);
            break;
        case 'm':
            options.model = numberOf(optarg);
            break;
        case 's':
            options.seed = numberOf(optarg);
            break;
        case 'f':
            options.first = numberOf(optarg);
            break;
        case 'k':
            options.keep = optarg;
            break;
        case -1:
            return options;
        default:
            explain();
        }
    }
}

/// Runs the trials and counts what becomes of them.
class Run {
public:
    explicit Run(const Options& options)
        : options_(options)
        , sources_(makeMutantSources())
        , choice_(options.seed)
    {
    }

    /// @return whether all of them came to their end, and the undamaged songs to a good one
    bool runAll()
    {
        for (const MutantSource& source : sources_) {
            trySource(source);
        }
        for (std::uint32_t number = 0; number < options_.count; ++number) {
            const std::uint32_t index = options_.first + number;
            const Mutant mutant = makeMutant(sources_, options_.seed, index);
            tryOn(mutant, index, "read and render", readAndRender, songs_);
            if (isForModel(options_.count - number)) {
                tryOn(mutant, index, "model", goThroughModel, models_);
            }
        }
        return failures_ == 0;
    }

    void print() const
    {
        std::cout << "\nRead and rendered:\n";
        songs_.print(std::cout);
        std::cout << "\nThrough the model:\n";
        models_.print(std::cout);
    }

private:
    /// Draws as many as asked for: each of those that are left is as likely as the others.
    [[nodiscard]] bool isForModel(std::uint32_t left)
    {
        if (choice_() % left >= leftForModel_) {
            return false;
        }
        --leftForModel_;
        return true;
    }

    void trySource(const MutantSource& source)
    {
        const TemporaryFolder folder;
        const std::filesystem::path song = folder.path() / source.fileName;
        writeBytes(song, source.bytes);
        const Ending ending = runTrial([&] { return readAndRender(song); }).ending;
        if (ending.outcome != Outcome::rendered) {
            ++failures_;
            std::cout << "FAILED: " << source.fileName << " as it was: " << ending.words
                      << std::endl;
        }
    }

    void tryOn(const Mutant& mutant, std::uint32_t index, const std::string& what,
               Ending (*trial)(const std::filesystem::path&), Tally& tally)
    {
        const TemporaryFolder folder;
        const std::filesystem::path song = folder.path() / mutant.source->fileName;
        writeBytes(song, mutant.bytes);
        const TrialResult result = runTrial([&] { return trial(song); });
        const std::string name = std::to_string(index) + ", " + mutant.source->fileName;
        tally.add(name, mutant, result);
        if (result.ending.outcome == Outcome::unfinished) {
            ++failures_;
            keep(mutant, index);
            std::cout << "FAILED: " << what << ", mutant " << name << ", "
                      << wayNames[static_cast<std::size_t>(mutant.way)] << ": "
                      << result.ending.words << std::endl;
        }
    }

    void keep(const Mutant& mutant, std::uint32_t index) const
    {
        const std::string name = "mutant-" + std::to_string(options_.seed) + "-"
                                 + std::to_string(index) + "-" + mutant.source->fileName;
        writeBytes(options_.keep / name, mutant.bytes);
    }

    Options options_;
    std::vector<MutantSource> sources_;
    std::mt19937 choice_;
    std::uint32_t leftForModel_ = options_.model;
    Tally songs_;
    Tally models_;
    int failures_ = 0;
};

}  // namespace

int main(int argumentCount, char** arguments)
{
    const Options options = parse(argumentCount, arguments);
    std::cout << "seed " << options.seed << ", " << options.count << " mutants, " << options.model
              << " of them through the model too" << std::endl;
    Run run(options);
    const bool isGood = run.runAll();
    run.print();
    return isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}
