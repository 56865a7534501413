#include "host/viewer/panels/log/CkLogPanel.h"

#include "host/viewer/panels/log/CkLogModel.h"
#include "host/viewer/panels/log/CkLogSink.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

CkLogPanel::CkLogPanel(QWidget* pParent) : QWidget(pParent) {
    setObjectName(QStringLiteral("logPanel"));
    m_pModel = new CkLogModel(this);
    m_pFilter = new CkLogFilter(this);
    m_pFilter->setSourceModel(m_pModel);
    createView();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setSpacing(4);
    layout->addLayout(createFilterBar());
    layout->addWidget(m_pView, 1);
    for (const SkLogEntry& entry : CkLogSink::instance()->entries()) {
        m_pModel->add(entry);
    }
    // Queued also on this thread: logging must not wait for the view.
    connect(
        CkLogSink::instance(), &CkLogSink::entryAdded, this,
        [this](const SkLogEntry& entry) {
            const QScrollBar* scroll = m_pView->verticalScrollBar();
            const bool atEnd = scroll->value() == scroll->maximum();
            m_pModel->add(entry);
            if (atEnd) {
                m_pView->scrollToBottom();
            }
        },
        Qt::QueuedConnection);
}

void CkLogPanel::createView() {
    m_pView = new QTreeView(this);
    m_pView->setModel(m_pFilter);
    m_pView->setRootIsDecorated(false);
    m_pView->setUniformRowHeights(true);
    m_pView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pView->setColumnWidth(CkLogModel::TimeColumn,
                            fontMetrics().horizontalAdvance(QStringLiteral("00:00:00.0000 ")));
    m_pView->setColumnWidth(CkLogModel::LevelColumn,
                            fontMetrics().horizontalAdvance(QStringLiteral("Warning    ")));
    auto* copy = new QAction(tr("Copy log lines"), m_pView);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &CkLogPanel::copySelected);
    m_pView->addAction(copy);
    m_pView->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QLayout* CkLogPanel::createFilterBar() {
    m_pLevel = new QComboBox(this);
    m_pLevel->setObjectName(QStringLiteral("logLevel"));
    for (int severity = 0; severity < 4; ++severity) {
        m_pLevel->addItem(severity == 0   ? tr("Everything")
                          : severity == 3 ? tr("Errors")
                                          : tr("%1 and above").arg(CkLogModel::levelText(severity)));
    }
    m_pLevel->setToolTip(tr("Least important messages that are shown"));
    m_pSearch = new QLineEdit(this);
    m_pSearch->setObjectName(QStringLiteral("logSearch"));
    m_pSearch->setPlaceholderText(tr("Search (Ctrl+F)"));
    m_pSearch->setClearButtonEnabled(true);
    auto* clear = new QToolButton(this);
    clear->setText(tr("Clear"));
    auto* bar = new QHBoxLayout;
    bar->addWidget(m_pLevel);
    bar->addWidget(m_pSearch, 1);
    bar->addWidget(clear);
    connect(m_pLevel, &QComboBox::currentIndexChanged, m_pFilter, &CkLogFilter::setMinimumSeverity);
    connect(m_pSearch, &QLineEdit::textChanged, m_pFilter, &CkLogFilter::setSearchText);
    connect(clear, &QToolButton::clicked, m_pModel, &CkLogModel::clear);
    return bar;
}

void CkLogPanel::focusSearch() {
    m_pSearch->setFocus(Qt::ShortcutFocusReason);
    m_pSearch->selectAll();
}

void CkLogPanel::copySelected() {
    QStringList lines;
    for (const QModelIndex& row : m_pView->selectionModel()->selectedRows()) {
        QStringList cells;
        for (int column = 0; column < CkLogModel::ColumnCount; ++column) {
            cells.append(row.siblingAtColumn(column).data().toString());
        }
        lines.append(cells.join(QLatin1Char('\t')));
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}
