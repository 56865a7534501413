#include "host/viewer/panels/camera/CkCameraPanel.h"

#include "host/viewer/panels/camera/CkParamEditor.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraParameters.h"

#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

CkCameraPanel::CkCameraPanel(void* pCameraHandle, QWidget* pParent)
    : QWidget(pParent), m_cameraHandle(pCameraHandle) {
    setObjectName(QStringLiteral("cameraPanel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(createControls());
    m_toolArea = new QVBoxLayout;
    layout->addLayout(m_toolArea);
    auto* line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);
    showParameters();

    CkCameraManager* manager = CkCameraManager::instance();
    connect(manager, &CkCameraManager::acquisitionChanged, this, [this](void* pHandle) {
        if (pHandle == m_cameraHandle) {
            showState();
        }
    });
    connect(manager, &CkCameraManager::cameraUnplugged, this, [this](void* pHandle) {
        if (pHandle == m_cameraHandle) {
            showState();
        }
    });
    connect(manager, &CkCameraManager::cameraPluggedIn, this, [this](void* pHandle) {
        if (pHandle == m_cameraHandle) {
            showParameters();
            showState();
        }
    });
    showState();
}

void CkCameraPanel::detach() {
    CkCameraManager::instance()->disconnect(this);
    delete m_parameters;
    m_parameters = nullptr;
}

void CkCameraPanel::showParameters() {
    // Before the camera's parameters are replaced: editors must not outlive their parameters.
    delete m_parameters;
    m_parameters = createParameters(CkCameraManager::instance()->cameraParameters(m_cameraHandle));
    static_cast<QVBoxLayout*>(layout())->addWidget(m_parameters, 1);
}

QWidget* CkCameraPanel::createControls() {
    auto* controls = new QWidget(this);
    auto* grid = new QGridLayout(controls);
    grid->setContentsMargins(0, 0, 0, 0);
    SkCameraInfo info;
    CkCameraManager::instance()->cameraInfo(m_cameraHandle, info);
    auto* name = new QLabel(QStringLiteral("<b>%1</b>").arg(info.name.toHtmlEscaped()), controls);
    name->setToolTip(tr("Model %1, serial number %2\nIdentifier %3").arg(info.model, info.serial, info.id));
    name->setWordWrap(true);
    m_stateLabel = new QLabel(controls);
    m_stateLabel->setObjectName(QStringLiteral("cameraState"));
    grid->addWidget(name, 0, 0, 1, 3);
    grid->addWidget(m_stateLabel, 0, 3, Qt::AlignRight);

    m_startButton = new QPushButton(controls);
    m_startButton->setObjectName(QStringLiteral("btnStart"));
    m_pauseButton = new QPushButton(tr("Pause"), controls);
    m_pauseButton->setObjectName(QStringLiteral("btnPause"));
    m_pauseButton->setCheckable(true);
    m_stepButton = new QPushButton(tr("Step"), controls);
    m_stepButton->setObjectName(QStringLiteral("btnStep"));
    auto* view = new QPushButton(tr("New View"), controls);
    view->setObjectName(QStringLiteral("btnNewView"));
    view->setToolTip(tr("Open another picture view with a chain of its own on this camera"));
    grid->addWidget(m_startButton, 1, 0);
    grid->addWidget(m_pauseButton, 1, 1);
    grid->addWidget(m_stepButton, 1, 2);
    grid->addWidget(view, 1, 3);
    for (int column = 0; column < 4; ++column) {
        grid->setColumnStretch(column, 1);
    }
    connect(m_startButton, &QPushButton::clicked, this, &CkCameraPanel::toggleAcquisition);
    connect(m_pauseButton, &QPushButton::toggled, this, &CkCameraPanel::setPaused);
    connect(m_stepButton, &QPushButton::clicked, this, &CkCameraPanel::step);
    connect(view, &QPushButton::clicked, this, [this] { emit newViewRequested(m_cameraHandle); });
    return controls;
}

QScrollArea* CkCameraPanel::createParameters(CkCameraParameters* pParameters) {
    auto* content = new QWidget;
    auto* form = new QFormLayout(content);
    form->setContentsMargins(0, 4, 6, 4);
    form->setVerticalSpacing(5);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    if (pParameters != nullptr) {
        for (CkCameraParam* param : pParameters->params()) {
            auto* editor = new CkParamEditor(param, content);
            editor->setObjectName(QStringLiteral("param_") + param->name());
            auto* label = new QLabel(param->description().displayName, content);
            label->setToolTip(editor->toolTip());
            label->setBuddy(editor);
            form->addRow(label, editor);
            connect(editor, &CkParamEditor::refused, this, [](const QString& sName) {
                qWarning("%s", qUtf8Printable(tr("The camera refused the value for \"%1\".").arg(sName)));
            });
        }
    }
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content);
    content->setAutoFillBackground(false);
    scroll->viewport()->setAutoFillBackground(false);
    return scroll;
}

void CkCameraPanel::addToolLayout(QLayout* pLayout) {
    m_toolArea->addLayout(pLayout);
}

bool CkCameraPanel::isPaused() const {
    return m_pauseButton->isChecked();
}

void CkCameraPanel::toggleAcquisition() {
    if (CkCameraManager::instance()->isAcquiring(m_cameraHandle)) {
        emit stopRequested(m_cameraHandle);
    } else {
        emit startRequested(m_cameraHandle);
    }
}

void CkCameraPanel::setPaused(bool bPaused) {
    if (CkCameraManager::instance()->isAcquiring(m_cameraHandle)) {
        CkCameraManager::instance()->setPaused(m_cameraHandle, bPaused);
        showState();
    }
}

void CkCameraPanel::step() {
    if (CkCameraManager::instance()->isAcquiring(m_cameraHandle)) {
        setPaused(true);
        CkCameraManager::instance()->step(m_cameraHandle);
    }
}

void CkCameraPanel::showState() {
    CkCameraManager* manager = CkCameraManager::instance();
    const bool running = manager->isAcquiring(m_cameraHandle);
    const bool unplugged = manager->isUnplugged(m_cameraHandle);
    const bool paused = running && manager->isPaused(m_cameraHandle);
    {
        const QSignalBlocker blocker(m_pauseButton);
        m_pauseButton->setChecked(paused);
    }
    const QString why = unplugged ? tr("The camera is unplugged") : tr("The camera is stopped");
    m_startButton->setText(running ? tr("Stop") : tr("Start"));
    m_startButton->setEnabled(!unplugged);
    m_startButton->setToolTip(unplugged ? why
                              : running ? tr("Stop the camera and its chains (F5)")
                                        : tr("Start the camera and its chains (F5)"));
    m_pauseButton->setEnabled(running);
    m_pauseButton->setToolTip(running ? tr("Hold the camera without stopping it (F6)") : why);
    m_stepButton->setEnabled(running);
    m_stepButton->setToolTip(running ? tr("Take one set of pictures and hold (F7)") : why);
    // An unplugged camera accepts no values; its last ones are restored when it is plugged in again.
    m_parameters->setEnabled(!unplugged);
    m_parameters->setToolTip(unplugged ? why : QString());
    m_stateLabel->setText(unplugged ? tr("<span style='color:#b02020'>unplugged</span>")
                          : paused  ? tr("<span style='color:#b07000'>paused</span>")
                          : running ? tr("<span style='color:#2e8b3d'>running</span>")
                                    : tr("<span style='color:#777777'>stopped</span>"));
}
