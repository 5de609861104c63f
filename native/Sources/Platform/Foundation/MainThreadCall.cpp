// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/MainThreadCall.h"

#include <QCoreApplication>
#include <QEvent>

#include <atomic>
#include <utility>

namespace tonvale {

/// Everything that both threads need exists before the second one gets to know of it, and is handed
/// over and back through `isPosted_`.
class MainThreadCall::Receiver final : public QObject {
public:
    explicit Receiver(std::function<void()> body)
        : body_(std::move(body))
        , event_(std::make_unique<QEvent>(QEvent::User))
    {
    }

    void post(std::shared_ptr<Receiver> self)
    {
        QEvent* const event = event_.release();
        if (event == nullptr) {
            return;
        }
        self_ = std::move(self);
        isPosted_.store(true, std::memory_order_release);
        QCoreApplication::postEvent(this, event);
    }

protected:
    void customEvent(QEvent* /*event*/) override
    {
        // The event queue is in step by itself; this tells the checkers that cannot look into it.
        static_cast<void>(isPosted_.load(std::memory_order_acquire));
        const std::shared_ptr<Receiver> self = std::move(self_);
        std::exchange(body_, nullptr)();
    }

private:
    std::function<void()> body_;
    std::unique_ptr<QEvent> event_;
    std::shared_ptr<Receiver> self_;  // from post() until the call
    std::atomic<bool> isPosted_ = false;
};

MainThreadCall::MainThreadCall(std::function<void()> body)
    // Whichever thread lets go last, the main thread destroys.
    : receiver_(new Receiver(std::move(body)), [](Receiver* receiver) { receiver->deleteLater(); })
{
}

void MainThreadCall::post() &&
{
    Receiver& receiver = *receiver_;
    receiver.post(std::move(receiver_));
}

}  // namespace tonvale
