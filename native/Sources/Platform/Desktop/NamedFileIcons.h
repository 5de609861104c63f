// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QFileIconProvider>

namespace tonvale {

/// Icons and types of files as far as their names tell them. The toolkit's own provider opens
/// every file that a panel passes, and reads in those whose names leave it in doubt.
/// @thread ANY: a panel has a thread that looks at files
class NamedFileIcons : public QFileIconProvider {
public:
    using QFileIconProvider::icon;
    [[nodiscard]] QIcon icon(const QFileInfo& file) const override;
    [[nodiscard]] QString type(const QFileInfo& file) const override;
};

}  // namespace tonvale
