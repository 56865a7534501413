#pragma once

#include "host/viewer/panels/log/CkLogSink.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

/// The log as a table: time, level, text. User-interface thread.
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
    /// Whether an entry is logged at the highest level only to pass every filter, such as the graphics
    /// information when the 3D view starts. It is not shown as an error.
    static bool isAnnouncement(const SkLogEntry& entry);

private:
    QList<SkLogEntry> m_entries;
};

/// The entries with a minimum severity that contain a text. User-interface thread.
class CkLogFilter : public QSortFilterProxyModel {
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    void setMinimumSeverity(int iSeverity);
    void setSearchText(const QString& sText);

protected:
    bool filterAcceptsRow(int iRow, const QModelIndex& parent) const override;

private:
    int m_minimum = 0;
    QString m_search;
};
