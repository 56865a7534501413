#include "host/viewer/panels/chain/CkChainPanel.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/panels/chain/ChainEditor.h"
#include "host/viewer/panels/chain/CkBlockDialogs.h"
#include "host/viewer/panels/chain/CkChainTree.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageSource.h"
#include "zuCore/CkRTTI.h"
#include "zuCoreGui/CkMdiView.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
constexpr int kCounterMs = 500;
}

CkChainPanel::CkChainPanel(CkViewArea* pArea, QWidget* pParent) : QWidget(pParent), m_area(pArea) {
    setObjectName(QStringLiteral("chainPanel"));
    m_dialogs = new CkBlockDialogs(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    m_title = new QLabel(this);
    m_title->setTextFormat(Qt::PlainText);
    layout->addWidget(m_title);
    m_tree = new CkChainTree(this);
    layout->addWidget(m_tree, 1);
    createActions();
    createButtons(layout);

    connect(m_addMenu, &QMenu::aboutToShow, this, &CkChainPanel::fillAddMenu);
    connect(m_tree, &QTreeWidget::itemSelectionChanged, this, &CkChainPanel::updateButtons);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &CkChainPanel::updateButtons);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, &CkChainPanel::configureSelected);
    connect(m_dialogs, &CkBlockDialogs::closed, m_tree, &CkChainTree::refreshCounters);
    connect(m_area, &CkViewArea::activeViewChanged, this, &CkChainPanel::refresh);
    m_refreshTimer.setInterval(kCounterMs);
    connect(&m_refreshTimer, &QTimer::timeout, this, [this] {
        if (isVisible()) {
            m_tree->refreshCounters();
            showTitle();
            updateButtons();
        }
    });
    m_refreshTimer.start();
    refresh();
}

CkChainPanel::~CkChainPanel() {
    // Before the tree is destroyed: it is refreshed when a dialog closes.
    delete m_dialogs;
}

void CkChainPanel::createActions() {
    m_addMenu = new QMenu(tr("&Add Block"), this);
    m_addMenu->setObjectName(QStringLiteral("menuAddBlock"));
    m_addMenu->setToolTipsVisible(true);
    m_configureAction = addAction(tr("&Configure Block..."), this, &CkChainPanel::configureSelected);
    m_configureAction->setIconText(tr("Configure..."));
    m_configureAction->setShortcut(Qt::CTRL | Qt::Key_B);
    m_toggleAction = addAction(tr("Switch Block &Off"), this, &CkChainPanel::toggleSelected);
    m_toggleAction->setShortcut(Qt::CTRL | Qt::Key_D);
    m_removeAction = addAction(tr("&Remove Block"), this, &CkChainPanel::removeSelected);
    m_removeAction->setIconText(tr("Remove"));
    m_removeAction->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_D);
    m_helpAction = addAction(tr("&Help for Block"), this, &CkChainPanel::helpSelected);
    m_helpAction->setIconText(tr("Help"));
    m_helpAction->setShortcut(Qt::CTRL | Qt::Key_F1);
}

void CkChainPanel::createButtons(QVBoxLayout* pLayout) {
    m_addButton = addButton(tr("Add"), QStringLiteral("btnAddBlock"));
    m_addButton->setMenu(m_addMenu);
    m_addButton->setPopupMode(QToolButton::InstantPopup);
    auto* first = new QHBoxLayout;
    first->addWidget(m_addButton);
    first->addWidget(addButtonFor(m_configureAction, QStringLiteral("btnConfigureBlock")));
    first->addWidget(addButtonFor(m_toggleAction, QStringLiteral("btnToggleBlock")));
    first->addWidget(addButtonFor(m_removeAction, QStringLiteral("btnRemoveBlock")));
    first->addStretch();
    auto* second = new QHBoxLayout;
    second->addWidget(addButtonFor(m_helpAction, QStringLiteral("btnHelpBlock")));
    second->addStretch();
    m_saveButton = addButton(tr("Save..."), QStringLiteral("btnSaveChain"));
    QToolButton* load = addButton(tr("Open..."), QStringLiteral("btnLoadChain"));
    load->setToolTip(tr("Open a chain file with views on its ends (Ctrl+O)"));
    second->addWidget(load);
    second->addWidget(m_saveButton);
    pLayout->addLayout(first);
    pLayout->addLayout(second);
    connect(m_saveButton, &QToolButton::clicked, this, &CkChainPanel::saveRequested);
    connect(load, &QToolButton::clicked, this, &CkChainPanel::loadRequested);
}

