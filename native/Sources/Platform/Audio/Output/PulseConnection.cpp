// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/PulseConnection.h"

#include "Platform/Foundation/PlatformError.h"

#include <pulse/pulseaudio.h>

#include <string>

namespace tonvale {

namespace {

using Properties = std::unique_ptr<pa_proplist, decltype(&pa_proplist_free)>;

Properties applicationProperties()
{
    Properties properties(pa_proplist_new(), &pa_proplist_free);
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Tonvale");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, TONVALE_ID);
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, TONVALE_ID);
    return properties;
}

void wake(void* loop)
{
    static_cast<const PulseMainLoop*>(loop)->wake();
}

}  // namespace

void PulseConnection::Disconnect::operator()(pa_context* context) const noexcept
{
    pa_context_disconnect(context);
    pa_context_unref(context);
}

PulseConnection::PulseConnection(const PulseMainLoop& loop, const Deadline& deadline)
    : loop_(loop)
    , context_(pa_context_new_with_proplist(&loop.api(), nullptr, applicationProperties().get()))
{
    pa_context* const context = context_.get();
    if (context == nullptr) {
        throw PlatformError(pa_strerror(PA_ERR_INTERNAL));
    }
    pa_context_set_state_callback(
        context, [](pa_context*, void* mainLoop) { wake(mainLoop); },
        const_cast<PulseMainLoop*>(&loop));
    if (pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) != 0) {
        fail();
    }
    const bool isAnswered = loop.waitFor(deadline.timeLeft(), [context] {
        const pa_context_state_t state = pa_context_get_state(context);
        return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
    });
    if (!isAnswered || pa_context_get_state(context) != PA_CONTEXT_READY) {
        fail();
    }
}

std::uint32_t PulseConnection::deviceSampleRate(const Deadline& deadline)
{
    struct Answer {
        std::string defaultDevice;
        std::uint32_t sampleRate = 0;
    } answer;
    const auto keepServer = [](pa_context*, const pa_server_info* server, void* data) {
        if (server != nullptr) {
            const char* const name = server->default_sink_name;
            *static_cast<Answer*>(data) = {name != nullptr ? name : "", server->sample_spec.rate};
        }
    };
    if (!complete(pa_context_get_server_info(get(), keepServer, &answer), deadline)) {
        fail();
    }
    const auto keepDevice = [](pa_context*, const pa_sink_info* sink, int, void* data) {
        if (sink != nullptr) {
            static_cast<Answer*>(data)->sampleRate = sink->sample_spec.rate;
        }
    };
    // A server without a device may have one by the time that the stream is opened: keep its rate.
    const char* const name = answer.defaultDevice.c_str();
    if (!complete(pa_context_get_sink_info_by_name(get(), name, keepDevice, &answer), deadline)) {
        fail();
    }
    return answer.sampleRate;
}

bool PulseConnection::complete(pa_operation* operation, const Deadline& deadline) const
{
    if (operation == nullptr) {
        return false;
    }
    pa_operation_set_state_callback(
        operation, [](pa_operation*, void* mainLoop) { wake(mainLoop); },
        const_cast<PulseMainLoop*>(&loop_));
    const bool isEnded = loop_.waitFor(deadline.timeLeft(), [operation] {
        return pa_operation_get_state(operation) != PA_OPERATION_RUNNING;
    });
    const bool isDone = pa_operation_get_state(operation) == PA_OPERATION_DONE;
    if (!isEnded) {
        pa_operation_cancel(operation);  // its callback must not find us gone
    }
    pa_operation_unref(operation);
    return isDone;
}

void PulseConnection::fail() const
{
    const bool isGood = PA_CONTEXT_IS_GOOD(pa_context_get_state(get()));
    const int error = pa_context_errno(get());
    throw PlatformError(pa_strerror(isGood && error == PA_OK ? PA_ERR_TIMEOUT : error));
}

}  // namespace tonvale
