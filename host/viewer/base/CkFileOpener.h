#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

/// A kind of file that the viewer opens.
struct SkFileKind {
    QString id;           ///< "chain", "recording"
    QString title;        ///< plural, for file dialogs: "Recordings"
    QStringList suffixes; ///< without dot, lower case
    /// Whether a file that begins with these bytes (at most CkFileOpener::kFirstBytes) is of this kind; null:
    /// only the suffix decides.
    std::function<bool(const QByteArray& sFirstBytes)> recognises;
    /// False, with sError naming the file and the reason, or empty when the user cancelled.
    std::function<bool(const QString& sFileName, QString& sError)> open;
};

/// Opens files of every kind, from the menu, the command line, drag and drop, and the list of recent files.
///
/// The contents decide; where they are inconclusive, the suffix does. Kinds are tried in the order in which
/// they were added. User-interface thread.
class CkFileOpener : public QObject {
    Q_OBJECT

public:
    static constexpr qint64 kFirstBytes = 512;

    explicit CkFileOpener(QObject* pParent = nullptr);

    void addKind(const SkFileKind& kind);

    /// The identifier of the kind; empty, with sError naming the file and the reason, when the file cannot be
    /// read or is of no known kind.
    QString kindOf(const QString& sFileName, QString& sError) const;

    /// False, with sError naming the file and the reason, or empty when the user cancelled.
    bool open(const QString& sFileName, QString& sError);

    /// For file dialogs: all kinds together first, then each one, all files last. With sId only that kind.
    QString dialogFilter(const QString& sId = QString()) const;

signals:
    /// A file was opened; sFileName is absolute.
    void opened(const QString& sFileName, const QString& sKindId);

private:
    const SkFileKind* find(const QString& sFileName, QString& sError) const;

    QList<SkFileKind> m_kinds;
};
