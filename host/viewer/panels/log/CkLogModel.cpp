#include "host/viewer/panels/log/CkLogModel.h"

#include <QColor>

CkLogModel::CkLogModel(QObject* pParent) : QAbstractTableModel(pParent) {}

int CkLogModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_entries.size());
}

int CkLogModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

int CkLogModel::severity(QtMsgType type) {
    switch (type) {
    case QtDebugMsg:
        return 0;
    case QtInfoMsg:
        return 1;
    case QtWarningMsg:
        return 2;
    default:
        return 3;
    }
}

QString CkLogModel::levelText(int iSeverity) {
    const QStringList texts = {tr("Debug"), tr("Info"), tr("Warning"), tr("Error")};
    return texts.value(iSeverity);
}

bool CkLogModel::isAnnouncement(const SkLogEntry& entry) {
    return entry.type == QtCriticalMsg && entry.text.startsWith(QLatin1String("Starting ToF 3D with "));
}

QVariant CkLogModel::data(const QModelIndex& index, int iRole) const {
    if (!index.isValid() || index.row() >= m_entries.size()) {
        return {};
    }
    const SkLogEntry& entry = m_entries[index.row()];
    const int level = severity(entry.type);
    if (iRole == kSeverityRole) {
        return level;
    }
    const int shown = isAnnouncement(entry) ? severity(QtInfoMsg) : level;
    if (iRole == Qt::ForegroundRole && shown >= 2) {
        return shown == 2 ? QColor(0x9a, 0x5b, 0x00) : QColor(0xb0, 0x20, 0x20);
    }
    if (iRole == Qt::ToolTipRole) {
        return entry.category.isEmpty() || entry.category == QLatin1String("default")
                   ? entry.text
                   : entry.category + QLatin1String(": ") + entry.text;
    }
    if (iRole != Qt::DisplayRole) {
        return {};
    }
    switch (index.column()) {
    case TimeColumn:
        return entry.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    case LevelColumn:
        return levelText(shown);
    default:
        return entry.text;
    }
}

QVariant CkLogModel::headerData(int iSection, Qt::Orientation orientation, int iRole) const {
    if (orientation != Qt::Horizontal || iRole != Qt::DisplayRole) {
        return {};
    }
    const QStringList texts = {tr("Time"), tr("Level"), tr("Message")};
    return texts.value(iSection);
}

void CkLogModel::add(const SkLogEntry& entry) {
    if (m_entries.size() >= CkLogSink::kMaximumEntries) {
        beginRemoveRows({}, 0, 0);
        m_entries.removeFirst();
        endRemoveRows();
    }
    const int row = int(m_entries.size());
    beginInsertRows({}, row, row);
    m_entries.append(entry);
    endInsertRows();
}

void CkLogModel::clear() {
    beginResetModel();
    m_entries.clear();
    endResetModel();
}

void CkLogFilter::setMinimumSeverity(int iSeverity) {
    m_minimum = iSeverity;
    invalidateFilter();
}

void CkLogFilter::setSearchText(const QString& sText) {
    m_search = sText;
    invalidateFilter();
}

bool CkLogFilter::filterAcceptsRow(int iRow, const QModelIndex& parent) const {
    const QModelIndex text = sourceModel()->index(iRow, CkLogModel::TextColumn, parent);
    return text.data(CkLogModel::kSeverityRole).toInt() >= m_minimum &&
           (m_search.isEmpty() || text.data().toString().contains(m_search, Qt::CaseInsensitive));
}
