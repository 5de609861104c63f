// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/AppArtwork.h"

#include "Support/TemporaryFolder.h"
#include "Tonvale/Shell/ArtworkProvider.h"
#include "Tonvale/Shell/DefaultIcon.h"
#include "Tonvale/TonvaleApp.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>

namespace tonvale {
namespace {

namespace fs = std::filesystem;

QImage square(Qt::GlobalColor color, int side = 64)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

QColor colorOf(const QIcon& icon)
{
    return icon.pixmap(QSize(32, 32), 1.0).toImage().pixelColor(16, 16);
}

/// An installed application and a source tree, both without an icon at first.
class AppArtworkSources : public ::testing::Test {
protected:
    void SetUp() override
    {
        fs::create_directories(resources());
        fs::create_directories(sourceTreeIcon().parent_path());
        QGuiApplication::setWindowIcon(QPixmap::fromImage(square(Qt::blue)));
    }
    void TearDown() override { QGuiApplication::setWindowIcon(QIcon()); }

    [[nodiscard]] fs::path resources() const { return folder_.path() / "share/tonvale"; }
    [[nodiscard]] fs::path sourceTreeIcon() const
    {
        return folder_.path() / "tree/Resources/Tonvale.icns";
    }

    static void store(const fs::path& file, Qt::GlobalColor color)
    {
        ASSERT_TRUE(square(color).save(QString::fromStdString(file.string()), "ICNS"));
    }

    [[nodiscard]] QIcon icon() const
    {
        return AppArtwork::detail::icon(Bundle(folder_.path() / "bin/tonvale"),
                                        folder_.path() / "tree/Sources/Tonvale/TonvaleApp.cpp");
    }

    test::TemporaryFolder folder_;
};

TEST_F(AppArtworkSources, PreferTheApplicationsResource)
{
    store(resources() / "Tonvale.icns", Qt::red);
    store(sourceTreeIcon(), Qt::green);
    EXPECT_EQ(colorOf(icon()), QColor(Qt::red));
}

TEST_F(AppArtworkSources, FallBackToTheSourceTree)
{
    store(sourceTreeIcon(), Qt::green);
    EXPECT_EQ(colorOf(icon()), QColor(Qt::green));
}

TEST_F(AppArtworkSources, PassOverAResourceThatIsNoImage)
{
    fs::create_directory(resources() / "Tonvale.icns");
    store(sourceTreeIcon(), Qt::green);
    EXPECT_EQ(colorOf(icon()), QColor(Qt::green));
}

TEST_F(AppArtworkSources, FallBackToTheCurrentIcon)
{
    EXPECT_EQ(colorOf(icon()), QColor(Qt::blue));
}

TEST_F(AppArtworkSources, AlwaysYieldAnImage)
{
    QGuiApplication::setWindowIcon(QIcon());
    EXPECT_FALSE(icon().isNull());
    EXPECT_EQ(icon().pixmap(QSize(48, 48), 1.0).toImage(),
              defaultIcon().pixmap(QSize(48, 48), 1.0).toImage());
}

TEST_F(AppArtworkSources, AreLookedAtAnewEachTime)
{
    store(sourceTreeIcon(), Qt::green);
    EXPECT_EQ(colorOf(icon()), QColor(Qt::green));
    store(resources() / "Tonvale.icns", Qt::red);
    EXPECT_EQ(colorOf(icon()), QColor(Qt::red));
}

TEST(AppArtwork, IsFoundInTheTreeThatTheProgramWasBuiltFrom)
{
    EXPECT_EQ(TonvaleApp::sourceFile().filename(), "TonvaleApp.cpp");
    EXPECT_TRUE(fs::is_regular_file(TonvaleApp::sourceFile()));
    EXPECT_FALSE(defaultIcon().availableSizes().contains(QSize(512, 512)));
    EXPECT_TRUE(AppArtwork::icon().availableSizes().contains(QSize(512, 512)))
        << "it is the icon that is built in";
}

TEST(AppArtwork, HasTheDrawingThatWasMadeForEachSize)
{
    const QIcon icon = AppArtwork::icon();
    for (const int side : {16, 32, 64, 128, 256, 512}) {
        EXPECT_TRUE(icon.availableSizes().contains(QSize(side, side))) << side;
    }
}

TEST(ArtworkProvider, ServesTheSizeThatIsAskedFor)
{
    ArtworkProvider provider;
    QSize size;
    const QPixmap pixmap = provider.requestPixmap(QStringLiteral("icon"), &size, QSize(84, 84));
    EXPECT_EQ(pixmap.size(), QSize(84, 84));
    EXPECT_EQ(size, QSize(84, 84));
    EXPECT_EQ(provider.requestPixmap(QStringLiteral("icon"), nullptr, QSize()).size(),
              QSize(512, 512));
}

}  // namespace
}  // namespace tonvale
