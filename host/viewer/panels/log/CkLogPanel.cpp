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
    m_model = new CkLogModel(this);
    m_filter = new CkLogFilter(this);
    m_filter->setSourceModel(m_model);
    createView();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setSpacing(4);
    layout->addLayout(createFilterBar());
    layout->addWidget(m_view, 1);
    for (const SkLogEntry& entry : CkLogSink::instance()->entries()) {
        m_model->add(entry);
    }
    // Queued also on this thread: logging must not wait for the view.
    connect(
        CkLogSink::instance(), &CkLogSink::entryAdded, this,
        [this](const SkLogEntry& entry) {
            const QScrollBar* scroll = m_view->verticalScrollBar();
            const bool atEnd = scroll->value() == scroll->maximum();
            m_model->add(entry);
            if (atEnd) {
                m_view->scrollToBottom();
            }
        },
        Qt::QueuedConnection);
}

void CkLogPanel::createView() {
    m_view = new QTreeView(this);
    m_view->setModel(m_filter);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setColumnWidth(CkLogModel::TimeColumn,
                           fontMetrics().horizontalAdvance(QStringLiteral("00:00:00.0000 ")));
    m_view->setColumnWidth(CkLogModel::LevelColumn,
                           fontMetrics().horizontalAdvance(QStringLiteral("Warning    ")));
    auto* copy = new QAction(tr("Copy log lines"), m_view);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &CkLogPanel::copySelected);
    m_view->addAction(copy);
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QLayout* CkLogPanel::createFilterBar() {
    m_level = new QComboBox(this);
    m_level->setObjectName(QStringLiteral("logLevel"));
    for (int severity = 0; severity < 4; ++severity) {
        m_level->addItem(severity == 0   ? tr("Everything")
                         : severity == 3 ? tr("Errors")
                                         : tr("%1 and above").arg(CkLogModel::levelText(severity)));
    }
    m_level->setToolTip(tr("Least important messages that are shown"));
    m_search = new QLineEdit(this);
    m_search->setObjectName(QStringLiteral("logSearch"));
    m_search->setPlaceholderText(tr("Search (Ctrl+F)"));
    m_search->setClearButtonEnabled(true);
    auto* clear = new QToolButton(this);
    clear->setText(tr("Clear"));
    auto* bar = new QHBoxLayout;
    bar->addWidget(m_level);
    bar->addWidget(m_search, 1);
    bar->addWidget(clear);
    connect(m_level, &QComboBox::currentIndexChanged, m_filter, &CkLogFilter::setMinimumSeverity);
    connect(m_search, &QLineEdit::textChanged, m_filter, &CkLogFilter::setSearchText);
    connect(clear, &QToolButton::clicked, m_model, &CkLogModel::clear);
    return bar;
}

void CkLogPanel::focusSearch() {
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

void CkLogPanel::copySelected() {
    QStringList lines;
    for (const QModelIndex& row : m_view->selectionModel()->selectedRows()) {
        QStringList cells;
        for (int column = 0; column < CkLogModel::ColumnCount; ++column) {
            cells.append(row.siblingAtColumn(column).data().toString());
        }
        lines.append(cells.join(QLatin1Char('\t')));
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}
