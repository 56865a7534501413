#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

/// Identifies the state of a library file.
struct SkLibraryStamp {
    qint64 size = -1;
    qint64 timeMs = 0; ///< last change, milliseconds since 1970
    QByteArray hash;   ///< of the content

    /// Reads the whole file. std::nullopt when it is no regular file or cannot be read.
    static std::optional<SkLibraryStamp> of(const QString& sLibrary);
    bool operator==(const SkLibraryStamp&) const = default;
};

/// Caches in a file, written at each change, which libraries may be loaded. When the file cannot be read or
/// written, every start checks again. User-interface thread.
class CkPluginVerdictCache {
public:
    /// sHost identifies the program that the verdicts hold for; those of another one are dropped.
    CkPluginVerdictCache(const QString& sFileName, const QString& sHost);

    /// Why the library was refused, empty when it may be loaded. std::nullopt for a library that is unknown
    /// or has changed since.
    std::optional<QString> find(const QString& sLibrary, const SkLibraryStamp& stamp) const;

    /// An empty refusal: the library may be loaded. Drops the verdicts of libraries that no longer exist.
    void insert(const QString& sLibrary, const SkLibraryStamp& stamp, const QString& sRefusal);
    void clear();

private:
    struct SkVerdict {
        SkLibraryStamp stamp;
        QString refusal;
    };

    void read();
    void write() const;

    QString m_fileName;
    QString m_host;
    QHash<QString, SkVerdict> m_verdicts;
};
