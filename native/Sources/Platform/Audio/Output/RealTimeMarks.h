// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace tonvale {

/// What a tool that watches the device's thread is told; here they do nothing. A test program that
/// defines them itself (they are weak) learns what happens inside. @thread ANY
void deviceCallbackBegins() noexcept;
void deviceCallbackEnds() noexcept;
void libraryCallBegins() noexcept;
void libraryCallEnds() noexcept;

/// While it exists, the thread runs a callback of the sound device: our own code here neither
/// allocates nor locks nor waits.
class DeviceCallback {
public:
    DeviceCallback() noexcept { deviceCallbackBegins(); }
    ~DeviceCallback() { deviceCallbackEnds(); }
    DeviceCallback(const DeviceCallback&) = delete;
    DeviceCallback& operator=(const DeviceCallback&) = delete;
};

/// While it exists, the thread is inside a call into the sound library, which does all three for
/// its own purposes. Put around that one call and nothing else.
class LibraryCall {
public:
    LibraryCall() noexcept { libraryCallBegins(); }
    ~LibraryCall() { libraryCallEnds(); }
    LibraryCall(const LibraryCall&) = delete;
    LibraryCall& operator=(const LibraryCall&) = delete;
};

}  // namespace tonvale
