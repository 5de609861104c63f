// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/ContainerExtent.h"

#include "Platform/Audio/Decoding/Mp4File.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace tonvale::test {

namespace {

constexpr DecodedFormat at44100 = {.sampleRate = 44100, .channelCount = 2};
constexpr DecodedFormat at48000 = {.sampleRate = 48000, .channelCount = 2};

/// A container with one stream, whose facts a test sets as a demuxer does.
class Container {
public:
    explicit Container(const std::string& format, AVCodecID codec = AV_CODEC_ID_NONE,
                       const Bytes& bytes = Bytes(20000))
        : file_(bytes)
        , context_(avformat_alloc_context())
        , stream_(avformat_new_stream(context_.get(), nullptr))
        , facts_{.input = file_.input(),
                 .format = *av_find_input_format(format.c_str()),
                 .context = context_.get(),
                 .stream = *stream_,
                 .tickDuration = {1, 44100}}
    {
        stream_->codecpar->codec_id = codec;
        stream_->id = 1;
    }

    [[nodiscard]] ContainerFacts& facts() { return facts_; }
    [[nodiscard]] AVStream& stream() { return *stream_; }
    [[nodiscard]] AVFormatContext& context() { return *context_; }

    void setExtradata(const Bytes& bytes)
    {
        AVCodecParameters& parameters = *stream_->codecpar;
        av_freep(&parameters.extradata);
        parameters.extradata = static_cast<std::uint8_t*>(av_mallocz(bytes.size() + 64));
        std::ranges::copy(bytes, parameters.extradata);
        parameters.extradata_size = static_cast<int>(bytes.size());
    }