QToolButton* CkChainPanel::addButton(const QString& sText, const QString& sName) {
    auto* button = new QToolButton(this);
    button->setText(sText);
    button->setObjectName(sName);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

QToolButton* CkChainPanel::addButtonFor(QAction* pAction, const QString& sName) {
    QToolButton* button = addButton(pAction->iconText(), sName);
    button->setDefaultAction(pAction);
    return button;
}

QList<QAction*> CkChainPanel::menuActions() const {
    return {m_configureAction, m_toggleAction, m_removeAction, m_helpAction};
}

void CkChainPanel::refresh() {
    CkMdiView* view = m_area->activeView();
    if (m_view != view) {
        if (m_view) {
            disconnect(m_view, &CkMdiView::dataProviderChanged, this, nullptr);
        }
        m_view = view;
        if (view != nullptr) {
            connect(view, &CkMdiView::dataProviderChanged, this, &CkChainPanel::refresh,
                    Qt::QueuedConnection);
        }
    }
    CkChainable* shown = view != nullptr ? view->dataProvider() : nullptr;
    CkChain* chain = shown != nullptr ? shown->chain() : nullptr;
    m_tree->setChain(chain, shown);
    showTitle();
    updateButtons();
}

// Part of every refresh: the titles of blocks change with their settings.
void CkChainPanel::showTitle() {
    const CkChain* const chain = m_tree->chain();
    const QString title = chain != nullptr ? chain->chainTitle(m_view ? m_view->dataProvider() : nullptr)
                          : m_view         ? tr("The active view shows no chain")
                                           : tr("No view is active");
    m_title->setText(m_title->fontMetrics().elidedText(title, Qt::ElideMiddle, 300));
    m_title->setToolTip(title);
}

void CkChainPanel::updateButtons() {
    CkChainable* block = m_tree->selectedBlock();
    const bool chain = m_tree->chain() != nullptr;
    const bool source = block != nullptr && ChainEditor::isSource(block);
    const QString none = tr("Select a block first");
    const QString addHint =
        chain ? tr("Add a block after the selected one") : tr("The active view shows no chain");
    m_addButton->setEnabled(chain);
    m_addButton->setToolTip(addHint);
    m_addMenu->menuAction()->setEnabled(chain);
    m_addMenu->menuAction()->setToolTip(addHint);
    m_configureAction->setEnabled(block != nullptr);
    m_configureAction->setToolTip(block != nullptr ? tr("Open the settings of the selected block") : none);
    const bool off = block != nullptr && block->state() == CkChainable::Blocked;
    m_toggleAction->setText(off ? tr("Switch Block &On") : tr("Switch Block &Off"));
    m_toggleAction->setIconText(off ? tr("On") : tr("Off"));
    m_toggleAction->setEnabled(block != nullptr && !source);
    m_toggleAction->setToolTip(block == nullptr ? none
                               : source         ? tr("A source is started and stopped with its camera")
                               : off            ? tr("Switch the block on again")
                                                : tr("Switch the block off: it then delivers nothing"));
    m_removeAction->setEnabled(block != nullptr && !source);
    m_removeAction->setToolTip(block == nullptr ? none
                               : source         ? tr("A source stays as long as its chain")
                                                : tr("Take the block out of the chain"));
    const bool help = block != nullptr && block->hasHelp();
    m_helpAction->setEnabled(help);
    m_helpAction->setToolTip(help               ? tr("Explain the selected block")
                             : block != nullptr ? tr("This block has no help")
                                                : none);
    m_saveButton->setEnabled(chain);
    m_saveButton->setToolTip(chain ? tr("Save the chain to a file (Ctrl+S)")
                                   : tr("The active view shows no chain"));
}

void CkChainPanel::fillAddMenu() {
    m_addMenu->clear();
    QMenu* branch = nullptr;
    for (const SkRegisteredClass& entry : CkRTTI::instance()->classes(QStringLiteral("CkChainable"))) {
        if (entry.metaObject != nullptr && entry.metaObject->inherits(&CkImageSource::staticMetaObject)) {
            continue;
        }
        if (branch == nullptr) {
            branch = new QMenu(tr("As a branch with its own view"), m_addMenu);
        }
        m_addMenu->addAction(entry.customName, this, [this, id = entry.uniqueId] { addBlock(id, false); })
            ->setData(entry.uniqueId);
        branch->addAction(entry.customName, this, [this, id = entry.uniqueId] { addBlock(id, true); })
            ->setData(entry.uniqueId);
    }
    if (branch != nullptr) {
        m_addMenu->addSeparator();
        m_addMenu->addMenu(branch);
    } else {
        QAction* none = m_addMenu->addAction(tr("No plug-in offers a block"));
        none->setEnabled(false);
        none->setToolTip(tr("Blocks are provided by plug-ins, and none is loaded"));
    }
}

CkChainable* CkChainPanel::addBlock(const QString& sUniqueId, bool bBranch) {
    CkChainable* after = m_tree->selectedBlock();
    if (after == nullptr && m_area->activeView() != nullptr) {
        after = m_area->activeView()->dataProvider();
    }
    QString error;
    CkChainable* block = ChainEditor::createBlock(sUniqueId, error);
    if (block == nullptr || !(bBranch ? ChainEditor::branchAfter(block, after, error)
                                      : ChainEditor::insertAfter(block, after, error))) {
        showProblem(error);
        return nullptr;
    }
    if (bBranch) {
        emit viewRequested(block);
    }
    refresh();
    m_tree->selectBlock(block);
    return block;
}

void CkChainPanel::configureSelected() {
    CkChainable* block = m_tree->selectedBlock();
    if (block == nullptr) {
        return;
    }
    if (!m_dialogs->configure(block)) {
        showProblem(tr("\"%1\" has nothing to configure.").arg(block->title()));
    }
}

void CkChainPanel::removeSelected() {
    CkChainable* block = m_tree->selectedBlock();
    if (block == nullptr) {
        return;
    }
    m_dialogs->close(block);
    QString error;
    if (!ChainEditor::remove(block, error)) {
        showProblem(error);
    }
    refresh();
}

void CkChainPanel::helpSelected() {
    CkChainable* block = m_tree->selectedBlock();
    if (block != nullptr && block->hasHelp()) {
        m_dialogs->help(block);
    }
}

void CkChainPanel::toggleSelected() {
    CkChainable* block = m_tree->selectedBlock();
    if (block != nullptr && !ChainEditor::isSource(block)) {
        block->setState(block->state() == CkChainable::Blocked ? CkChainable::Ready : CkChainable::Blocked);
        m_tree->refreshCounters();
        updateButtons();
    }
}

void CkChainPanel::showProblem(const QString& sText) {
    // Not modal: frames keep arriving, and the caller must not block.
    auto* box =
        new QMessageBox(QMessageBox::Warning, tr("Processing Chain"), sText, QMessageBox::Ok, window());
    box->setObjectName(QStringLiteral("chainProblemBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
}
