// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/RenderReport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

namespace tonvale {
namespace {

class Report : public ::testing::Test {
protected:
    std::ostringstream output;
    std::ostringstream errors;
};

TEST_F(Report, TellsEachResultAsItComesAndSumsUp)
{
    RenderReport report(output, errors, {.results = 3});
    report.say("Listening\n");
    report.succeeded(2, "Saved c\n");
    report.failed({1}, "No b.");
    report.succeeded(0, "Saved a\n");
    EXPECT_TRUE(report.hasFailures());
    report.sumUp();
    EXPECT_EQ(output.str(), "Listening\nSaved c\nSaved a\n2 saved, 1 failed\n");
    EXPECT_EQ(errors.str(), "tonvale-render: No b.\n");
}

TEST_F(Report, SumsUpOneResultNot)
{
    RenderReport report(output, errors, {});
    report.succeeded(0, "Saved a\n");
    report.sumUp();
    EXPECT_EQ(output.str(), "Saved a\n");
    EXPECT_FALSE(report.hasFailures());
}

TEST_F(Report, CountsAllResultsThatFailOfTheSameAndTellsThemOnce)
{
    RenderReport report(output, errors, {.results = 12, .success = "done"});
    report.failed({0, 1, 2, 5}, "Nothing heard.");
    report.sumUp();
    EXPECT_EQ(output.str(), "0 done, 4 failed\n");
    EXPECT_EQ(errors.str(), "tonvale-render: Nothing heard.\n");
}

TEST_F(Report, KeepsTheOrderOfTheResultsWhereAskedTo)
{
    RenderReport report(output, errors, {.results = 4, .keepsOrder = true});
    report.succeeded(3, "d\n");
    report.succeeded(1, "b\n");
    EXPECT_EQ(output.str(), "");
    report.succeeded(0, "a\n");
    EXPECT_EQ(output.str(), "a\nb\n");
    report.failed({2}, "No c.");
    EXPECT_EQ(output.str(), "a\nb\nd\n");
}

TEST_F(Report, TellsOnlyFailuresWhereItIsToBeQuiet)
{
    RenderReport report(output, errors, {.results = 2, .tellsSuccess = false});
    report.say("Listening\n");
    report.succeeded(0, "Saved a\n");
    report.failed({1}, "No b.");
    EXPECT_EQ(output.str(), "");
    EXPECT_EQ(errors.str(), "tonvale-render: No b.\n");
}

TEST_F(Report, DrawsOneBarForAllResultsAndWritesAboveIt)
{
    {
        RenderReport report(output, errors, {.results = 4, .drawsBar = true});
        report.progress(0, 0.5);
        EXPECT_TRUE(errors.str().starts_with("\r\x1b[K[###-----"));
        EXPECT_NE(errors.str().find("]  12 %"), std::string::npos);
        EXPECT_TRUE(errors.str().ends_with("  0 of 4"));
        report.succeeded(0, "Saved a\n");  // the bar was gone meanwhile, and is back at once
        EXPECT_NE(errors.str().find("  0 of 4\r\x1b[K\r\x1b[K[#######--"), std::string::npos);
        EXPECT_TRUE(errors.str().ends_with("  1 of 4"));
        report.failed({1}, "No b.");
        EXPECT_NE(errors.str().find("  1 of 4\r\x1b[Ktonvale-render: No b.\n\r\x1b[K[###"),
                  std::string::npos);
        EXPECT_TRUE(errors.str().ends_with("  2 of 4"));
        report.clear();
        EXPECT_TRUE(errors.str().ends_with("\r\x1b[K"));
    }
    EXPECT_EQ(output.str(), "Saved a\n");
}

TEST_F(Report, DrawsNoBarWhenNothingIsToCome)
{
    RenderReport report(output, errors, {.drawsBar = true});
    report.progress(0, 1);
    report.succeeded(0, "Saved a\n");
    EXPECT_TRUE(errors.str().ends_with("\r\x1b[K"));
}

TEST_F(Report, DrawsNothingElsewhereThanOnATerminal)
{
    RenderReport report(output, errors, {.results = 4});
    report.progress(0, 0.5);
    report.succeeded(0, "");
    report.clear();
    EXPECT_EQ(errors.str(), "");
}

TEST_F(Report, DrawsThePlainBarForOneResult)
{
    RenderReport report(output, errors, {.drawsBar = true});
    report.progress(0, 0.25);
    EXPECT_NE(errors.str().find("]  25 %"), std::string::npos);
    EXPECT_TRUE(errors.str().ends_with(" left"));
}

}  // namespace
}  // namespace tonvale
