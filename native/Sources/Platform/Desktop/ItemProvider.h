// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QUrl>

#include <exception>
#include <functional>
#include <string_view>
#include <variant>

namespace tonvale {

/// What a provider of file locations is asked for.
inline constexpr std::string_view fileURLTypeIdentifier = "text/uri-list";

/// One of the things that were dropped together; it can bring itself along in several shapes.
/// @thread CONTROL
class ItemProvider {
public:
    /// A location, its written form, or why there is none.
    using Item = std::variant<QUrl, QByteArray, std::exception_ptr>;
    using Completion = std::function<void(const Item& item)>;

    virtual ~ItemProvider() = default;

    [[nodiscard]] virtual bool hasItemConformingToTypeIdentifier(
        std::string_view typeIdentifier) const = 0;

    /// Brings the item in that shape.
    /// @param completion  called once, after this has returned, on any thread
    virtual void loadItem(std::string_view typeIdentifier, Completion completion) = 0;
};

/// A dropped location: web addresses are dropped too, so not every one is a file's.
class URLItemProvider final : public ItemProvider {
public:
    explicit URLItemProvider(QUrl url);

    [[nodiscard]] bool hasItemConformingToTypeIdentifier(
        std::string_view typeIdentifier) const override;
    void loadItem(std::string_view typeIdentifier, Completion completion) override;

private:
    QUrl url_;
};

}  // namespace tonvale
