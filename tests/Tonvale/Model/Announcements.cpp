// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Model/Announcements.h"

#include <gtest/gtest.h>

#include <utility>

namespace tonvale::test {

namespace {

std::string textOf(bool value)
{
    return value ? "true" : "false";
}

std::string textOf(double value)
{
    return QString::number(value).toStdString();
}

}  // namespace

Snapshot snapshotOf(const AudioTransposeModel& model)
{
    return {{"audioURL", model.audioURL() ? model.audioURL()->filename().string() : "none"},
            {"fileName", model.fileName().toStdString()},
            {"fileDetail", model.fileDetail().toStdString()},
            {"sourceKey", std::string(model.sourceKey().id())},
            {"targetKey", std::string(model.targetKey().id())},
            {"isPreviewing", textOf(model.isPreviewing())},
            {"isExporting", textOf(model.isExporting())},
            {"isDetectingSongDetails", textOf(model.isDetectingSongDetails())},
            {"songDetailsMessage", model.songDetailsMessage().toStdString()},
            {"songDetailLines", model.songDetailLines().join(u'|').toStdString()},
            {"exportMessage", model.exportMessage().toStdString()},
            {"duration", textOf(model.duration())},
            {"currentTime", textOf(model.currentTime())}};
}

Announcements::Announcements(AudioTransposeModel& model) : model_(model), latest_(snapshotOf(model))
{
    using Model = AudioTransposeModel;
    connections_.push_back(
        QObject::connect(&model, &Model::objectWillChange, [this] { willChange(); }));
    connections_.push_back(
        QObject::connect(&model, &Model::objectDidChange, [this] { didChange(); }));
    connections_.push_back(
        QObject::connect(&model, &Model::fileLoaded, [this] { list_.push_back("fileLoaded"); }));
}

Announcements::~Announcements()
{
    for (const QMetaObject::Connection& connection : connections_) {
        QObject::disconnect(connection);
    }
}

void Announcements::willChange()
{
    EXPECT_FALSE(isAnnounced_) << "announced twice";
    expectUnchanged("before it was announced");
    isAnnounced_ = true;
    probed_ = probe_();
}

void Announcements::didChange()
{
    EXPECT_TRUE(isAnnounced_) << "not announced";
    isAnnounced_ = false;
    Snapshot now = snapshotOf(model_);
    std::string entry;
    for (const auto& [name, value] : now) {
        if (value != latest_[name]) {
            entry += (entry.empty() ? "" : " and ") + name + " = " + value;
        }
    }
    list_.push_back((entry.empty() ? "same" : entry) + probed_);
    latest_ = std::move(now);
}

void Announcements::expectUnchanged(const char* when) const
{
    EXPECT_EQ(snapshotOf(model_), latest_) << "changed " << when;
}

Announcements::List Announcements::take()
{
    EXPECT_FALSE(isAnnounced_) << "announced, but not told of";
    expectUnchanged("without a word");
    return std::exchange(list_, {});
}

}  // namespace tonvale::test
