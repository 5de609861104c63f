// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ProcessSetup.h"

#include <QCoreApplication>
#include <QSettings>
#include <QtGlobal>

#include <malloc.h>

namespace tonvale {

namespace {

void discardMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                    const QString& /*message*/)
{
}

void setUnlessSet(const char* name, const char* value)
{
    if (!qEnvironmentVariableIsSet(name)) {
        qputenv(name, value);
    }
}

/// Qt's file dialog stores the folder it was in last. Below a file there can be no settings, so it
/// neither finds nor leaves any.
void storeNoSettings()
{
    for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
        QSettings::setPath(format, QSettings::UserScope, QStringLiteral("/dev/null"));
    }
}

/// All our QML is compiled in; shaders compile fast enough without a store.
void storeNoCaches()
{
    QCoreApplication::setAttribute(Qt::AA_DisableShaderDiskCache);
    setUnlessSet("MESA_SHADER_CACHE_DISABLE", "true");
}

/// Left alone, the C library learns from every large block that is freed to keep the next ones, and
/// keeps a heap for every thread there has been: each panel shown and song saved would cost some
/// KiB.
void returnFreedMemory()
{
    constexpr int largeBlock = 128 * 1024;  // bytes; where the library itself begins
    mallopt(M_MMAP_THRESHOLD, largeBlock);  // any such call ends the learning
    mallopt(M_ARENA_MAX, 2);
}

}  // namespace

void prepareProcess()
{
    returnFreedMemory();
    if (!qEnvironmentVariableIsSet("QT_FORCE_STDERR_LOGGING")) {
        qInstallMessageHandler(discardMessage);
    }
    storeNoSettings();
    storeNoCaches();
}

}  // namespace tonvale
