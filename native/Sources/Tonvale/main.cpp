// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/TonvaleApp.h"

int main(int argumentCount, char* arguments[])
{
    tonvale::TonvaleApp::main(argumentCount, arguments);
}
