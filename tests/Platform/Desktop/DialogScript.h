// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDeadlineTimer>
#include <QMessageBox>
#include <QObject>

#include <deque>
#include <functional>

class QDialog;
class QFileDialog;
class QLineEdit;
class QWidget;

namespace tonvale::test {

/// What a user does to the dialogs that come up while a panel runs, one after the other. Ends with
/// a failure when a dialog of the script does not come, or one comes that is not in it.
class DialogScript : public QObject {
public:
    DialogScript();
    ~DialogScript() override;

    /// Does `act` to a file dialog.
    DialogScript& fileDialog(std::function<void(QFileDialog&)> act);
    /// Types `name` over the proposed one and accepts.
    DialogScript& saveAs(const QString& name);
    /// Does `act` to a question.
    DialogScript& question(std::function<void(QMessageBox&)> act);
    /// Answers the question whether an existing file is to be replaced.
    DialogScript& answer(QMessageBox::StandardButton button);
    DialogScript& cancel();

private:
    /// @return whether the dialog is the one it waits for
    using Step = std::function<bool(QWidget&)>;

    void lookSoon();
    void look();

    std::deque<Step> steps_;
    QDialog* seen_ = nullptr;  ///< at the last look; only compared
    QDeadlineTimer deadline_;
};

[[nodiscard]] QLineEdit& nameField(const QFileDialog& dialog);

/// The text in the dialog's name field.
[[nodiscard]] QString proposedName(const QFileDialog& dialog);

}  // namespace tonvale::test
