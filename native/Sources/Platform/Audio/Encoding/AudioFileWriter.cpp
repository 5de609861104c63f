// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Encoding/AudioFileWriter.h"

#include "Platform/Audio/Encoding/ChannelMap.h"
#include "Platform/Audio/Encoding/SampleConversion.h"
#include "Platform/Foundation/LowerCase.h"
#include "Platform/Foundation/PlatformError.h"
#include "Platform/Foundation/Precondition.h"

#include <fcntl.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace tonvale {

/// libsndfile tells of a failed write only as "System error"; our own callbacks keep the errno.
struct AudioFileWriter::Disk {
    FileDescriptor file;
    int firstError = 0;

    void remember(int errorNumber) noexcept
    {
        if (firstError == 0) {
            firstError = errorNumber;
        }
    }

    sf_count_t write(const char* bytes, sf_count_t count) noexcept
    {
        sf_count_t done = 0;
        while (done < count) {
            const ssize_t step =
                ::write(file.get(), bytes + done, static_cast<std::size_t>(count - done));
            if (step > 0) {
                done += step;
            } else if (step == 0 || errno != EINTR) {
                remember(step == 0 ? ENOSPC : errno);
                return done;
            }
        }
        return done;
    }

    sf_count_t seek(sf_count_t offset, int whence) noexcept
    {
        const off_t position = ::lseek(file.get(), offset, whence);
        if (position < 0) {
            remember(errno);
        }
        return position;
    }

    sf_count_t length() noexcept
    {
        struct stat status = {};
        if (::fstat(file.get(), &status) != 0) {
            remember(errno);
            return 0;
        }
        return status.st_size;
    }

    /// A file that lost its name while it was written would be gone the moment it is closed.
    void noticeDeletion() noexcept
    {
        struct stat status = {};
        if (::fstat(file.get(), &status) == 0 && status.st_nlink == 0) {
            remember(ENOENT);
        }
    }

    static Disk& of(void* self) noexcept { return *static_cast<Disk*>(self); }

    static SF_VIRTUAL_IO callbacks() noexcept
    {
        SF_VIRTUAL_IO io = {};
        io.get_filelen = [](void* self) { return of(self).length(); };
        io.seek = [](sf_count_t offset, int whence, void* self) {
            return of(self).seek(offset, whence);
        };
        io.write = [](const void* bytes, sf_count_t count, void* self) {
            return of(self).write(static_cast<const char*>(bytes), count);
        };
        io.tell = [](void* self) { return of(self).seek(0, SEEK_CUR); };
        return io;
    }
};

namespace {

constexpr std::int64_t headerAllowance = 65536;  // every header and trailer here is far smaller
constexpr std::int64_t bytesPerSample = 2;

std::string lowerCasedExtension(const std::filesystem::path& url)
{
    std::string extension = url.extension().string();
    std::ranges::transform(extension, extension.begin(), lowerCased);
    return extension;
}

std::optional<int> containerFor(const std::filesystem::path& url, std::uint32_t channelCount)
{
    const std::string extension = lowerCasedExtension(url);
    if (extension == ".wav") {
        // A plain header cannot say where more than two loudspeakers stand.
        return channelCount > 2 ? SF_FORMAT_WAVEX : SF_FORMAT_WAV;
    }
    if (extension == ".aif" || extension == ".aiff") {
        return SF_FORMAT_AIFF;
    }
    if (extension == ".caf") {
        return SF_FORMAT_CAF;
    }
    return std::nullopt;
}

bool isInterleavedInt16(const AudioFileSettings& settings)
{
    return settings.formatID == audioFormatLinearPCM && settings.linearPCMBitDepth == 16
           && !settings.linearPCMIsFloat && !settings.linearPCMIsBigEndian
           && !settings.linearPCMIsNonInterleaved;
}

SF_INFO soundInfo(const std::filesystem::path& url, const AudioFileSettings& settings)
{
    SF_INFO info = {};
    const auto container = containerFor(url, settings.numberOfChannels);
    if (container && isInterleavedInt16(settings) && settings.numberOfChannels <= 64
        && settings.sampleRate >= 1 && settings.sampleRate <= 1e6) {
        info.samplerate = static_cast<int>(std::lround(settings.sampleRate));
        info.channels = static_cast<int>(settings.numberOfChannels);
        info.format =
            *container | SF_FORMAT_PCM_16
            | (*container == SF_FORMAT_AIFF || *container == SF_FORMAT_CAF ? SF_ENDIAN_LITTLE
                                                                           : SF_ENDIAN_FILE);
    }
    if (sf_format_check(&info) == 0) {
        throw PlatformError(sf_error_number(SF_ERR_UNRECOGNISED_FORMAT));
    }
    return info;
}

/// Left to itself, libsndfile guesses from the number of channels, often not as decoders do.
/// Containers that know no such set of loudspeakers refuse the map and tell nothing, as before.
void placeLoudspeakers(sf_private_tag& sound, const AudioFileSettings& settings)
{
    std::vector<int> map = channelMapFor(settings);
    if (!map.empty()) {
        sf_command(&sound, SFC_SET_CHANNEL_MAP_INFO, map.data(),
                   static_cast<int>(map.size() * sizeof(int)));
    }
}

}  // namespace

