// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/PulseServer.h"

#include "Platform/Foundation/FileDescriptor.h"
#include "Support/ProcessState.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace tonvale::test {

namespace {

/// Whether somebody takes connections there.
bool isListening(const std::filesystem::path& socketFile)
{
    const FileDescriptor descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = socketFile.string();
    std::copy_n(name.begin(), std::min(name.size(), sizeof address.sun_path - 1), address.sun_path);
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    return ::connect(descriptor.get(), generic, sizeof address) == 0;
}

}  // namespace

PulseServer::PulseServer(std::uint32_t sampleRate, bool isStarted) : sampleRate_(sampleRate)
{
    const std::string folder = folder_.path().string();
    setVariable("XDG_RUNTIME_DIR", folder);
    setVariable("XDG_CONFIG_HOME", folder);  // nobody's settings, nobody's cookie
    setVariable("PULSE_SERVER", "unix:" + folder + "/pulse.sock");
    if (isStarted) {
        static_cast<void>(start());  // tests ask `pactl` or skip
    }
}

PulseServer::~PulseServer()
{
    kill();
    for (const auto& [name, value] : formerVariables_) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }
}

void PulseServer::setVariable(const std::string& name, const std::string& value)
{
    const char* const former = std::getenv(name.c_str());
    formerVariables_[name] = former != nullptr ? std::optional<std::string>(former) : std::nullopt;
    ::setenv(name.c_str(), value.c_str(), 1);
}

bool PulseServer::start()
{
    const std::filesystem::path socketFile = folder_.path() / "pulse.sock";
    std::filesystem::remove(socketFile);
    const std::vector<std::string> command{
        "pulseaudio",
        "-n",
        "--daemonize=no",
        "--use-pid-file=no",
        "--realtime=no",
        "--high-priority=no",
        "--log-level=error",
        "--exit-idle-time=-1",
        "--load=module-native-protocol-unix auth-anonymous=1 socket=" + socketFile.string(),
        "--load=module-null-sink format=float32le channels=2 rate=" + std::to_string(sampleRate_)
            + " sink_name=" + deviceName};
    program_ = std::make_unique<RunningProgram>(command, ProgramOptions{});
    return eventually(
               [this, &socketFile] { return isListening(socketFile) || !program_->isAlive(); })
           && program_->isAlive();
}

void PulseServer::kill()
{
    program_.reset();
}

void PulseServer::freeze() const
{
    program_->sendSignal(SIGSTOP);
}

void PulseServer::thaw() const
{
    program_->sendSignal(SIGCONT);
}

std::string PulseServer::control(std::initializer_list<std::string> arguments)
{
    std::vector<std::string> command{"pactl"};
    command.insert(command.end(), arguments);
    return runProgram(command).standardOutput;
}

}  // namespace tonvale::test
