// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Audio/AudioPreviewEngine.h"
#include "Tonvale/Keys/MusicKey.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantList>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tonvale {

class DetectedSongDetails;
class ItemProvider;
class Timer;
template <class Result>
class TaskOutcome;

/// Everything the window shows, and every command it has.
///
/// Observers: objectWillChange() comes before each store into a published property, whether or not
/// the value differs; objectDidChange() comes after it and makes the views read again.
///
/// No command reports an error to its caller: what went wrong is said in the properties.
/// @thread CONTROL
class AudioTransposeModel : public QObject {
    Q_OBJECT
    // For the views. Derived texts change with the same signal, so none can be forgotten.
    Q_PROPERTY(bool hasAudio READ hasAudio NOTIFY objectDidChange)
    Q_PROPERTY(QString fileName READ fileName NOTIFY objectDidChange)
    Q_PROPERTY(QString fileDetail READ fileDetail NOTIFY objectDidChange)
    Q_PROPERTY(QString sourceKey READ sourceKeyID WRITE setSourceKeyID NOTIFY objectDidChange)
    Q_PROPERTY(QString targetKey READ targetKeyID WRITE setTargetKeyID NOTIFY objectDidChange)
    Q_PROPERTY(bool isPreviewing READ isPreviewing NOTIFY objectDidChange)
    Q_PROPERTY(bool isExporting READ isExporting NOTIFY objectDidChange)
    Q_PROPERTY(bool isDetectingSongDetails READ isDetectingSongDetails NOTIFY objectDidChange)
    Q_PROPERTY(QString songDetailsMessage READ songDetailsMessage NOTIFY objectDidChange)
    Q_PROPERTY(QStringList songDetailLines READ songDetailLines NOTIFY objectDidChange)
    Q_PROPERTY(QString exportMessage READ exportMessage NOTIFY objectDidChange)
    Q_PROPERTY(double duration READ duration NOTIFY objectDidChange)
    Q_PROPERTY(double currentTime READ currentTime NOTIFY objectDidChange)

    Q_PROPERTY(QString fileStatus READ fileStatus NOTIFY objectDidChange)
    Q_PROPERTY(QString convertButtonTitle READ convertButtonTitle NOTIFY objectDidChange)
    Q_PROPERTY(int semitones READ semitones NOTIFY objectDidChange)
    Q_PROPERTY(QString intervalDescription READ intervalDescription NOTIFY objectDidChange)
    Q_PROPERTY(QString signedSemitoneText READ signedSemitoneText NOTIFY objectDidChange)
    Q_PROPERTY(QString previewStatus READ previewStatus NOTIFY objectDidChange)
    Q_PROPERTY(QString previewHint READ previewHint NOTIFY objectDidChange)
    Q_PROPERTY(bool canAutoDetectSongDetails READ canAutoDetectSongDetails NOTIFY objectDidChange)

    /// Every key in its order, each as { id, name }.
    Q_PROPERTY(QVariantList allKeys READ allKeys CONSTANT)

public:
    AudioTransposeModel();
    ~AudioTransposeModel() override;

    // State and files.

    /// The loaded song; every other property may outlive it.
    [[nodiscard]] const std::optional<std::filesystem::path>& audioURL() const noexcept
    {
        return audioURL_;
    }
    [[nodiscard]] bool hasAudio() const noexcept { return audioURL_.has_value(); }
    /// The song's name, or the headline of what failed last.
    [[nodiscard]] QString fileName() const { return fileName_; }
    [[nodiscard]] QString fileDetail() const { return fileDetail_; }
    [[nodiscard]] QString fileStatus() const;
    [[nodiscard]] QString convertButtonTitle() const;
    /// Of the song, in seconds.
    [[nodiscard]] double duration() const noexcept { return duration_; }

    /// Lets the user pick a song and loads it.
    Q_INVOKABLE void chooseFile();
    /// Loads, later, the first item that is a file.
    /// @return whether there is one
    bool handleDrop(const std::vector<std::shared_ptr<ItemProvider>>& providers);
    /// The same for the views, who know locations only.
    Q_INVOKABLE bool handleDroppedURLs(const QList<QUrl>& urls);
    /// Opens a song and starts over with it. What is no audio file changes nothing; where a song
    /// does not open, there is none afterwards.
    void load(const std::filesystem::path& url);
    /// Forgets the song. The keys stay, and what is being saved or detected goes on.
    Q_INVOKABLE void clear();

    // The keys. Setting one while the preview plays is heard at once.

