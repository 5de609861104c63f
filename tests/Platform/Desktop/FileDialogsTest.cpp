// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/FileDialogs.h"

#include "DialogScript.h"
#include "Platform/Desktop/AudioNameFilter.h"
#include "Platform/Desktop/ColorScheme.h"
#include "Platform/Desktop/FilePanels.h"
#include "Support/MainLoop.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPixmapCache>
#include <QProxyStyle>
#include <QTreeView>
#include <QWindow>

#include <fstream>

namespace tonvale {
namespace {

namespace fs = std::filesystem;
using test::DialogScript;

void createFile(const fs::path& file)
{
    std::ofstream(file) << "something";
}

class FileDialogs : public ::testing::Test {
protected:
    void SetUp() override { useFileDialogs(window_, scheme_); }
    void TearDown() override
    {
        OpenPanel::replaceFactory(nullptr);
        SavePanel::replaceFactory(nullptr);
    }

    [[nodiscard]] std::unique_ptr<SavePanel> savePanel(const std::string& name) const
    {
        auto panel = SavePanel::create();
        panel->title = "Save Transposed Song";
        panel->nameFieldStringValue = name;
        panel->directoryURL = folder_.path();
        return panel;
    }

    /// What the panel answers when this name is typed over the proposed one.
    [[nodiscard]] std::optional<fs::path> saveAs(const QString& name) const
    {
        DialogScript script;
        script.saveAs(name);
        return savePanel("Song.wav")->runModal();
    }

    test::TemporaryFolder folder_;
    QWindow window_;
    ColorScheme scheme_;
};

using OpenPanelDialog = FileDialogs;
using SavePanelDialog = FileDialogs;

TEST_F(OpenPanelDialog, AsksForOneExistingAudioFile)
{
    DialogScript script;
    script.fileDialog([this](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        ASSERT_EQ(dialog.nameFilters().size(), 1);
        EXPECT_EQ(dialog.nameFilters().constFirst(), audioNameFilter());
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(dialog.windowHandle()->transientParent(), &window_);
        dialog.reject();
    });
    EXPECT_EQ(OpenPanel::create()->runModal(), std::nullopt);
}

TEST_F(OpenPanelDialog, LeavesNeitherIconsNorTheirNamesInMemory)
{
    // Once in the cache of the toolkit, an icon leaves its name there for ever.
    bool isKept = true;
    DialogScript script;
    script.fileDialog([&isKept](QFileDialog& dialog) {
        isKept = QPixmapCache::insert(QStringLiteral("icon of a file"), QPixmap(16, 16));
        dialog.reject();
    });
    EXPECT_EQ(OpenPanel::create()->runModal(), std::nullopt);
    EXPECT_FALSE(isKept);
}

TEST_F(OpenPanelDialog, HasColumnsAsWideAsSizesTypesAndDates)
{
    DialogScript script;
    script.fileDialog([](QFileDialog& dialog) {
        const auto* const files = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
        ASSERT_NE(files, nullptr);
        EXPECT_EQ(dialog.size(), QSize(760, 480).expandedTo(dialog.sizeHint()));
        EXPECT_GE(files->columnWidth(0), 200) << "no room for names";
        for (int column = 1; column < files->header()->count(); ++column) {
            EXPECT_EQ(files->header()->sectionResizeMode(column), QHeaderView::ResizeToContents);
        }
        dialog.reject();
    });
    EXPECT_EQ(OpenPanel::create()->runModal(), std::nullopt);
}

TEST_F(OpenPanelDialog, AnswersTheFileWithEverySignOfItsName)
{
    const fs::path file = folder_.path() / "50% F# ? 'Grün' & <b>.mp3";
    createFile(file);
    DialogScript script;
    script.saveAs(QString::fromStdString(file.string()));
    EXPECT_EQ(OpenPanel::create()->runModal(), file);
}

TEST_F(SavePanelDialog, ProposesNameAndFolderUnderItsTitle)
{
    DialogScript script;
    script.fileDialog([this](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QLatin1String("Save Transposed Song"));
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog.nameFilters(), QStringList{QStringLiteral("WAVE audio (*.wav)")});
        EXPECT_EQ(test::proposedName(dialog), QLatin1String("Song.final - Key of F#.wav"));
        EXPECT_EQ(dialog.directory().absolutePath().toStdString(), folder_.path().string());
        EXPECT_FALSE(dialog.testOption(QFileDialog::ReadOnly)) << "folders cannot be created";
        EXPECT_FALSE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
        EXPECT_EQ(dialog.windowHandle()->transientParent(), &window_);
        dialog.reject();
    });
    EXPECT_EQ(savePanel("Song.final - Key of F#.wav")->runModal(), std::nullopt);
}

