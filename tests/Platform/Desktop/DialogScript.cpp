// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "DialogScript.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

#include <chrono>
#include <utility>

namespace tonvale::test {

QLineEdit& nameField(const QFileDialog& dialog)
{
    return *dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
}

DialogScript::DialogScript() : deadline_(std::chrono::seconds(20))
{
    lookSoon();
}

DialogScript::~DialogScript()
{
    EXPECT_TRUE(steps_.empty()) << "a dialog did not come";
}

DialogScript& DialogScript::fileDialog(std::function<void(QFileDialog&)> act)
{
    steps_.push_back([act = std::move(act)](QWidget& widget) {
        auto* dialog = qobject_cast<QFileDialog*>(&widget);
        if (dialog != nullptr) {
            act(*dialog);
        }
        return dialog != nullptr;
    });
    return *this;
}

DialogScript& DialogScript::saveAs(const QString& name)
{
    return fileDialog([name](QFileDialog& dialog) {
        nameField(dialog).setText(name);
        // As a press on the button does; the function itself is not public.
        QMetaObject::invokeMethod(&dialog, "accept");
    });
}

DialogScript& DialogScript::question(std::function<void(QMessageBox&)> act)
{
    steps_.push_back([act = std::move(act)](QWidget& widget) {
        auto* question = qobject_cast<QMessageBox*>(&widget);
        if (question != nullptr) {
            act(*question);
        }
        return question != nullptr;
    });
    return *this;
}

DialogScript& DialogScript::answer(QMessageBox::StandardButton button)
{
    return question([button](QMessageBox& question) {
        EXPECT_TRUE(question.text().endsWith(
            QLatin1String(" already exists.\nDo you want to replace it?")));
        question.button(button)->click();
    });
}

DialogScript& DialogScript::cancel()
{
    return fileDialog([](QFileDialog& dialog) { dialog.reject(); });
}

void DialogScript::lookSoon()
{
    // Not a repeating timer: that would rest while a dialog opens another one.
    QTimer::singleShot(std::chrono::milliseconds(1), this, [this] { look(); });
}

void DialogScript::look()
{
    lookSoon();
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || !dialog->isVisible()) {
        return;
    }
    if (deadline_.hasExpired()) {
        ADD_FAILURE() << "a dialog waits that is not the next one of the script";
        dialog->reject();
        return;
    }
    // A dialog that was covered by another one is seen before that one's event loop has ended.
    if (steps_.empty() || std::exchange(seen_, dialog) != dialog) {
        return;
    }
    seen_ = nullptr;
    const Step step = steps_.front();
    steps_.pop_front();  // first, for the step may open the next dialog
    if (!step(*dialog)) {
        steps_.push_front(step);
    }
}

QString proposedName(const QFileDialog& dialog)
{
    return nameField(dialog).text();
}

}  // namespace tonvale::test
