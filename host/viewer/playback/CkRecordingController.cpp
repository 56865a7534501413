#include "host/viewer/playback/CkRecordingController.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/playback/CkPlayback.h"
#include "host/viewer/playback/CkRecordButton.h"
#include "host/viewer/playback/CkRecordingJob.h"
#include "host/viewer/playback/CkRecordingManager.h"
#include "host/viewer/playback/CkRecordingOpener.h"
#include "host/viewer/playback/CkRecordingPanel.h"
#include "host/viewer/playback/CkStillPicture.h"
#include "zuCore/CkChainable.h"

#include <QAction>
#include <QActionGroup>
#include <QLabel>
#include <QStyle>

namespace {
constexpr int kRefreshMs = 250;
}

CkRecordingController::CkRecordingController(CkViewArea* pArea, QWidget* pWindow)
    : QObject(pWindow), m_pWindow(pWindow), m_pArea(pArea) {
    CkRecordingOpener::registerSource();
    m_pManager = new CkRecordingManager(m_pArea, pWindow);
    m_pManager->setParent(this);
    m_pPlayback = new CkPlayback(m_pArea, this);
    createRecordActions();
    createPlaybackActions();
    m_pBar = new CkPlaybackBar(m_pPlayback, m_play);
    m_pPanel = new CkRecordingPanel(m_pManager);
    m_pIndicator = new QLabel(pWindow);
    m_pIndicator->setObjectName(QStringLiteral("recordingLamp"));
    m_pIndicator->hide();
    fillMenuActions();

    connect(m_pArea, &CkViewArea::activeViewChanged, this, &CkRecordingController::refresh);
    connect(m_pPlayback, &CkPlayback::sourceChanged, this, &CkRecordingController::refresh);
    connect(m_pPlayback, &CkPlayback::settingsChanged, this, &CkRecordingController::refresh);
    connect(m_pPanel, &CkRecordingPanel::openRequested, this, &CkRecordingController::openRequested);
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
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &CkRecordingController::refresh);
    refresh();
}

QAction* CkRecordingController::createAction(const QString& sText, const char* sName,
                                             const QKeySequence& key) {
    auto* action = new QAction(sText, this);
    action->setObjectName(QLatin1String(sName));
    action->setShortcut(key);
    return action;
}

void CkRecordingController::createRecordActions() {
    m_pRecordSource = createAction(tr("&Record the Source..."), "actRecordSource", Qt::CTRL | Qt::Key_R);
    m_pRecordSource->setIcon(CkRecordButton::icon());
    connect(m_pRecordSource, &QAction::triggered, this,
            [this] { m_pManager->recordWithDialog(m_pManager->sourceToRecord()); });
    m_pRecordView =
        createAction(tr("Record the &View..."), "actRecordView", Qt::CTRL | Qt::SHIFT | Qt::Key_R);
    connect(m_pRecordView, &QAction::triggered, this,
            [this] { m_pManager->recordWithDialog(m_pManager->outputToRecord()); });
    m_pStopAll = createAction(tr("Stop &All Recordings"), "actStopRecordings", Qt::CTRL | Qt::Key_E);
    connect(m_pStopAll, &QAction::triggered, m_pManager, &CkRecordingManager::stopAll);
}

