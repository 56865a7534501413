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

CkChainPanel::CkChainPanel(CkViewArea* pArea, QWidget* pParent) : QWidget(pParent), m_pArea(pArea) {
    setObjectName(QStringLiteral("chainPanel"));
    m_pDialogs = new CkBlockDialogs(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    m_pTitle = new QLabel(this);
    m_pTitle->setTextFormat(Qt::PlainText);
    layout->addWidget(m_pTitle);
    m_pTree = new CkChainTree(this);
    layout->addWidget(m_pTree, 1);
    createActions();
    createButtons(layout);

    connect(m_pAddMenu, &QMenu::aboutToShow, this, &CkChainPanel::fillAddMenu);
    connect(m_pTree, &QTreeWidget::itemSelectionChanged, this, &CkChainPanel::updateButtons);
    connect(m_pTree, &QTreeWidget::currentItemChanged, this, &CkChainPanel::updateButtons);
    connect(m_pTree, &QTreeWidget::itemDoubleClicked, this, &CkChainPanel::configureSelected);
    connect(m_pDialogs, &CkBlockDialogs::closed, m_pTree, &CkChainTree::refreshCounters);
    connect(m_pArea, &CkViewArea::activeViewChanged, this, &CkChainPanel::refresh);
    m_counters.setInterval(kCounterMs);
    connect(&m_counters, &QTimer::timeout, this, [this] {
        if (isVisible()) {
            m_pTree->refreshCounters();
            showTitle();
            updateButtons();
        }
    });
    m_counters.start();
    refresh();
}

CkChainPanel::~CkChainPanel() {
    // Before the tree is destroyed: it is refreshed when a dialog closes.
    delete m_pDialogs;
}

void CkChainPanel::createActions() {
    m_pAddMenu = new QMenu(tr("&Add Block"), this);
    m_pAddMenu->setObjectName(QStringLiteral("menuAddBlock"));
    m_pAddMenu->setToolTipsVisible(true);
    m_pConfigureAction = addAction(tr("&Configure Block..."), this, &CkChainPanel::configureSelected);
    m_pConfigureAction->setIconText(tr("Configure..."));
    m_pConfigureAction->setShortcut(Qt::CTRL | Qt::Key_B);
    m_pToggleAction = addAction(tr("Switch Block &Off"), this, &CkChainPanel::toggleSelected);
    m_pToggleAction->setShortcut(Qt::CTRL | Qt::Key_D);
    m_pRemoveAction = addAction(tr("&Remove Block"), this, &CkChainPanel::removeSelected);
    m_pRemoveAction->setIconText(tr("Remove"));
    m_pRemoveAction->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_D);
    m_pHelpAction = addAction(tr("&Help for Block"), this, &CkChainPanel::helpSelected);
    m_pHelpAction->setIconText(tr("Help"));
    m_pHelpAction->setShortcut(Qt::CTRL | Qt::Key_F1);
}

void CkChainPanel::createButtons(QVBoxLayout* pLayout) {
    m_pAddButton = addButton(tr("Add"), QStringLiteral("btnAddBlock"));
    m_pAddButton->setMenu(m_pAddMenu);
    m_pAddButton->setPopupMode(QToolButton::InstantPopup);
    auto* first = new QHBoxLayout;
    first->addWidget(m_pAddButton);
    first->addWidget(addButtonFor(m_pConfigureAction, QStringLiteral("btnConfigureBlock")));
    first->addWidget(addButtonFor(m_pToggleAction, QStringLiteral("btnToggleBlock")));
    first->addWidget(addButtonFor(m_pRemoveAction, QStringLiteral("btnRemoveBlock")));
    first->addStretch();
    auto* second = new QHBoxLayout;
    second->addWidget(addButtonFor(m_pHelpAction, QStringLiteral("btnHelpBlock")));
    second->addStretch();
    m_pSaveButton = addButton(tr("Save..."), QStringLiteral("btnSaveChain"));
    QToolButton* load = addButton(tr("Open..."), QStringLiteral("btnLoadChain"));
    load->setToolTip(tr("Open a chain file with views on its ends (Ctrl+O)"));
    second->addWidget(load);
    second->addWidget(m_pSaveButton);
    pLayout->addLayout(first);
    pLayout->addLayout(second);
    connect(m_pSaveButton, &QToolButton::clicked, this, &CkChainPanel::saveRequested);
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
    return {m_pConfigureAction, m_pToggleAction, m_pRemoveAction, m_pHelpAction};
}

void CkChainPanel::refresh() {
    CkMdiView* view = m_pArea->activeView();
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
    m_pTree->setChain(chain, shown);
    showTitle();
    updateButtons();
}

// Part of every refresh: the titles of blocks change with their settings.
void CkChainPanel::showTitle() {
    const CkChain* const chain = m_pTree->chain();
    const QString title = chain != nullptr ? chain->chainTitle(m_view ? m_view->dataProvider() : nullptr)
                          : m_view         ? tr("The active view shows no chain")
                                           : tr("No view is active");
    m_pTitle->setText(m_pTitle->fontMetrics().elidedText(title, Qt::ElideMiddle, 300));
    m_pTitle->setToolTip(title);
}