    /// The key the recording is in.
    [[nodiscard]] MusicKey sourceKey() const noexcept { return sourceKey_; }
    void setSourceKey(MusicKey key);
    /// The key it should be in.
    [[nodiscard]] MusicKey targetKey() const noexcept { return targetKey_; }
    void setTargetKey(MusicKey key);
    [[nodiscard]] QString sourceKeyID() const;
    [[nodiscard]] QString targetKeyID() const;
    /// @param identifier  a MusicKey's id; any other changes nothing
    void setSourceKeyID(const QString& identifier);
    void setTargetKeyID(const QString& identifier);
    [[nodiscard]] QVariantList allKeys() const;
    /// From the recorded key to the new one, -6 ... 6.
    [[nodiscard]] int semitones() const noexcept;
    [[nodiscard]] QString intervalDescription() const;
    [[nodiscard]] QString signedSemitoneText() const;

    // The preview. Times are in seconds.

    [[nodiscard]] bool isPreviewing() const noexcept { return isPreviewing_; }
    /// The position shown, and where playing starts.
    [[nodiscard]] double currentTime() const noexcept { return currentTime_; }
    [[nodiscard]] QString previewStatus() const;
    [[nodiscard]] QString previewHint() const;

    Q_INVOKABLE void playPreview();
    Q_INVOKABLE void stopPreview();
    /// Moves the position, within the song; what plays goes on from there.
    Q_INVOKABLE void skipPreview(double by);
    /// Moves the position alone, as a hand on the timeline does.
    Q_INVOKABLE void setTimelinePreview(double seconds);
    /// The hand takes hold (true) or lets go; then what plays goes on from the position.
    Q_INVOKABLE void timelineEditingChanged(bool isEditing);
    /// Minutes and seconds, "62:05".
    Q_INVOKABLE [[nodiscard]] QString formatTime(double seconds) const;

    // Saving.

    [[nodiscard]] bool isExporting() const noexcept { return isExporting_; }
    /// Whether any song is still being saved, also one that was cleared since.
    [[nodiscard]] bool isRendering() const noexcept { return rendersRunning_ > 0; }
    /// What is being saved or was; empty when there is nothing to say.
    [[nodiscard]] QString exportMessage() const { return exportMessage_; }
    /// Asks where to save the song in its new key and saves it in the background.
    Q_INVOKABLE void chooseExportLocationAndRender();

    // Detecting.

    [[nodiscard]] bool isDetectingSongDetails() const noexcept { return isDetectingSongDetails_; }
    /// What is being detected or failed; empty when there is nothing to say.
    [[nodiscard]] QString songDetailsMessage() const { return songDetailsMessage_; }
    [[nodiscard]] QStringList songDetailLines() const { return songDetailLines_; }
    [[nodiscard]] bool canAutoDetectSongDetails() const noexcept;
    /// Finds out the recorded key and the tempo in the background.
    Q_INVOKABLE void autoDetectSongDetails();

signals:
    void objectWillChange();
    void objectDidChange();
    /// A song was loaded and every property says so.
    void fileLoaded();

private:
    friend struct AudioTransposeModelInternals;  // for the tests

    /// The only way into a published property. Never asks whether the value differs.
    template <class Field>
    void publish(Field& field, Field value)
    {
        emit objectWillChange();
        field = std::move(value);
        emit objectDidChange();
    }

    [[nodiscard]] static bool isAudioFile(const std::filesystem::path& url);
    void showLoadedFile(const std::filesystem::path& url);
    void showLoadFailure(const QString& description);
    void setKey(MusicKey& key, MusicKey value);

    void restartPreview(double at);
    void startPlaybackTimer();
    void updatePosition();

    void applyExportOutcome(const TaskOutcome<void>& outcome, int exportedSemitones);
    void applyDetectionOutcome(const TaskOutcome<DetectedSongDetails>& outcome);

    // The published properties.
    std::optional<std::filesystem::path> audioURL_;
    QString fileName_;
    QString fileDetail_;
    MusicKey sourceKey_ = MusicKey::bFlatMajor;
    MusicKey targetKey_ = MusicKey::bFlatMajor;
    bool isPreviewing_ = false;
    bool isExporting_ = false;
    bool isDetectingSongDetails_ = false;
    QString songDetailsMessage_;
    QStringList songDetailLines_;
    QString exportMessage_;
    double duration_ = 0;
    double currentTime_ = 0;

    AudioPreviewEngine previewEngine_;
    std::unique_ptr<Timer> playbackTimer_;  // while the preview plays
    int rendersRunning_ = 0;                // whatever isExporting_ says after a clear
};

}  // namespace tonvale
