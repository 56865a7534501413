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
    : QObject(pWindow), m_window(pWindow), m_area(pArea) {
    CkRecordingOpener::registerSource();
    m_manager = new CkRecordingManager(m_area, pWindow);
    m_manager->setParent(this);
    m_playback = new CkPlayback(m_area, this);
    createRecordActions();
    createPlaybackActions();
    m_bar = new CkPlaybackBar(m_playback, m_play);
    m_panel = new CkRecordingPanel(m_manager);
    m_indicator = new QLabel(pWindow);
    m_indicator->setObjectName(QStringLiteral("recordingLamp"));
    m_indicator->hide();
    fillMenuActions();

    connect(m_area, &CkViewArea::activeViewChanged, this, &CkRecordingController::refresh);
    connect(m_playback, &CkPlayback::sourceChanged, this, &CkRecordingController::refresh);
    connect(m_playback, &CkPlayback::settingsChanged, this, &CkRecordingController::refresh);
    connect(m_panel, &CkRecordingPanel::openRequested, this, &CkRecordingController::openRequested);
    connect(m_manager, &CkRecordingManager::problemOccurred, this, &CkRecordingController::refresh);
    connect(m_manager, &CkRecordingManager::jobsChanged, this, [this] {
        if (m_manager->runningCount() > 0) {
            m_timer.start();
            emit showPanelRequested();
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
    m_recordSource = createAction(tr("&Record the Source..."), "actRecordSource", Qt::CTRL | Qt::Key_R);
    m_recordSource->setIcon(CkRecordButton::icon());
    connect(m_recordSource, &QAction::triggered, this,
            [this] { m_manager->recordWithDialog(m_manager->sourceToRecord()); });
    m_recordView = createAction(tr("Record the &View..."), "actRecordView", Qt::CTRL | Qt::SHIFT | Qt::Key_R);
    connect(m_recordView, &QAction::triggered, this,
            [this] { m_manager->recordWithDialog(m_manager->outputToRecord()); });
    m_stopAll = createAction(tr("Stop &All Recordings"), "actStopRecordings", Qt::CTRL | Qt::Key_E);
    connect(m_stopAll, &QAction::triggered, m_manager, &CkRecordingManager::stopAll);
}

void CkRecordingController::createPlaybackActions() {
    const auto make = [this](const QString& text, const char* name, const QKeySequence& key, auto slot) {
        QAction* action = createAction(text, name, key);
        connect(action, &QAction::triggered, m_playback, slot);
        return action;
    };
    const auto icon = [this](QStyle::StandardPixmap pixmap) {
        return m_window->style()->standardIcon(pixmap);
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
                       [this] { m_playback->setLoop(m_play.loop->isChecked()); });
    m_play.loop->setCheckable(true);
    m_play.loop->setIcon(icon(QStyle::SP_BrowserReload));
    m_everyFrame = make(tr("&Every Frame"), "actPlaybackEveryFrame", Qt::Key_E,
                        [this] { m_playback->setPace(SkPlaybackSettings::EveryFrame); });
    m_realTime = make(tr("Real &Time"), "actPlaybackRealTime", Qt::Key_T,
                      [this] { m_playback->setPace(SkPlaybackSettings::RealTime); });
    auto* paces = new QActionGroup(this);
    for (QAction* action : {m_everyFrame, m_realTime}) {
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
    const QList<QAction*> modes = {m_play.loop, m_everyFrame, m_realTime};
    m_menuActions = {m_recordSource, m_recordView, m_stopAll, separator()};
    m_menuActions += steps;
    m_menuActions += separator();
    m_menuActions += modes;
    m_playbackActions = steps + modes;
    for (QAction* action : std::as_const(m_playbackActions)) {
        // Elsewhere in the window the space bar presses buttons, and a full stop is text.
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    }
    m_area->addActions(m_playbackActions);
    m_bar->addActions(m_playbackActions);
}

QPushButton* CkRecordingController::createRecordButton(void* pCameraHandle, std::function<void()> openView,
                                                       QWidget* pParent) {
    return new CkRecordButton(m_manager, pCameraHandle, std::move(openView), pParent);
}

void CkRecordingController::addFileKinds(CkFileOpener* pOpener) {
    SkFileKind recording;
    recording.id = QStringLiteral("recording");
    recording.title = tr("Recordings and TIFF pictures");
    recording.suffixes = QStringList{QStringLiteral("tif"), QStringLiteral("tiff"), QStringLiteral("btf")};
    recording.recognises = &CkRecordingOpener::recognises;
    recording.open = [this](const QString& name, QString& error) {
        if (!CkRecordingOpener(m_area, m_interactive ? m_window : nullptr).open(name, error)) {
            return false;
        }
        // An unattended run has no user to start the playback.
        if (!m_interactive) {
            m_playback->setPace(SkPlaybackSettings::EveryFrame);
            m_playback->setLoop(true);
            m_playback->togglePlaying();
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
    const CkChainable* source = m_manager->sourceToRecord();
    const CkChainable* output = m_manager->outputToRecord();
    const QString none = tr("The active view shows no chain");
    m_recordSource->setEnabled(source != nullptr);
    m_recordSource->setToolTip(source != nullptr ? tr("Record \"%1\" as it is delivered").arg(source->title())
                                                 : none);
    m_recordView->setEnabled(output != nullptr);
    m_recordView->setToolTip(output != nullptr ? tr("Record what the active view shows, after all processing")
                                               : none);
    const int running = m_manager->runningCount();
    m_stopAll->setEnabled(running > 0);
    m_stopAll->setToolTip(running > 0 ? tr("Write the queued frames and close the files")
                                      : tr("Nothing is being recorded"));
}

void CkRecordingController::refreshPlaybackActions() {
    const CkVideoSource* player = m_playback->source();
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
        (player->pace() == SkPlaybackSettings::RealTime ? m_realTime : m_everyFrame)->setChecked(true);
    }
}

void CkRecordingController::refreshIndicator() {
    qint64 written = 0;
    qint64 dropped = 0;
    for (const CkRecordingJob* job : m_manager->jobs()) {
        if (job->state() == CkRecordingJob::EkState::Running) {
            const CkRecorder::SkState state = job->counters();
            written += state.written;
            dropped += state.dropped;
        }
    }
    m_indicator->setVisible(m_manager->runningCount() > 0);
    QString text = tr("<span style='color:#d02020'>\u25cf</span> Recording: %n frame(s)", nullptr,
                      pluralNumber(written));
    if (dropped > 0) {
        text += tr(", <b style='color:#c02020'>%1 dropped</b>").arg(dropped);
    }
    m_indicator->setText(text);
}
