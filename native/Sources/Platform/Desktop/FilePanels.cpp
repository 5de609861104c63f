// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/FilePanels.h"

#include "Platform/Foundation/Precondition.h"

#include <utility>

namespace tonvale {

namespace {

std::function<std::unique_ptr<OpenPanel>()> openPanelFactory;
std::function<std::unique_ptr<SavePanel>()> savePanelFactory;

}  // namespace

std::unique_ptr<OpenPanel> OpenPanel::create()
{
    precondition(openPanelFactory != nullptr);
    return openPanelFactory();
}

void OpenPanel::replaceFactory(std::function<std::unique_ptr<OpenPanel>()> factory)
{
    openPanelFactory = std::move(factory);
}

std::unique_ptr<SavePanel> SavePanel::create()
{
    precondition(savePanelFactory != nullptr);
    return savePanelFactory();
}

void SavePanel::replaceFactory(std::function<std::unique_ptr<SavePanel>()> factory)
{
    savePanelFactory = std::move(factory);
}

}  // namespace tonvale
