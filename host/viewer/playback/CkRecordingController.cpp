#include "host/viewer/playback/CkRecordingController.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/playback/CkPlayback.h"
#include "host/viewer/playback/CkRecordButton.h"
#include "host/viewer/playback/CkRecordingJob.h"
#include "host/viewer/playback/CkRecordingManager.h"
#include "host/viewer/playback/CkRecordingOpener.h"
#include "host/viewer/playback/CkRecordingPanel.h"
#include "host/viewer/playback/CkStillPicture.h"
#include "host/viewer/shell/CkMainWindow.h"
#include "host/viewer/shell/CkStatusBar.h"
#include "zuCore/CkChainable.h"

#include <QAction>
#include <QActionGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QStyle>

namespace {
constexpr int kRefreshMs = 250;
}

CkRecordingController::CkRecordingController(CkMainWindow* pWindow)
    : QObject(pWindow), m_pWindow(pWindow), m_pArea(pWindow->area()), m_pCameras(pWindow->cameras()) {
    CkRecordingOpener::registerSource();
    m_pManager = new CkRecordingManager(m_pArea, m_pCameras, pWindow);
    m_pManager->setParent(this);
    m_pPlayback = new CkPlayback(m_pArea, this);
    createActions();
    m_pBar = new CkPlaybackBar(m_pPlayback, m_play);
    m_pPanel = new CkRecordingPanel(m_pManager);
    m_pLamp = new QLabel(pWindow);
    m_pLamp->setObjectName(QStringLiteral("recordingLamp"));
    m_pLamp->hide();
    pWindow->viewStatusBar()->addPermanentWidget(m_pLamp);

    connect(m_pArea, &CkViewArea::activeViewChanged, this, &CkRecordingController::refresh);
    connect(m_pPlayback, &CkPlayback::sourceChanged, this, &CkRecordingController::refresh);
    connect(m_pPlayback, &CkPlayback::settingsChanged, this, &CkRecordingController::refresh);
    connect(m_pManager, &CkRecordingManager::troubled, this, &CkRecordingController::refresh);
    connect(m_pManager, &CkRecordingManager::jobsChanged, this, [this] {
        if (m_pManager->runningCount() > 0) {
            m_timer.start();
            emit panelWanted();
        } else {
            m_timer.stop();
        }
        refresh();
    });
    connect(m_pCameras, &CkCameraController::cameraReady, this, &CkRecordingController::equipCamera);
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &CkRecordingController::refresh);
    refresh();
}

