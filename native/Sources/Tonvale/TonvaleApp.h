// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Model/AudioTransposeModel.h"
#include "Tonvale/Shell/AppDelegate.h"

#include <filesystem>
#include <memory>

namespace tonvale {

class MainScene;

/// The application: one model for the life of the process, and the window that shows it.
/// @thread CONTROL
class TonvaleApp {
public:
    /// The whole process. It reads no options of its own; the toolkit takes its own.
    [[noreturn]] static void main(int& argumentCount, char** arguments);

    /// Where this type's source file was when the program was built.
    [[nodiscard]] static std::filesystem::path sourceFile();

    TonvaleApp();

    /// The scene: one window, its menus, and the model handed to its views.
    std::unique_ptr<MainScene> body();

private:
    AppDelegate appDelegate_;
    AudioTransposeModel model_;
};

}  // namespace tonvale
