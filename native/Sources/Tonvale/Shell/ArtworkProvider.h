// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QQuickImageProvider>

namespace tonvale {

/// Serves "image://artwork/icon" to the views: the application's icon, looked for anew each time.
/// It is a square, no larger than the longer side that is asked for.
/// @thread CONTROL
class ArtworkProvider : public QQuickImageProvider {
public:
    ArtworkProvider();

    QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;
};

}  // namespace tonvale