TEST_F(SavePanelDialog, AnswersTheProposedNameWithEverySignOfIt)
{
    const std::string name = "50% ? 'Grün' & <b> - Key of F#.wav";
    DialogScript script;
    script.fileDialog([](QFileDialog& dialog) { QMetaObject::invokeMethod(&dialog, "accept"); });
    EXPECT_EQ(savePanel(name)->runModal(), folder_.path() / name);
}

TEST_F(SavePanelDialog, SelectsTheNameWithoutItsExtension)
{
    DialogScript script;
    script.fileDialog([](QFileDialog& dialog) {
        const auto& name = test::nameField(dialog);
        EXPECT_TRUE(
            test::spinUntil([&] { return name.selectedText() == QLatin1String("take.2"); }));
        dialog.reject();
    });
    EXPECT_EQ(savePanel("take.2.wav")->runModal(), std::nullopt);
}

TEST_F(SavePanelDialog, AsksWhereToSave)
{
    DialogScript script;
    script.fileDialog([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("lookInLabel"))->text(),
                  QLatin1String("Save in:"));
        dialog.reject();
    });
    EXPECT_EQ(savePanel("Song.wav")->runModal(), std::nullopt);
}

/// Buttons of dialogs get icons, as on most desktops; the platform without a screen has none.
class StyleWithIcons {
public:
    StyleWithIcons() { QApplication::setStyle(new Style(name_)); }
    ~StyleWithIcons() { QApplication::setStyle(name_); }
    StyleWithIcons(const StyleWithIcons&) = delete;
    StyleWithIcons& operator=(const StyleWithIcons&) = delete;

private:
    class Style : public QProxyStyle {
    public:
        using QProxyStyle::QProxyStyle;
        int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                      QStyleHintReturn* answer) const override
        {
            return hint == SH_DialogButtonBox_ButtonsHaveIcons
                       ? 1
                       : QProxyStyle::styleHint(hint, option, widget, answer);
        }
    };

    QString name_ = QApplication::style()->name();
};

TEST_F(FileDialogs, HaveButtonsWithoutIcons)
{
    const StyleWithIcons style;
    createFile(folder_.path() / "take.wav");
    createFile(folder_.path() / "take.one.wav");
    DialogScript script;
    const auto expectNoIcons = [](const QWidget& dialog) {
        const auto* const buttons = dialog.findChild<QDialogButtonBox*>();
        ASSERT_NE(buttons, nullptr);
        EXPECT_FALSE(buttons->buttons().isEmpty());
        for (const auto* const button : buttons->buttons()) {
            EXPECT_TRUE(button->icon().isNull()) << button->text().toStdString();
        }
    };
    const auto answerNo = [expectNoIcons](QMessageBox& question) {
        expectNoIcons(question);
        question.button(QMessageBox::No)->click();
    };
    script.fileDialog(expectNoIcons)
        .saveAs(QStringLiteral("take.wav"))
        .question(answerNo)
        .saveAs(QStringLiteral("take.one"))
        .question(answerNo)
        .cancel();
    EXPECT_EQ(savePanel("Song.wav")->runModal(), std::nullopt);

    script.fileDialog([expectNoIcons](QFileDialog& dialog) {
        expectNoIcons(dialog);
        dialog.reject();
    });
    EXPECT_EQ(OpenPanel::create()->runModal(), std::nullopt);
}

