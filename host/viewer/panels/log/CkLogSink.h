#pragma once

#include <QDateTime>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>

struct SkLogEntry {
    QDateTime time;
    QtMsgType type = QtInfoMsg;
    QString category;
    QString text;
};

/// Takes everything that Qt's message logger gets, keeps the newest entries, and still hands it on to where
/// it went before (the terminal). Any thread.
class CkLogSink : public QObject {
    Q_OBJECT

public:
    static constexpr int kKept = 10'000;

    static CkLogSink* instance();

    /// Installs the message handler; a second call does nothing.
    void install();
    /// Puts the old handler back.
    void uninstall();

    /// What was kept so far, oldest first.
    QList<SkLogEntry> entries() const;

signals:
    /// Emitted on the thread that logged.
    void entryAdded(const SkLogEntry& entry);

private:
    CkLogSink() = default;
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& sText);
    void add(const SkLogEntry& entry);

    mutable QMutex m_mutex;
    QList<SkLogEntry> m_entries;
    QtMessageHandler m_previous = nullptr;
    bool m_bInstalled = false;
};
