#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

/// A library as it was when it was looked at.
struct SkLibraryStamp {
    qint64 size = -1;
    qint64 timeMs = 0; ///< last change, milliseconds since 1970
    QByteArray hash;   ///< of the content

    /// Reads the whole file. Nothing when it is no ordinary file or cannot be read.
    static std::optional<SkLibraryStamp> of(const QString& sLibrary);
    bool operator==(const SkLibraryStamp&) const = default;
};

/// Remembers from start to start which libraries may be loaded. A file of its own, written at each change;
/// one that cannot be written or read only makes every start look again. User-interface thread.
class CkPluginVerdictCache {
public:
    /// sHost says which program the verdicts hold for; those of another one are forgotten.
    CkPluginVerdictCache(const QString& sFileName, const QString& sHost);

    /// The refusal of a library that has not changed since, empty when it may be loaded. Nothing for an
    /// unknown or changed one.
    std::optional<QString> find(const QString& sLibrary, const SkLibraryStamp& stamp) const;

    /// An empty refusal: it may be loaded.
    void remember(const QString& sLibrary, const SkLibraryStamp& stamp, const QString& sRefusal);
    void forgetAll();

private:
    struct SkVerdict {
        SkLibraryStamp stamp;
        QString refusal;
    };

    void read();
    void write() const;

    QString m_sFileName;
    QString m_sHost;
    QHash<QString, SkVerdict> m_verdicts;
};
