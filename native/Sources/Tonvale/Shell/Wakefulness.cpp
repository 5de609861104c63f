// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/Wakefulness.h"

#include "Platform/Desktop/SleepInhibition.h"
#include "Tonvale/Model/AudioTransposeModel.h"

namespace tonvale {

Wakefulness::Wakefulness(const AudioTransposeModel& model)
    : model_(model)
    , inhibition_(SleepInhibition::create())
{
    connect(&model, &AudioTransposeModel::objectDidChange, this, &Wakefulness::follow);
    follow();
}

Wakefulness::~Wakefulness() = default;

void Wakefulness::follow()
{
    inhibition_->setWanted(model_.isPreviewing() || model_.isRendering());
}

}  // namespace tonvale
