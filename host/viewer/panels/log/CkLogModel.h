#pragma once

#include "host/viewer/panels/log/CkLogSink.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

/// The log as a table: time, level, source, text. User-interface thread.
class CkLogModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum EkColumn : int { TimeColumn, LevelColumn, TextColumn, ColumnCount };
    static constexpr int kSeverityRole = Qt::UserRole;

    explicit CkLogModel(QObject* pParent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int iRole) const override;
    QVariant headerData(int iSection, Qt::Orientation orientation, int iRole) const override;

    void add(const SkLogEntry& entry);
    void clear();

    /// 0 debug, 1 information, 2 warning, 3 error.
    static int severity(QtMsgType type);
    static QString levelText(int iSeverity);
    /// Whether an entry has the highest level only to pass every filter: a part of the program tells what it
    /// runs on. It is no error and does not look like one.
    static bool isAnnouncement(const SkLogEntry& entry);

private:
    QList<SkLogEntry> m_entries;
};

/// The rows of a log from a severity upwards that contain a text.
class CkLogFilter : public QSortFilterProxyModel {
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    void setMinimumSeverity(int iSeverity);
    void setSearchText(const QString& sText);

protected:
    bool filterAcceptsRow(int iRow, const QModelIndex& parent) const override;

private:
    int m_iMinimum = 0;
    QString m_sSearch;
};
