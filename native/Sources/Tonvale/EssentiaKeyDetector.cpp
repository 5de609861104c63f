// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/EssentiaKeyDetector.h"

#include "Platform/Foundation/Bundle.h"
#include "Platform/Foundation/HelperProcess.h"
#include "Platform/Foundation/PlatformError.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QString>
#include <QStringDecoder>

#include <system_error>
#include <utility>

namespace tonvale {

EssentiaKeyDetectorError::EssentiaKeyDetectorError(Case which, std::string first,
                                                   std::string second)
    : which_(which)
    , first_(std::move(first))
    , second_(std::move(second))
{
}

EssentiaKeyDetectorError EssentiaKeyDetectorError::unsupportedKey(std::string key,
                                                                  std::string scale)
{
    return EssentiaKeyDetectorError(Case::unsupportedKey, std::move(key), std::move(scale));
}

EssentiaKeyDetectorError EssentiaKeyDetectorError::helperFailed(std::string message)
{
    return EssentiaKeyDetectorError(Case::helperFailed, std::move(message));
}

EssentiaKeyDetectorError EssentiaKeyDetectorError::missingResources()
{
    return EssentiaKeyDetectorError(Case::missingResources);
}

EssentiaKeyDetectorError EssentiaKeyDetectorError::unreadableOutput()
{
    return EssentiaKeyDetectorError(Case::unreadableOutput);
}

std::string EssentiaKeyDetectorError::errorDescription() const
{
    switch (which_) {
    case Case::unsupportedKey:
        return "Detected " + first_ + " " + second_
               + ", but it could not be mapped to the app's key list.";
    case Case::helperFailed:
        return first_.empty() ? "Key detection failed." : first_;
    case Case::missingResources:
        return "Key detection resources are missing from the app bundle.";
    case Case::unreadableOutput:
        break;
    }
    return "The key detector returned an unreadable result.";
}

namespace EssentiaKeyDetector {

namespace {

bool isUtf8(std::string_view bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = decoder.decode(QByteArrayView(bytes.data(), std::ssize(bytes)));
    return !decoder.hasError();
}

QJsonDocument parseJson(std::string_view text, QJsonParseError& error)
{
    return QJsonDocument::fromJson(QByteArray(text.data(), std::ssize(text)), &error);
}

std::string requiredString(const QJsonObject& object, const char* name)
{
    const QJsonValue value = object.value(QLatin1StringView(name));
    if (!value.isString()) {
        throw EssentiaKeyDetectorError::unreadableOutput();
    }
    return value.toString().toStdString();
}

/// true and false are no numbers.
std::optional<double> optionalNumber(const QJsonObject& object, const char* name)
{
    const QJsonValue value = object.value(QLatin1StringView(name));
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

std::string absolutePath(const std::filesystem::path& file)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(file, error);
    if (error) {
        throw PlatformError::fromErrno(error.value());
    }
    return absolute.native();
}

HelperOutcome runHelper(const std::filesystem::path& root, const std::filesystem::path& file)
{
    const HelperProcess helper{
        .executable = "/usr/bin/python3",
        .arguments = {(root / "detect_key.py").native(), absolutePath(file)},
        .environment = {"PYTHONPATH=" + (root / "EssentiaPython").native(),
                        "PATH=/usr/bin:/bin:/usr/sbin:/sbin"},
    };
    return helper.run();
}

}  // namespace

DetectedSongDetails detectSongDetails(const std::filesystem::path& forFile)
{
    const std::filesystem::path root =
        detail::keyDetectionResourceRoot(Bundle::main().resourceURL(), detail::sourceFile());
    const HelperOutcome outcome = runHelper(root, forFile);
    const std::string output = detail::decodeUtf8(outcome.standardOutput);
    const std::string errorOutput = detail::decodeUtf8(outcome.standardError);
    if (outcome.terminationStatus != 0) {
        // Even an empty message of the helper's own wins over what it wrote to standard error.
        throw EssentiaKeyDetectorError::helperFailed(
            detail::parseError(output).value_or(errorOutput));
    }
    return detail::parseDetails(output);
}

namespace detail {

std::filesystem::path sourceFile()
{
    // Set by the build: __FILE__ may be rewritten in packages.
    return TONVALE_KEY_DETECTOR_SOURCE;
}

std::filesystem::path keyDetectionResourceRoot(
    const std::optional<std::filesystem::path>& resources, const std::filesystem::path& source)
{
    const auto holdsHelper = [](const std::filesystem::path& root) {
        std::error_code error;
        return std::filesystem::exists(root / "detect_key.py", error);
    };
    if (resources && holdsHelper(*resources / "KeyDetection")) {
        return *resources / "KeyDetection";
    }
    // Without the file name, the module's folder and "Sources" it is the source tree's root.
    const auto tree = source.parent_path().parent_path().parent_path();
    if (holdsHelper(tree / "Resources" / "KeyDetection")) {
        return tree / "Resources" / "KeyDetection";
    }
    throw EssentiaKeyDetectorError::missingResources();
}

std::string decodeUtf8(std::string_view bytes)
{
    return isUtf8(bytes) ? std::string(bytes) : std::string();
}

std::optional<std::string> parseError(std::string_view from)
{
    QJsonParseError ignored;  // what is not UTF-8, no JSON or no object has no members either
    const QJsonObject object = parseJson(from, ignored).object();
    const QJsonValue message = object.value(QLatin1StringView("error"));
    return message.isString() ? std::optional(message.toString().toStdString()) : std::nullopt;
}

DetectedSongDetails parseDetails(std::string_view from)
{
    if (!isUtf8(from)) {
        throw EssentiaKeyDetectorError::unreadableOutput();
    }
    QJsonParseError jsonError;
    const QJsonDocument document = parseJson(from, jsonError);
    if (jsonError.error != QJsonParseError::NoError) {
        throw PlatformError(jsonError.errorString().toStdString());
    }
    const QJsonObject object = document.object();  // an array counts as one without members
    const std::string key = requiredString(object, "key");
    const std::string scale = requiredString(object, "scale");
    const std::optional<double> keyConfidence = optionalNumber(object, "keyConfidence");
    if (!keyConfidence) {
        throw EssentiaKeyDetectorError::unreadableOutput();
    }
    const std::optional<MusicKey> musicKey = MusicKey::fromEssentiaKey(key, scale);
    if (!musicKey) {
        throw EssentiaKeyDetectorError::unsupportedKey(key, scale);
    }
    return {*musicKey, *keyConfidence, optionalNumber(object, "bpm")};
}

}  // namespace detail

}  // namespace EssentiaKeyDetector

}  // namespace tonvale