TEST_F(SavePanelDialog, AnswersNothingWhenCancelled)
{
    DialogScript script;
    script.cancel();
    EXPECT_EQ(savePanel("Song.wav")->runModal(), std::nullopt);
}

TEST_F(SavePanelDialog, AddsTheExtensionOnce)
{
    EXPECT_EQ(saveAs(QStringLiteral("take")), folder_.path() / "take.wav");
    EXPECT_EQ(saveAs(QStringLiteral("take.wav")), folder_.path() / "take.wav");
    EXPECT_EQ(saveAs(QStringLiteral("take.WAV")), folder_.path() / "take.WAV");
    EXPECT_EQ(saveAs(QStringLiteral("take.mp3")), folder_.path() / "take.mp3.wav");
    EXPECT_EQ(saveAs(QStringLiteral("take.final - Key of A")),
              folder_.path() / "take.final - Key of A.wav");
}

TEST_F(SavePanelDialog, SavesWhereATypedPathSays)
{
    const auto elsewhere = folder_.path() / "else where";
    fs::create_directory(elsewhere);
    EXPECT_EQ(saveAs(QString::fromStdString((elsewhere / "take").string())),
              elsewhere / "take.wav");
}

TEST_F(SavePanelDialog, AsksBeforeAnExistingFileIsReplaced)
{
    createFile(folder_.path() / "take.wav");
    DialogScript script;
    script.saveAs(QStringLiteral("take.wav")).answer(QMessageBox::Yes);
    EXPECT_EQ(savePanel("Song.wav")->runModal(), folder_.path() / "take.wav");
}

TEST_F(SavePanelDialog, StaysOpenWhenAnExistingFileIsToBeKept)
{
    createFile(folder_.path() / "take.wav");
    DialogScript script;
    script.saveAs(QStringLiteral("take.wav"))
        .answer(QMessageBox::No)
        .fileDialog([](QFileDialog& dialog) {
            EXPECT_EQ(test::proposedName(dialog), QLatin1String("take.wav"));
            dialog.reject();
        });
    EXPECT_EQ(savePanel("Song.wav")->runModal(), std::nullopt);
}

TEST_F(SavePanelDialog, AsksInItsOwnColors)
{
    createFile(folder_.path() / "take.wav");
    DialogScript script;
    script.fileDialog([](QFileDialog& dialog) { dialog.setPalette(QPalette(Qt::darkBlue)); })
        .saveAs(QStringLiteral("take.wav"))
        .question([](QMessageBox& question) {
            EXPECT_EQ(question.palette().color(QPalette::Button), QColor(Qt::darkBlue));
            question.button(QMessageBox::No)->click();
        })
        .cancel();
    EXPECT_EQ(savePanel("Song.wav")->runModal(), std::nullopt);
}

TEST_F(SavePanelDialog, AsksAboutTheCompletedName)
{
    createFile(folder_.path() / "take.one.wav");
    DialogScript script;
    script.saveAs(QStringLiteral("take.one")).answer(QMessageBox::Yes);
    EXPECT_EQ(savePanel("Song.wav")->runModal(), folder_.path() / "take.one.wav");
}

TEST_F(SavePanelDialog, AsksForAnotherNameWhenTheCompletedOneIsToBeKept)
{
    createFile(folder_.path() / "take.one.wav");
    DialogScript script;
    script.saveAs(QStringLiteral("take.one"))
        .answer(QMessageBox::No)
        .fileDialog([](QFileDialog& dialog) {
            EXPECT_EQ(test::proposedName(dialog), QLatin1String("take.one.wav"));
            dialog.reject();
        });
    EXPECT_EQ(savePanel("Song.wav")->runModal(), std::nullopt);
}

}  // namespace
}  // namespace tonvale
