// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/SleepInhibition.h"

#include "Platform/Foundation/Precondition.h"

#include <utility>

namespace tonvale {

namespace {

std::function<std::unique_ptr<SleepInhibition>()> sleepInhibitionFactory;

}  // namespace

std::unique_ptr<SleepInhibition> SleepInhibition::create()
{
    precondition(sleepInhibitionFactory != nullptr);
    return sleepInhibitionFactory();
}

void SleepInhibition::replaceFactory(std::function<std::unique_ptr<SleepInhibition>()> factory)
{
    sleepInhibitionFactory = std::move(factory);
}

}  // namespace tonvale
