// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/StandardAboutPanel.h"

#include "Platform/Foundation/Precondition.h"

#include <utility>

namespace tonvale::StandardAboutPanel {

namespace {

std::function<void(const AboutPanelOptions&)> present;

}  // namespace

void orderFront(const AboutPanelOptions& options)
{
    precondition(present != nullptr);
    present(options);
}

void replacePresenter(std::function<void(const AboutPanelOptions&)> presenter)
{
    present = std::move(presenter);
}

}  // namespace tonvale::StandardAboutPanel