void CkRecordingController::createActions() {
    const auto make = [this](const QString& text, const char* name, const QKeySequence& key, auto slot) {
        auto* action = new QAction(text, this);
        action->setObjectName(QLatin1String(name));
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    m_pRecordSource = make(tr("&Record the Source..."), "actRecordSource", QKeySequence(Qt::CTRL | Qt::Key_R),
                           [this] { m_pManager->recordWithDialog(m_pManager->sourceToRecord()); });
    m_pRecordSource->setIcon(CkRecordButton::icon());
    m_pRecordView =
        make(tr("Record the &View..."), "actRecordView", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
             [this] { m_pManager->recordWithDialog(m_pManager->outputToRecord()); });
    m_pStopAll = make(tr("Stop &All Recordings"), "actStopRecordings", QKeySequence(Qt::CTRL | Qt::Key_E),
                      [this] { m_pManager->stopAll(); });

    const QStyle* style = m_pWindow->style();
    const auto icon = [style](QStyle::StandardPixmap pixmap) { return style->standardIcon(pixmap); };
    m_play.first = make(tr("&First Frame"), "actPlaybackFirst", QKeySequence(Qt::Key_Home),
                        [this] { m_pPlayback->goToFirst(); });
    m_play.first->setIcon(icon(QStyle::SP_MediaSkipBackward));
    m_play.back = make(tr("Step &Back"), "actPlaybackBack", QKeySequence(Qt::Key_Comma),
                       [this] { m_pPlayback->stepBack(); });
    m_play.back->setIcon(icon(QStyle::SP_MediaSeekBackward));
    m_play.play = make(tr("&Play"), "actPlaybackPlay", QKeySequence(Qt::Key_Space),
                       [this] { m_pPlayback->togglePlaying(); });
    m_play.play->setIcon(icon(QStyle::SP_MediaPlay));
    m_play.forward = make(tr("&Step Forward"), "actPlaybackForward", QKeySequence(Qt::Key_Period),
                          [this] { m_pPlayback->stepForward(); });
    m_play.forward->setIcon(icon(QStyle::SP_MediaSeekForward));
    m_play.last = make(tr("&Last Frame"), "actPlaybackLast", QKeySequence(Qt::Key_End),
                       [this] { m_pPlayback->goToLast(); });
    m_play.last->setIcon(icon(QStyle::SP_MediaSkipForward));
    m_play.loop = make(tr("L&oop"), "actPlaybackLoop", QKeySequence(Qt::Key_L),
                       [this] { m_pPlayback->setLoop(m_play.loop->isChecked()); });
    m_play.loop->setCheckable(true);
    m_play.loop->setIcon(icon(QStyle::SP_BrowserReload));
    m_pEveryFrame = make(tr("&Every Frame"), "actPlaybackEveryFrame", QKeySequence(Qt::Key_E),
                         [this] { m_pPlayback->setPace(SkPlaybackSettings::EveryFrame); });
    m_pRealTime = make(tr("Real &Time"), "actPlaybackRealTime", QKeySequence(Qt::Key_T),
                       [this] { m_pPlayback->setPace(SkPlaybackSettings::RealTime); });
    auto* paces = new QActionGroup(this);
    for (QAction* action : {m_pEveryFrame, m_pRealTime}) {
        action->setCheckable(true);
        paces->addAction(action);
    }
}

void CkRecordingController::fillMenu(QMenu* pMenu, QWidget* pViews) {
    pMenu->setToolTipsVisible(true);
    pMenu->addActions({m_pRecordSource, m_pRecordView, m_pStopAll});
    pMenu->addSeparator();
    const QList<QAction*> steps = {m_play.play, m_play.forward, m_play.back, m_play.first, m_play.last};
    const QList<QAction*> ways = {m_play.loop, m_pEveryFrame, m_pRealTime};
    pMenu->addActions(steps);
    pMenu->addSeparator();
    pMenu->addActions(ways);
    const QList<QAction*> keys = steps + ways;
    connect(pMenu, &QMenu::aboutToShow, this, &CkRecordingController::refresh);
    for (QAction* action : keys) {
        // Space presses buttons and full stops are typed elsewhere in the window.
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    pViews->addActions(keys);
    m_pBar->addActions(keys);
}

void CkRecordingController::addFileKinds(CkFileOpener* pOpener) {
    SkFileKind recording;
    recording.id = QStringLiteral("recording");
    recording.title = tr("Recordings and TIFF pictures");
    recording.suffixes = QStringList{QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("btf")};
    recording.recognises = &CkRecordingOpener::recognises;
    recording.open = [this](const QString& name, QString& error) {
        if (!CkRecordingOpener::open(name, m_pArea, m_bAsks ? m_pWindow : nullptr, error)) {
            return false;
        }
        // Nobody is there to press play, or to wait.
        if (!m_bAsks) {
            m_pPlayback->setPace(SkPlaybackSettings::EveryFrame);
            m_pPlayback->setLoop(true);
            m_pPlayback->togglePlaying();
        }
        return true;
    };
    pOpener->addKind(recording);
    SkFileKind picture;
    picture.id = QStringLiteral("picture");
    picture.title = tr("Pictures");
    picture.suffixes = CkStillPicture::suffixes();
    picture.recognises = &CkStillPicture::recognises;
    picture.open = recording.open;
    pOpener->addKind(picture);
    connect(m_pPanel, &CkRecordingPanel::openRequested, m_pWindow, &CkMainWindow::openOrTell);
}

void CkRecordingController::equipCamera(void* pHandle) {
    CkCameraPanel* panel = m_pCameras->panel(pHandle);
    if (panel == nullptr) {
        return;
    }
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new CkRecordButton(m_pManager, m_pCameras, pHandle, panel));
    panel->addToolLayout(row);
}

void CkRecordingController::refresh() {
    const CkChainable* source = m_pManager->sourceToRecord();
    const CkChainable* output = m_pManager->outputToRecord();
    const QString none = tr("The active view shows no chain");
    m_pRecordSource->setEnabled(source != nullptr);
    m_pRecordSource->setToolTip(
        source != nullptr ? tr("Record \"%1\" as it is delivered").arg(source->title()) : none);
    m_pRecordView->setEnabled(output != nullptr);
    m_pRecordView->setToolTip(
        output != nullptr ? tr("Record what the active view is given, after all processing") : none);
    const int running = m_pManager->runningCount();
    m_pStopAll->setEnabled(running > 0);
    m_pStopAll->setToolTip(running > 0 ? tr("Write what waits and close the files")
                                       : tr("Nothing is being recorded"));

    const CkVideoSource* player = m_pPlayback->source();
    const QString nothing = player == nullptr           ? tr("The active view shows no recording")
                            : player->frameCount() <= 1 ? tr("The active view shows a single picture")
                                                        : QString();
    for (QAction* action : {m_play.first, m_play.back, m_play.play, m_play.forward, m_play.last, m_play.loop,
                            m_pEveryFrame, m_pRealTime}) {
        action->setEnabled(nothing.isEmpty());
        const QString key = action->shortcut().toString(QKeySequence::NativeText);
        QString name = action->text();
        name.remove(QLatin1Char('&'));
        action->setToolTip(!nothing.isEmpty() ? nothing
                           : key.isEmpty()    ? name
                                              : QStringLiteral("%1 (%2)").arg(name, key));
    }
    if (player != nullptr) {
        (player->pace() == SkPlaybackSettings::RealTime ? m_pRealTime : m_pEveryFrame)->setChecked(true);
    }

    qint64 written = 0;
    qint64 dropped = 0;
    for (const CkRecordingJob* job : m_pManager->jobs()) {
        if (job->state() == CkRecordingJob::EkState::Running) {
            const CkRecorder::SkState state = job->counters();
            written += state.written;
            dropped += state.dropped;
        }
    }
    m_pLamp->setVisible(running > 0);
    QString text = tr("<span style='color:#d02020'>\u25cf</span> Recording: %n frame(s)", nullptr,
                      pluralNumber(written));
    if (dropped > 0) {
        text += tr(", <b style='color:#c02020'>%1 dropped</b>").arg(dropped);
    }
    m_pLamp->setText(text);
}