    [[nodiscard]] HeaderExtent extent(const DecodedFormat& format = at44100) const
    {
        return headerExtent(facts_, format);
    }
    [[nodiscard]] std::optional<std::int64_t> end(const DecodedFormat& format = at44100) const
    {
        return extent(format).end;
    }

private:
    ByteFile file_;
    UniqueFormatContext context_;
    AVStream* stream_;
    ContainerFacts facts_;
};

TEST(ContainerExtentTest, LinearFramesAreThoseTold)
{
    Container wave("wav");
    wave.facts().isLinear = true;
    wave.facts().frameSize = 4;
    wave.facts().dataOffset = 44;
    wave.facts().duration = 1000;
    EXPECT_EQ(wave.extent().start, 0);
    EXPECT_EQ(wave.end(), 1000);
    wave.facts().duration = 1;
    EXPECT_EQ(wave.end(), 1);
}

TEST(ContainerExtentTest, LinearFramesAreNeverMoreThanTheFileHas)
{
    Container wave("wav");
    wave.facts().isLinear = true;
    wave.facts().frameSize = 4;
    wave.facts().dataOffset = 44;
    constexpr std::int64_t present = (20000 - 44) / 4;
    for (const std::int64_t told : {std::int64_t{0}, noTimeStamp, present + 1, present}) {
        wave.facts().duration = told;
        EXPECT_EQ(wave.end(), present) << told;
    }
    wave.stream().nb_frames = 70;
    wave.facts().duration = noTimeStamp;
    EXPECT_EQ(wave.end(), 70) << "told by the stream alone";
    wave.facts().dataOffset = 20001;
    EXPECT_EQ(wave.end(), 0);
}

/// A W64 file of 100 bytes of data and 4 that fill it up; its data chunk says `size`.
Bytes w64(std::uint64_t size)
{
    Bytes bytes(16, 0x64);
    for (int place = 0; place < 8; ++place) {
        bytes.push_back(static_cast<std::uint8_t>(size >> (8 * place)));
    }
    append(bytes, Bytes(104));
    return bytes;
}

TEST(ContainerExtentTest, TheFillingOfW64IsNoMusic)
{
    const auto framesOf = [](std::uint64_t size) {
        Container file("w64", AV_CODEC_ID_PCM_S16LE, w64(size));
        file.facts().isLinear = true;
        file.facts().frameSize = 2;
        file.facts().dataOffset = 24;
        return file.end();
    };
    EXPECT_EQ(framesOf(24 + 100), 50);
    EXPECT_EQ(framesOf(24 + 104), 52);
    EXPECT_EQ(framesOf(24 + 1000), 52) << "cut";
    EXPECT_EQ(framesOf(~0ULL), 52) << "left open";
    EXPECT_EQ(framesOf(24), 0);
    EXPECT_EQ(framesOf(3), 0) << "damaged";
}

TEST(ContainerExtentTest, OggBeginsWithItsFirstGranule)
{
    Container ogg("ogg", AV_CODEC_ID_VORBIS);
    ogg.facts().tickDuration = {1, 48000};
    ogg.stream().start_time = noTimeStamp;
    EXPECT_EQ(ogg.extent(at48000).start, 0);
    EXPECT_EQ(ogg.end(at48000), std::nullopt);
    ogg.stream().start_time = 500;
    ogg.facts().duration = 9000;
    EXPECT_EQ(ogg.extent(at48000).start, 500);
    EXPECT_EQ(ogg.end(at48000), 9500);
    ogg.stream().codecpar->initial_padding = 312;
    EXPECT_EQ(ogg.end(at48000), 9500);
    ogg.facts().tickDuration = {1, 24000};
    EXPECT_EQ(ogg.extent(at48000).start, 1000);
    EXPECT_EQ(ogg.end(at48000), 19000);
}

TEST(ContainerExtentTest, GranulesOfOpusCountThePreSkip)
{
    Container ogg("ogg", AV_CODEC_ID_OPUS);
    ogg.facts().tickDuration = {1, 48000};
    ogg.facts().duration = 9000;
    ogg.stream().start_time = 312;
    ogg.stream().codecpar->initial_padding = 312;
    EXPECT_EQ(ogg.extent(at48000).start, 312);
    EXPECT_EQ(ogg.end(at48000), 9000);
}

TEST(ContainerExtentTest, CafHasItsTableOrElseItsDuration)
{
    Bytes bytes = text("caff");
    append(bytes, 0x00010000, 4);
    append(bytes, text("pakt"));
    append(bytes, 24, 8);
    append(bytes, 9, 8);
    append(bytes, 10000, 8);  // valid frames
    append(bytes, 2112, 4);   // priming
    append(bytes, 0, 4);
    Container withTable("caf", AV_CODEC_ID_AAC, bytes);
    withTable.facts().duration = 77;
    EXPECT_EQ(withTable.extent().start, 2112);
    EXPECT_EQ(withTable.end(), 12112);

    Container without("caf", AV_CODEC_ID_AAC);
    EXPECT_EQ(without.end(), std::nullopt);
    without.facts().duration = 0;
    EXPECT_EQ(without.end(), std::nullopt);
    without.facts().duration = 1;
    EXPECT_EQ(without.end(), 1);
    EXPECT_EQ(without.extent().start, 0);
}

TEST(ContainerExtentTest, WmaBeginsWithItsFirstBlock)
{
    struct Case {
        int sampleRate;
        std::int64_t firstVersion;
        std::int64_t secondVersion;
    };
    // Blocks are the longer the higher the rate; the second version's change one step earlier.
    for (const auto& [rate, first, second] :
         {Case{8000, 512, 512}, Case{16000, 512, 512}, Case{22050, 1024, 1024},
          Case{32000, 1024, 2048}, Case{44100, 2048, 2048}, Case{48000, 2048, 2048}}) {
        const DecodedFormat format = {.sampleRate = rate, .channelCount = 2};
        for (const bool isFirst : {true, false}) {
            Container wma("asf", isFirst ? AV_CODEC_ID_WMAV1 : AV_CODEC_ID_WMAV2);
            wma.facts().tickDuration = {1, 1000};
            EXPECT_EQ(wma.extent(format).start, isFirst ? first : second) << rate;
            EXPECT_EQ(wma.end(format), std::nullopt);
            wma.facts().duration = 0;
            EXPECT_EQ(wma.end(format), std::nullopt);
            wma.facts().duration = 2000;
            EXPECT_EQ(wma.end(format), (isFirst ? first : second) + 2 * rate) << rate;
        }
    }
    EXPECT_EQ(Container("asf", AV_CODEC_ID_MP3).extent().start, 0);
}

/// FLAC's own header, with a length of 36 bits and noise around it.
Bytes streamInfo(std::uint64_t frames)
{
    Bytes bytes(13, 0x55);
    append(bytes, 0xA000000000 | frames, 5);
    append(bytes, Bytes(16, 0x55));
    return bytes;
}

TEST(ContainerExtentTest, FlacTellsItsLengthInAnyContainer)
{
    Container matroska("matroska", AV_CODEC_ID_FLAC, Bytes(1'000'000));
    matroska.facts().tickDuration = {1, 1000};
    matroska.facts().duration = 23;
    const DecodedFormat fast = {.sampleRate = 768000, .channelCount = 2};
    for (const std::uint64_t frames : {1ULL, 0x12345ULL, 0x123456789ULL}) {
        matroska.setExtradata(streamInfo(frames));
        EXPECT_EQ(matroska.end(fast), static_cast<std::int64_t>(frames));
        EXPECT_EQ(matroska.extent(fast).start, 0);
    }
    Bytes cut = streamInfo(5);
    cut.resize(18);
    matroska.setExtradata(cut);
    EXPECT_EQ(matroska.end(), 5);
    cut.resize(17);
    matroska.setExtradata(cut);
    EXPECT_EQ(matroska.end(), std::nullopt) << "too short for a length";
    matroska.setExtradata(streamInfo(0));
    EXPECT_EQ(matroska.end(), std::nullopt) << "left open";
    matroska.setExtradata(streamInfo(5));
    matroska.stream().codecpar->codec_id = AV_CODEC_ID_VORBIS;
    EXPECT_EQ(matroska.end(), std::nullopt) << "that is no FLAC";
}

TEST(ContainerExtentTest, LosslessContainersTellTheirLength)
{
    for (const std::string format : {"flac", "wv", "tta", "ape", "tak"}) {
        Container container(format);
        EXPECT_EQ(container.end(), std::nullopt) << format;
        container.facts().duration = 0;
        EXPECT_EQ(container.end(), std::nullopt) << format;
        container.facts().duration = 1;
        EXPECT_EQ(container.end(), 1) << format;
    }
}

TEST(ContainerExtentTest, OtherContainersOnlyTellThePaddingAtTheStart)
{
    Container matroska("matroska", AV_CODEC_ID_OPUS);
    matroska.facts().duration = 1000;
    matroska.stream().codecpar->initial_padding = 312;
    EXPECT_EQ(matroska.extent().start, 312);
    EXPECT_EQ(matroska.end(), std::nullopt);
    matroska.stream().codecpar->initial_padding = -5;
    EXPECT_EQ(matroska.extent().start, 0);
}

TEST(ContainerExtentTest, LengthsBeyondAllReasonForTheFilesSizeAreNotBelieved)
{
    Container tta("tta", AV_CODEC_ID_TTA, Bytes(1000));  // ten seconds at a hundred bytes each
    tta.facts().duration = 12 * 44100 - 1;
    EXPECT_EQ(tta.end(), 12 * 44100 - 1);
    tta.facts().duration = 12 * 44100;
    EXPECT_EQ(tta.end(), std::nullopt);
    tta.facts().duration = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(tta.end(), std::nullopt);

    Container ogg("ogg", AV_CODEC_ID_VORBIS, Bytes(1000));
    ogg.stream().start_time = 12 * 44100 - 1;
    EXPECT_EQ(ogg.extent().start, 12 * 44100 - 1);
    ogg.stream().start_time = 12 * 44100;
    EXPECT_EQ(ogg.extent().start, 0);
    ogg.stream().start_time = -1;
    EXPECT_EQ(ogg.extent().start, 0);
}

constexpr std::int64_t mediaStart = 1024;

/// A song of MP4 whose one edit lasts so many ticks of the movie.
Bytes song(std::int64_t duration, std::uint32_t movieTicksPerSecond = 600)
{
    return movie(track(1, 44100, editList(false, {{duration, mediaStart}})), false,
                 movieTicksPerSecond);
}

TEST(ContainerExtentTest, TheEditListDecidesWhereAnMp4StartsAndEnds)
{
    Container mp4("mov", AV_CODEC_ID_AAC, song(600));
    EXPECT_EQ(mp4.extent().start, mediaStart);
    EXPECT_EQ(mp4.end(), mediaStart + 44100);
    mp4.facts().duration = 99999;  // of the media
    EXPECT_EQ(mp4.end(), mediaStart + 44100);
    EXPECT_EQ(mp4.extent({.sampleRate = 88200}).start, 2 * mediaStart);
    EXPECT_EQ(mp4.end({.sampleRate = 88200}), 2 * (mediaStart + 44100));
}

TEST(ContainerExtentTest, TheMediasOwnEndIsMeantWhereAnEditEndsLessThanATickFromIt)
{
    constexpr std::int64_t editEnd = mediaStart + 44100;
    const auto endOf = [](std::uint32_t movieTicksPerSecond, std::int64_t mediaEnd) {
        Container mp4("mov", AV_CODEC_ID_AAC, song(movieTicksPerSecond, movieTicksPerSecond));
        mp4.facts().duration = mediaEnd;
        return mp4.end();
    };
    EXPECT_EQ(endOf(600, editEnd + 73), editEnd + 73);
    EXPECT_EQ(endOf(600, editEnd + 74), editEnd) << "44100 by 600 are 73.5";
    EXPECT_EQ(endOf(600, editEnd - 100), editEnd - 100) << "no more than there is";
    EXPECT_EQ(endOf(100, editEnd + 440), editEnd + 440);
    EXPECT_EQ(endOf(100, editEnd + 441), editEnd);
    // A finer movie's tick is rounded by a frame.
    EXPECT_EQ(endOf(44100, editEnd + 1), editEnd + 1);
    EXPECT_EQ(endOf(44100, editEnd + 2), editEnd);
}

TEST(ContainerExtentTest, AnEditWithoutADurationOnlyTellsTheStart)
{
    Container mp4("mov", AV_CODEC_ID_AAC, song(0));
    EXPECT_EQ(mp4.extent().start, mediaStart);
    EXPECT_EQ(mp4.end(), std::nullopt);
    mp4.facts().duration = 5000;
    EXPECT_EQ(mp4.end(), 5000);
}

TEST(ContainerExtentTest, EditsOfOtherTracksAndWithoutAMoviesTicksDoNotCount)
{
    Container other("mov", AV_CODEC_ID_AAC, song(600));
    other.stream().id = 2;
    EXPECT_EQ(other.extent().start, 0);
    Container timeless("mov", AV_CODEC_ID_AAC, song(600, 0));
    EXPECT_EQ(timeless.extent().start, 0);
    EXPECT_EQ(timeless.end(), std::nullopt);
    Container slowest("mov", AV_CODEC_ID_AAC, song(2, 1));
    EXPECT_EQ(slowest.end(), mediaStart + 2 * 44100);
}

constexpr const char* paddingText = " 00000000 00000840 000001CC 0000000000002710 00000000";

TEST(ContainerExtentTest, PaddingInTextIsTakenWithoutAnEdit)
{
    for (const bool isOfStream : {true, false}) {
        Container mp4("mov", AV_CODEC_ID_AAC);
        mp4.facts().duration = 77777;
        AVDictionary** const metadata =
            isOfStream ? &mp4.stream().metadata : &mp4.context().metadata;
        av_dict_set(metadata, "iTunSMPB", paddingText, 0);
        EXPECT_EQ(mp4.extent().start, 0x840);
        EXPECT_EQ(mp4.end(), 0x840 + 10000);
    }
}

TEST(ContainerExtentTest, PaddingThatCannotBeIsLeftOut)
{
    const auto startOf = [](const char* padding) {
        Container mp4("mov", AV_CODEC_ID_AAC);
        av_dict_set(&mp4.stream().metadata, "iTunSMPB", padding, 0);
        return mp4.extent().start;
    };
    EXPECT_EQ(startOf(" 0 10000 0 2710"), 65536);
    EXPECT_EQ(startOf(" 0 10001 0 2710"), 0);
    EXPECT_EQ(startOf(" 0 840 0 1"), 0x840);
    EXPECT_EQ(startOf(" 0 840 0 0"), 0);
    EXPECT_EQ(startOf(" 0 840 0 10000000000"), 0x840);
    EXPECT_EQ(startOf(" 0 840 0 10000000001"), 0);
    EXPECT_EQ(startOf(" 0 840 0"), 0) << "a number is missing";
    Container contextless("mov", AV_CODEC_ID_AAC);
    ContainerFacts facts = contextless.facts();
    facts.context = nullptr;
    EXPECT_EQ(headerExtent(facts, at44100).start, 0);
}

TEST(ContainerExtentTest, PaddingInTextTellsTheLengthWhereAnEditStartsAtTheSamePlace)
{
    const auto endOf = [](const char* padding) {
        Container mp4("mov", AV_CODEC_ID_AAC, song(600));
        mp4.facts().duration = 60000;
        av_dict_set(&mp4.stream().metadata, "iTunSMPB", padding, 0);
        return mp4.end();
    };
    EXPECT_EQ(endOf(" 0 400 0 2710"), mediaStart + 10000);
    EXPECT_EQ(endOf(" 0 401 0 2710"), mediaStart + 44100) << "it is of another encoding";
}

}  // namespace

}  // namespace tonvale::test
