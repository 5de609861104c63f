// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Model/AudioTransposeModel.h"

#include "Platform/Desktop/FileLocation.h"
#include "Platform/Desktop/FilePanels.h"
#include "Platform/Desktop/ItemProvider.h"
#include "Platform/Foundation/ContentType.h"
#include "Platform/Foundation/FileName.h"
#include "Platform/Foundation/LocalizedError.h"
#include "Platform/Foundation/MainThreadCall.h"
#include "Platform/Foundation/Timer.h"
#include "Tonvale/Keys/TranspositionInterval.h"

#include <QFile>
#include <QPointer>

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

namespace tonvale {

namespace {

QString waitingFileName()
{
    return QStringLiteral("Waiting for audio");
}

QString waitingFileDetail()
{
    return QStringLiteral("MP3, WAV, M4A, AIFF, and other browser-readable formats");
}

/// A file's name as text, for reading only.
QString displayed(const std::string& fileName)
{
    return QFile::decodeName(fileName.c_str());
}

QString detailOf(const std::filesystem::path& url)
{
    const std::string extension = FileName::pathExtension(url);
    return extension.empty() ? QStringLiteral("Audio file")
                             : displayed(extension).toUpper() + QStringLiteral(" audio file");
}

bool hasAudioExtension(const std::filesystem::path& url)
{
    static constexpr std::array extensions{QLatin1StringView("mp3"),  QLatin1StringView("m4a"),
                                           QLatin1StringView("wav"),  QLatin1StringView("aif"),
                                           QLatin1StringView("aiff"), QLatin1StringView("caf")};
    const QString extension = displayed(FileName::pathExtension(url)).toLower();
    return std::ranges::find(extensions, extension) != extensions.end();
}

QString textOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), std::ssize(text));
}

std::optional<std::filesystem::path> locationOf(const ItemProvider::Item& item)
{
    if (const QUrl* const url = std::get_if<QUrl>(&item)) {
        return fileLocation(*url);
    }
    if (const QByteArray* const written = std::get_if<QByteArray>(&item)) {
        return fileLocation(*written);
    }
    return std::nullopt;
}

}  // namespace

AudioTransposeModel::AudioTransposeModel()
    : fileName_(waitingFileName())
    , fileDetail_(waitingFileDetail())
{
}

AudioTransposeModel::~AudioTransposeModel() = default;

QString AudioTransposeModel::fileStatus() const
{
    return audioURL_ ? QStringLiteral("File loaded") : QStringLiteral("No file selected");
}

QString AudioTransposeModel::convertButtonTitle() const
{
    if (isExporting_) {
        return QStringLiteral("Rendering...");
    }
    if (!audioURL_) {
        return QStringLiteral("Convert");
    }
    return QStringLiteral("Convert to ") + textOf(targetKey_.fileNameComponent());
}

void AudioTransposeModel::chooseFile()
{
    if (const auto url = OpenPanel::create()->runModal()) {
        load(*url);
    }
}

bool AudioTransposeModel::handleDroppedURLs(const QList<QUrl>& urls)
{
    std::vector<std::shared_ptr<ItemProvider>> providers;
    for (const QUrl& url : urls) {
        providers.push_back(std::make_shared<URLItemProvider>(url));
    }
    return handleDrop(providers);
}

bool AudioTransposeModel::handleDrop(const std::vector<std::shared_ptr<ItemProvider>>& providers)
{
    const auto provider = std::ranges::find_if(providers, [](const auto& candidate) {
        return candidate->hasItemConformingToTypeIdentifier(fileURLTypeIdentifier);
    });
    if (provider == providers.end()) {
        return false;
    }
    const auto dropped = std::make_shared<std::filesystem::path>();
    MainThreadCall loading([dropped, model = QPointer<AudioTransposeModel>(this)] {
        if (model) {
            model->load(*dropped);
        }
    });
    (*provider)->loadItem(fileURLTypeIdentifier,
                          [dropped, loading](const ItemProvider::Item& item) mutable {
                              if (auto url = locationOf(item)) {
                                  *dropped = *std::move(url);
                                  std::move(loading).post();
                              }
                          });
    return true;
}

