#pragma once

#include <QDateTime>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>

/// A message of Qt's message logging.
struct SkLogEntry {
    QDateTime time;
    QtMsgType type = QtInfoMsg;
    QString category;
    QString text;
};

/// Receives all messages of Qt's message logging, keeps the newest ones and passes each on to the handler
/// that was installed before (the terminal). Any thread.
class CkLogSink : public QObject {
    Q_OBJECT

public:
    static constexpr int kMaximumEntries = 10'000; ///< older ones are dropped

    static CkLogSink* instance();

    /// Installs the message handler; a second call is a no-op.
    void install();
    /// Restores the previous handler.
    void uninstall();

    /// The newest entries, oldest first.
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
    bool m_installed = false;
};
