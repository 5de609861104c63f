// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Desktop/ColorScheme.h"

#include <QObject>
#include <QQmlApplicationEngine>

#include <memory>

class QQuickWindow;

namespace tonvale {

class AudioTransposeModel;
class Wakefulness;
struct AboutPanelOptions;

/// The one window with its menu bar and its views, and what these need of the desktop: the colour
/// scheme, the artwork, the file panels, the About panel, and a computer that stays awake.
/// @thread CONTROL
class MainScene : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isDark READ isDark NOTIFY isDarkChanged)

public:
    /// Shows the window. @param model  what the views show; it outlives the scene, none aborts
    explicit MainScene(AudioTransposeModel* model);
    ~MainScene() override;

    [[nodiscard]] QQuickWindow& window() const { return *window_; }
    [[nodiscard]] bool isDark() const noexcept { return scheme_.isDark(); }

    Q_INVOKABLE void showAboutPanel();

signals:
    void isDarkChanged();

private:
    void presentAbout(const AboutPanelOptions& options);

    ColorScheme scheme_;
    QQmlApplicationEngine engine_;
    QQuickWindow* window_ = nullptr;  ///< owned by the engine
    std::unique_ptr<Wakefulness> wakefulness_;
};

}  // namespace tonvale
