// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/AboutPanel.h"

#include "Platform/Desktop/StandardAboutPanel.h"

#include <gtest/gtest.h>

#include <vector>

namespace tonvale {
namespace {

TEST(AboutPanel, ShowsIconNameVersionAndOneLineOfCredits)
{
    std::vector<AboutPanelOptions> shown;
    StandardAboutPanel::replacePresenter(
        [&shown](const AboutPanelOptions& options) { shown.push_back(options); });
    AboutPanel::show();
    StandardAboutPanel::replacePresenter(nullptr);

    ASSERT_EQ(shown.size(), 1U);
    EXPECT_FALSE(shown[0].applicationIcon.isNull());
    EXPECT_EQ(shown[0].applicationName, QLatin1String("Tonvale"));
    EXPECT_EQ(shown[0].applicationVersion, QLatin1String("1.0"));
    EXPECT_EQ(shown[0].credits, QLatin1String("Author - The Tonvale Authors"));
}

}  // namespace
}  // namespace tonvale