void CkRecordingController::createPlaybackActions() {
    const auto make = [this](const QString& text, const char* name, const QKeySequence& key, auto slot) {
        QAction* action = createAction(text, name, key);
        connect(action, &QAction::triggered, m_pPlayback, slot);
        return action;
    };
    const auto icon = [this](QStyle::StandardPixmap pixmap) {
        return m_pWindow->style()->standardIcon(pixmap);
    };
    m_play.first = make(tr("&First Frame"), "actPlaybackFirst", Qt::Key_Home, &CkPlayback::goToFirst);
    m_play.first->setIcon(icon(QStyle::SP_MediaSkipBackward));
    m_play.back = make(tr("Step &Back"), "actPlaybackBack", Qt::Key_Comma, &CkPlayback::stepBack);
    m_play.back->setIcon(icon(QStyle::SP_MediaSeekBackward));
    m_play.play = make(tr("&Play"), "actPlaybackPlay", Qt::Key_Space, &CkPlayback::togglePlaying);
    m_play.play->setIcon(icon(QStyle::SP_MediaPlay));
    m_play.forward =
        make(tr("&Step Forward"), "actPlaybackForward", Qt::Key_Period, &CkPlayback::stepForward);
    m_play.forward->setIcon(icon(QStyle::SP_MediaSeekForward));
    m_play.last = make(tr("&Last Frame"), "actPlaybackLast", Qt::Key_End, &CkPlayback::goToLast);
    m_play.last->setIcon(icon(QStyle::SP_MediaSkipForward));
    m_play.loop = make(tr("L&oop"), "actPlaybackLoop", Qt::Key_L,
                       [this] { m_pPlayback->setLoop(m_play.loop->isChecked()); });
    m_play.loop->setCheckable(true);
    m_play.loop->setIcon(icon(QStyle::SP_BrowserReload));
    m_pEveryFrame = make(tr("&Every Frame"), "actPlaybackEveryFrame", Qt::Key_E,
                         [this] { m_pPlayback->setPace(SkPlaybackSettings::EveryFrame); });
    m_pRealTime = make(tr("Real &Time"), "actPlaybackRealTime", Qt::Key_T,
                       [this] { m_pPlayback->setPace(SkPlaybackSettings::RealTime); });
    auto* paces = new QActionGroup(this);
    for (QAction* action : {m_pEveryFrame, m_pRealTime}) {
        action->setCheckable(true);
        paces->addAction(action);
    }
}

void CkRecordingController::fillMenuActions() {
    const auto separator = [this] {
        auto* action = new QAction(this);
        action->setSeparator(true);
        return action;
    };
    const QList<QAction*> steps = {m_play.play, m_play.forward, m_play.back, m_play.first, m_play.last};
    const QList<QAction*> modes = {m_play.loop, m_pEveryFrame, m_pRealTime};
    m_menuActions = {m_pRecordSource, m_pRecordView, m_pStopAll, separator()};
    m_menuActions += steps;
    m_menuActions += separator();
    m_menuActions += modes;
    m_playbackActions = steps + modes;
    for (QAction* action : std::as_const(m_playbackActions)) {
        // Elsewhere in the window the space bar presses buttons, and a full stop is text.
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    m_pArea->addActions(m_playbackActions);
    m_pBar->addActions(m_playbackActions);
}

QPushButton* CkRecordingController::createRecordButton(void* pCameraHandle, std::function<void()> openView,
                                                       QWidget* pParent) {
    return new CkRecordButton(m_pManager, pCameraHandle, std::move(openView), pParent);
}

void CkRecordingController::addFileKinds(CkFileOpener* pOpener) {
    SkFileKind recording;
    recording.id = QStringLiteral("recording");
    recording.title = tr("Recordings and TIFF pictures");
    recording.suffixes = QStringList{QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("btf")};
    recording.recognises = &CkRecordingOpener::recognises;
    recording.open = [this](const QString& name, QString& error) {
        if (!CkRecordingOpener(m_pArea, m_bInteractive ? m_pWindow : nullptr).open(name, error)) {
            return false;
        }
        // An unattended run has no user to start the playback.
        if (!m_bInteractive) {
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
}

void CkRecordingController::refresh() {
    refreshRecordActions();
    refreshPlaybackActions();
    refreshIndicator();
}

void CkRecordingController::refreshRecordActions() {
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
}

void CkRecordingController::refreshPlaybackActions() {
    const CkVideoSource* player = m_pPlayback->source();
    const QString nothing = player == nullptr           ? tr("The active view shows no recording")
                            : player->frameCount() <= 1 ? tr("The active view shows a single picture")
                                                        : QString();
    for (QAction* action : std::as_const(m_playbackActions)) {
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
}

void CkRecordingController::refreshIndicator() {
    qint64 written = 0;
    qint64 dropped = 0;
    for (const CkRecordingJob* job : m_pManager->jobs()) {
        if (job->state() == CkRecordingJob::EkState::Running) {
            const CkRecorder::SkState state = job->counters();
            written += state.written;
            dropped += state.dropped;
        }
    }
    m_pIndicator->setVisible(m_pManager->runningCount() > 0);
    QString text = tr("<span style='color:#d02020'>\u25cf</span> Recording: %n frame(s)", nullptr,
                      pluralNumber(written));
    if (dropped > 0) {
        text += tr(", <b style='color:#c02020'>%1 dropped</b>").arg(dropped);
    }
    m_pIndicator->setText(text);
}
