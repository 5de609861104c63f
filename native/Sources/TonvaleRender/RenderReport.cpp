// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/RenderReport.h"

#include <algorithm>
#include <utility>

namespace tonvale {

RenderReport::RenderReport(std::ostream& output, std::ostream& errors, Style style)
    : output_(output)
    , errors_(errors)
    , style_(std::move(style))
    , shares_(style_.results)
{
}

void RenderReport::say(const std::string& lines)
{
    const std::lock_guard lock(mutex_);
    if (style_.tellsSuccess) {
        print(output_, lines);
    }
}

void RenderReport::progress(std::size_t result, double share)
{
    const std::lock_guard lock(mutex_);
    setShare(result, share);
}

void RenderReport::succeeded(std::size_t result, const std::string& lines)
{
    const std::lock_guard lock(mutex_);
    ++finished_;
    tell(result, style_.tellsSuccess ? lines : "");
    setShare(result, 1);
}

void RenderReport::failed(const std::vector<std::size_t>& results, const std::string& sentence)
{
    const std::lock_guard lock(mutex_);
    finished_ += results.size();
    failures_ += results.size();
    print(errors_, "tonvale-render: " + sentence + "\n");
    for (const std::size_t result : results) {
        tell(result, "");
        setShare(result, 1);
    }
}

void RenderReport::clear()
{
    const std::lock_guard lock(mutex_);
    bar_.reset();
}

void RenderReport::sumUp()
{
    const std::lock_guard lock(mutex_);
    if (style_.results > 1) {
        print(output_, std::to_string(finished_ - failures_) + " " + style_.success + ", "
                           + std::to_string(failures_) + " failed\n");
    }
}

bool RenderReport::hasFailures() const
{
    const std::lock_guard lock(mutex_);
    return failures_ > 0;
}

/// Above the bar, which comes back with the next progress.
void RenderReport::print(std::ostream& stream, const std::string& lines)
{
    if (lines.empty()) {
        return;
    }
    if (bar_) {
        bar_->wipe();
    }
    stream << lines << std::flush;
}

void RenderReport::tell(std::size_t result, const std::string& lines)
{
    if (!style_.keepsOrder) {
        return print(output_, lines);
    }
    waiting_.emplace(result, lines);
    for (auto next = waiting_.find(turn_); next != waiting_.end(); next = waiting_.find(turn_)) {
        print(output_, next->second);
        waiting_.erase(next);
        ++turn_;
    }
}

void RenderReport::setShare(std::size_t result, double share)
{
    totalShare_ += share - std::exchange(shares_[result], share);
    if (style_.drawsBar && finished_ < style_.results) {
        draw();
    }
}

void RenderReport::draw()
{
    if (!bar_) {
        bar_.emplace(errors_);
    }
    const std::string note = style_.results == 1 ? ""
                                                 : "  " + std::to_string(finished_) + " of "
                                                       + std::to_string(style_.results);
    bar_->update(std::min(1.0, totalShare_ / static_cast<double>(style_.results)), note);
}

}  // namespace tonvale
