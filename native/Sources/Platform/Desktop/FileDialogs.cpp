// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/FileDialogs.h"

#include "Platform/Desktop/AudioNameFilter.h"
#include "Platform/Desktop/ColorScheme.h"
#include "Platform/Desktop/FilePanels.h"
#include "Platform/Desktop/NamedFileIcons.h"
#include "Platform/Desktop/SchemePalette.h"

#include <QAbstractButton>
#include <QChildEvent>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QPixmapCache>
#include <QTreeView>
#include <QWindow>

#include <memory>

namespace tonvale {

namespace {

std::filesystem::path toPath(const QString& name)
{
    return QFile::encodeName(name).toStdString();
}

QString toName(const std::filesystem::path& path)
{
    return QFile::decodeName(path.c_str());
}

/// Without a desktop's theme the icons of standard buttons are from another age.
void takeIconsOff(const QWidget& dialog)
{
    for (auto* const buttons : dialog.findChildren<QDialogButtonBox*>()) {
        for (auto* const button : buttons->buttons()) {
            button->setIcon(QIcon());
        }
    }
}

/// Selects what a user may want to change of a file's name: all but the extension.
void selectBaseName(const QFileDialog& dialog)
{
    auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (name != nullptr) {
        name->setSelection(0, static_cast<int>(QFileInfo(name->text()).completeBaseName().size()));
    }
}

/// Qt's own dialog opens with columns too narrow for sizes, types and dates.
void widenColumns(QFileDialog& dialog)
{
    auto* const files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
    if (files == nullptr) {
        return;  // the desktop's own dialog
    }
    files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    dialog.resize(QSize(760, 480).expandedTo(dialog.sizeHint()));
}

/// Tells the window manager over which window a dialog stands.
void putOver(QWidget& dialog, QWindow& window)
{
    dialog.winId();  // makes the window that the parent is told to
    dialog.windowHandle()->setTransientParent(&window);
}

/// Panels draw icons of their own. The toolkit would keep them, under names that no later panel
/// asks for, and the names even when the icons go; what does not fit leaves nothing.
void keepNoIcons()
{
    QPixmapCache::setCacheLimit(0);
}

struct DialogContext {
    QWindow& window;
    const ColorScheme& scheme;
    std::shared_ptr<NamedFileIcons> icons = std::make_shared<NamedFileIcons>();
};

/// What both panels have in common.
class PanelDialog : public QFileDialog {
public:
    explicit PanelDialog(const DialogContext& context) : window_(context.window)
    {
        setPalette(paletteFor(context.scheme.isDark()));
        setSupportedSchemes({QStringLiteral("file")});
        setOption(QFileDialog::HideNameFilterDetails);
        setIconProvider(context.icons.get());
        widenColumns(*this);
        putOver(*this, window_);
    }

    /// A question and the panel under it close at once, and some window managers then leave no
    /// window with the keyboard.
    int exec() override
    {
        takeIconsOff(*this);  // a panel for saving has other buttons than one for opening
        const int answer = QFileDialog::exec();
        window_.requestActivate();
        return answer;
    }

protected:
    /// The question whether to replace a file is a window of its own and would not take on the
    /// palette.
    void childEvent(QChildEvent* event) override
    {
        auto* const question = qobject_cast<QMessageBox*>(event->child());
        if (event->polished() && question != nullptr) {
            question->setPalette(palette());
            takeIconsOff(*question);
        }
        QFileDialog::childEvent(event);
    }

private:
    QWindow& window_;
};

class FileOpenDialog : public OpenPanel {
public:
    explicit FileOpenDialog(DialogContext context) : context_(context) {}

    std::optional<std::filesystem::path> runModal() override
    {
        PanelDialog dialog(context_);
        dialog.setAcceptMode(QFileDialog::AcceptOpen);
        dialog.setFileMode(QFileDialog::ExistingFile);
        dialog.setNameFilter(audioNameFilter());
        if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
            return std::nullopt;
        }
        return toPath(dialog.selectedFiles().constFirst());
    }

private:
    DialogContext context_;
};

class FileSaveDialog : public SavePanel {
public:
    explicit FileSaveDialog(DialogContext context) : context_(context) {}

    std::optional<std::filesystem::path> runModal() override
    {
        PanelDialog dialog(context_);
        setUp(dialog);
        while (askForName(dialog)) {
            const QString chosen = dialog.selectedFiles().constFirst();
            const QString file = withWavExtension(chosen);
            // The dialog has asked about the name that was typed, not about the completed one.
            if (file == chosen || !QFileInfo::exists(file) || mayReplace(dialog, file)) {
                return toPath(file);
            }
            dialog.selectFile(QFileInfo(file).fileName());
        }
        return std::nullopt;
    }

private:
    void setUp(QFileDialog& dialog) const
    {
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        dialog.setNameFilter(QStringLiteral("WAVE audio (*.wav)"));
        dialog.setWindowTitle(QString::fromStdString(title));
        dialog.setLabelText(QFileDialog::LookIn, QStringLiteral("Save in:"));
        if (!directoryURL.empty()) {
            dialog.setDirectory(toName(directoryURL));
        }
        dialog.selectFile(toName(nameFieldStringValue));
    }

    /// @return whether there is one
    static bool askForName(QFileDialog& dialog)
    {
        // The dialog selects the whole name as it opens.
        QMetaObject::invokeMethod(
            &dialog, [&dialog] { selectBaseName(dialog); }, Qt::QueuedConnection);
        return dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty();
    }

    /// A dialog's own default suffix would spare every name that has a dot in it.
    static QString withWavExtension(const QString& file)
    {
        const QLatin1String extension(".wav");
        return file.endsWith(extension, Qt::CaseInsensitive) ? file : file + extension;
    }

    /// The dialog's own question, in its own words.
    bool mayReplace(QFileDialog& dialog, const QString& file) const
    {
        QMessageBox question(QMessageBox::Warning, dialog.windowTitle(),
                             QStringLiteral("%1 already exists.\nDo you want to replace it?")
                                 .arg(QFileInfo(file).fileName()),
                             QMessageBox::Yes | QMessageBox::No);
        question.setTextFormat(Qt::PlainText);
        question.setDefaultButton(QMessageBox::No);
        question.setPalette(dialog.palette());
        takeIconsOff(question);
        putOver(question, context_.window);
        return question.exec() == QMessageBox::Yes;
    }

    DialogContext context_;
};

}  // namespace

void useFileDialogs(QWindow& window, const ColorScheme& scheme)
{
    keepNoIcons();
    const DialogContext context{.window = window, .scheme = scheme};
    OpenPanel::replaceFactory([context] { return std::make_unique<FileOpenDialog>(context); });
    SavePanel::replaceFactory([context] { return std::make_unique<FileSaveDialog>(context); });
}

}  // namespace tonvale
