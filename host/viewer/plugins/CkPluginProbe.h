#pragma once

#include <QCoreApplication>
#include <QString>

#include <chrono>
#include <optional>

/// Finds out in a short-lived process of its own what loading a plug-in does to a program. Thread that may
/// wait.
class CkPluginProbe {
    Q_DECLARE_TR_FUNCTIONS(CkPluginProbe)

public:
    /// The program that is run, found from where this one lies; empty when it is missing.
    static QString program();

    /// Loads the library in a child process, starts the plug-in, asks for its texts and ends it, as the
    /// viewer would. Empty: it came through. Otherwise the message that names the library and what it did.
    /// Nothing when the child process cannot be run, which says nothing about the library.
    static std::optional<QString> refusal(const QString& sLibrary, std::chrono::milliseconds timeLimit);

private:
    static QString stepText(const QByteArray& sStep);
};