void CkChainPanel::updateButtons() {
    CkChainable* block = m_pTree->selectedBlock();
    const bool chain = m_pTree->chain() != nullptr;
    const bool source = block != nullptr && ChainEditor::isSource(block);
    const QString none = tr("Select a block first");
    const QString addHint =
        chain ? tr("Add a block behind the selected one") : tr("The active view shows no chain");
    m_pAddButton->setEnabled(chain);
    m_pAddButton->setToolTip(addHint);
    m_pAddMenu->menuAction()->setEnabled(chain);
    m_pAddMenu->menuAction()->setToolTip(addHint);
    m_pConfigureAction->setEnabled(block != nullptr);
    m_pConfigureAction->setToolTip(block != nullptr ? tr("Open the settings of the selected block") : none);
    const bool off = block != nullptr && block->state() == CkChainable::Blocked;
    m_pToggleAction->setText(off ? tr("Switch Block &On") : tr("Switch Block &Off"));
    m_pToggleAction->setIconText(off ? tr("On") : tr("Off"));
    m_pToggleAction->setEnabled(block != nullptr && !source);
    m_pToggleAction->setToolTip(block == nullptr ? none
                                : source         ? tr("A source is switched with its camera")
                                : off            ? tr("Let the block work again")
                                                 : tr("Switch the block off: it then delivers nothing"));
    m_pRemoveAction->setEnabled(block != nullptr && !source);
    m_pRemoveAction->setToolTip(block == nullptr ? none
                                : source         ? tr("A source stays as long as its chain")
                                                 : tr("Take the block out of the chain"));
    const bool help = block != nullptr && block->hasHelp();
    m_pHelpAction->setEnabled(help);
    m_pHelpAction->setToolTip(help               ? tr("Explain the selected block")
                              : block != nullptr ? tr("This block brings no help")
                                                 : none);
    m_pSaveButton->setEnabled(chain);
    m_pSaveButton->setToolTip(chain ? tr("Save the chain to a file (Ctrl+S)")
                                    : tr("The active view shows no chain"));
}

void CkChainPanel::fillAddMenu() {
    m_pAddMenu->clear();
    QMenu* branch = nullptr;
    for (const SkRegisteredClass& entry : CkRTTI::instance()->classes(QStringLiteral("CkChainable"))) {
        if (entry.metaObject != nullptr && entry.metaObject->inherits(&CkImageSource::staticMetaObject)) {
            continue;
        }
        if (branch == nullptr) {
            branch = new QMenu(tr("As a branch with its own view"), m_pAddMenu);
        }
        m_pAddMenu->addAction(entry.customName, this, [this, id = entry.uniqueId] { addBlock(id, false); })
            ->setData(entry.uniqueId);
        branch->addAction(entry.customName, this, [this, id = entry.uniqueId] { addBlock(id, true); })
            ->setData(entry.uniqueId);
    }
    if (branch != nullptr) {
        m_pAddMenu->addSeparator();
        m_pAddMenu->addMenu(branch);
    } else {
        QAction* none = m_pAddMenu->addAction(tr("No plug-in offers a block"));
        none->setEnabled(false);
        none->setToolTip(tr("Blocks come with plug-ins, and none is loaded"));
    }
}

CkChainable* CkChainPanel::addBlock(const QString& sUniqueId, bool bBranch) {
    CkChainable* after = m_pTree->selectedBlock();
    if (after == nullptr && m_pArea->activeView() != nullptr) {
        after = m_pArea->activeView()->dataProvider();
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
    m_pTree->selectBlock(block);
    return block;
}

void CkChainPanel::configureSelected() {
    CkChainable* block = m_pTree->selectedBlock();
    if (block == nullptr) {
        return;
    }
    if (!m_pDialogs->configure(block)) {
        showProblem(tr("\"%1\" has nothing to configure.").arg(block->title()));
    }
}

void CkChainPanel::removeSelected() {
    CkChainable* block = m_pTree->selectedBlock();
    if (block == nullptr) {
        return;
    }
    m_pDialogs->close(block);
    QString error;
    if (!ChainEditor::remove(block, error)) {
        showProblem(error);
    }
    refresh();
}

void CkChainPanel::helpSelected() {
    CkChainable* block = m_pTree->selectedBlock();
    if (block != nullptr && block->hasHelp()) {
        m_pDialogs->help(block);
    }
}

void CkChainPanel::toggleSelected() {
    CkChainable* block = m_pTree->selectedBlock();
    if (block != nullptr && !ChainEditor::isSource(block)) {
        block->setState(block->state() == CkChainable::Blocked ? CkChainable::Ready : CkChainable::Blocked);
        m_pTree->refreshCounters();
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
