#pragma once

#include <QByteArray>

#include <optional>

class CkMainWindow;

/// What the next start finds again: the window, its panels, and what is open in it.
struct SkWindowLayout {
    QByteArray geometry;
    QByteArray state; ///< of the panels
    /// See CkSessionMemory; nothing: what is remembered is another window's.
    std::optional<QByteArray> session;
    bool arrange = true;

    static SkWindowLayout of(const CkMainWindow& window);

    /// Into the settings, at once and whole: a program that is killed meanwhile leaves the old or the new.
    /// With pBefore only what differs from it.
    void save(const SkWindowLayout* pBefore = nullptr) const;

    bool operator==(const SkWindowLayout& other) const = default;
};