void AudioFileWriter::CloseSound::operator()(sf_private_tag* sound) const noexcept
{
    sf_close(sound);
}

AudioFileWriter::AudioFileWriter(const std::filesystem::path& url,
                                 const AudioFileSettings& settings, std::int64_t maximumFileSize)
    : format_{settings.sampleRate, settings.numberOfChannels, settings.channelMask}
    , maximumFileSize_(maximumFileSize)
    , disk_(std::make_unique<Disk>())
{
    SF_INFO info = soundInfo(url, settings);
    disk_->file = FileDescriptor(::open(url.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC,
                                        S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH));
    if (!disk_->file.isOpen()) {
        throw PlatformError::fromErrno(errno);
    }
    SF_VIRTUAL_IO callbacks = Disk::callbacks();
    sound_.reset(sf_open_virtual(&callbacks, SFM_WRITE, &info, disk_.get()));
    if (!sound_ || disk_->firstError != 0) {
        throwFailure();
    }
    placeLoudspeakers(*sound_, settings);
}

AudioFileWriter::~AudioFileWriter() = default;

void AudioFileWriter::write(const AudioPCMBuffer& buffer)
{
    precondition(sound_ != nullptr && buffer.format().channelCount == format_.channelCount);
    const std::uint32_t frames = buffer.frameLength();
    if (frames == 0) {
        return;
    }
    refuseBeyondMaximumSize(frames);
    interleave(buffer);
    if (sf_writef_short(sound_.get(), interleaved_.data(), frames) != frames
        || disk_->firstError != 0) {
        throwFailure();
    }
    framesWritten_ += frames;
}

void AudioFileWriter::interleave(const AudioPCMBuffer& buffer)
{
    const std::uint32_t frames = buffer.frameLength();
    interleaved_.resize(std::size_t{frames} * format_.channelCount);
    for (std::uint32_t channel = 0; channel < format_.channelCount; ++channel) {
        convertToInt16(buffer.channel(channel).first(frames), interleaved_.data() + channel,
                       format_.channelCount);
    }
}

void AudioFileWriter::close()
{
    if (!sound_) {
        return;
    }
    const int soundError = sf_close(sound_.release());  // writes the sizes into the header
    disk_->noticeDeletion();
    if (disk_->file.close() != 0) {
        disk_->remember(errno);
    }
    throwDiskFailure();
    if (soundError != 0) {
        throw PlatformError(sf_error_number(soundError));
    }
}

void AudioFileWriter::refuseBeyondMaximumSize(std::uint32_t frames) const
{
    // libsndfile 1.2 writes past what its header can count without an error, and CAF alone could
    // grow further; a limit that depends on the extension would surprise more than it helps.
    const std::int64_t total = framesWritten_ + frames;
    if (total * bytesPerSample * format_.channelCount > maximumFileSize_ - headerAllowance) {
        throw PlatformError::fromErrno(EFBIG);
    }
}

void AudioFileWriter::throwDiskFailure() const
{
    if (disk_->firstError != 0) {
        throw PlatformError::fromErrno(disk_->firstError);
    }
}

void AudioFileWriter::throwFailure() const
{
    throwDiskFailure();
    throw PlatformError(sf_strerror(sound_.get()));
}

}  // namespace tonvale