bool AudioTransposeModel::isAudioFile(const std::filesystem::path& url)
{
    const std::optional<ContentType> type = contentType(url);
    return type ? type->conformsToAudio() : hasAudioExtension(url);
}

void AudioTransposeModel::load(const std::filesystem::path& url)
{
    if (!isAudioFile(url)) {
        return;
    }
    stopPreview();
    try {
        previewEngine_.load(url);
    } catch (...) {
        showLoadFailure(QString::fromStdString(localizedDescription(std::current_exception())));
        return;
    }
    showLoadedFile(url);
    emit fileLoaded();
}

/// The keys and the export's message stay: only a song that opens starts over with them.
void AudioTransposeModel::showLoadFailure(const QString& description)
{
    publish(audioURL_, {});
    publish(fileName_, QStringLiteral("Could not load audio"));
    publish(fileDetail_, description);
    publish(duration_, 0.0);
    publish(currentTime_, 0.0);
    publish(songDetailsMessage_, {});
    publish(songDetailLines_, {});
}

void AudioTransposeModel::showLoadedFile(const std::filesystem::path& url)
{
    publish(audioURL_, {url});
    publish(fileName_, displayed(FileName::lastPathComponent(url)));
    publish(fileDetail_, detailOf(url));
    setSourceKey(MusicKey::bFlatMajor);
    setTargetKey(MusicKey::bFlatMajor);
    publish(duration_, previewEngine_.duration());
    publish(currentTime_, 0.0);
    publish(songDetailsMessage_, {});
    publish(songDetailLines_, {});
    publish(exportMessage_, {});
}

void AudioTransposeModel::clear()
{
    stopPreview();
    publish(audioURL_, {});
    publish(fileName_, waitingFileName());
    publish(fileDetail_, waitingFileDetail());
    publish(duration_, 0.0);
    publish(currentTime_, 0.0);
    publish(songDetailsMessage_, {});
    publish(songDetailLines_, {});
    publish(exportMessage_, {});
    publish(isExporting_, false);
    publish(isDetectingSongDetails_, false);
}

void AudioTransposeModel::setSourceKey(MusicKey key)
{
    setKey(sourceKey_, key);
}

void AudioTransposeModel::setTargetKey(MusicKey key)
{
    setKey(targetKey_, key);
}

void AudioTransposeModel::setKey(MusicKey& key, MusicKey value)
{
    publish(key, value);
    if (isPreviewing_) {
        previewEngine_.setPitch(centsForSemitones(semitones()));
    }
}

QString AudioTransposeModel::sourceKeyID() const
{
    return textOf(sourceKey_.id());
}

QString AudioTransposeModel::targetKeyID() const
{
    return textOf(targetKey_.id());
}

void AudioTransposeModel::setSourceKeyID(const QString& identifier)
{
    if (const auto key = MusicKey::fromRawValue(identifier.toStdString())) {
        setSourceKey(*key);
    }
}

void AudioTransposeModel::setTargetKeyID(const QString& identifier)
{
    if (const auto key = MusicKey::fromRawValue(identifier.toStdString())) {
        setTargetKey(*key);
    }
}

QVariantList AudioTransposeModel::allKeys() const
{
    QVariantList keys;
    for (const MusicKey key : MusicKey::allCases()) {
        keys.append(QVariantMap{{QStringLiteral("id"), textOf(key.id())},
                                {QStringLiteral("name"), textOf(key.name())}});
    }
    return keys;
}

int AudioTransposeModel::semitones() const noexcept
{
    return semitonesBetween(sourceKey_, targetKey_);
}

QString AudioTransposeModel::intervalDescription() const
{
    return QString::fromStdString(tonvale::intervalDescription(semitones()));
}

QString AudioTransposeModel::signedSemitoneText() const
{
    return QString::fromStdString(formatSigned(semitones()));
}

}  // namespace tonvale
