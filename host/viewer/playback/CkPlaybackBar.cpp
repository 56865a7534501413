#include "host/viewer/playback/CkPlaybackBar.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/picture/PictureText.h"
#include "host/viewer/playback/CkPlayback.h"
#include "host/viewer/playback/CkWrapLayout.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QSpinBox>
#include <QStyle>
#include <QToolButton>

#include <algorithm>
#include <limits>

namespace {

constexpr int kRefreshMs = 40;
constexpr qint64 kMillisecond = 1'000'000;
constexpr double kSpeeds[] = {SkPlaybackSettings::kSlowestSpeed, 0.25, 0.5, 1.0, 2.0, 5.0,
                              SkPlaybackSettings::kFastestSpeed};

void addSpeed(QComboBox* box, double speed) {
    box->addItem(PictureText::locale().toString(speed) + QStringLiteral(" \u00d7"), speed);
}

int asInt(qint64 value) {
    return int(std::clamp<qint64>(value, 0, std::numeric_limits<int>::max()));
}

} // namespace

CkPlaybackBar::CkPlaybackBar(CkPlayback* pPlayback, const SkActions& actions, QWidget* pParent)
    : QWidget(pParent), m_playback(pPlayback), m_actions(actions) {
    setObjectName(QStringLiteral("playbackBar"));
    // On a small screen, one line between the panels is too short for all controls.
    auto* layout = new CkWrapLayout(this);
    layout->setContentsMargins(6, 3, 6, 3);
    layout->setSpacing(4);
    for (QAction* action : {actions.first, actions.back, actions.play, actions.forward, actions.last}) {
        layout->addWidget(addButton(action));
    }
    m_slider = new QSlider(Qt::Horizontal, this);
    m_slider->setObjectName(QStringLiteral("playbackSlider"));
    m_slider->setMinimumWidth(80);
    m_slider->setToolTip(tr("Position in the recording"));
    layout->addWidget(m_slider);
    m_number = new QSpinBox(this);
    m_number->setObjectName(QStringLiteral("playbackNumber"));
    m_number->setPrefix(tr("Frame "));
    m_number->setKeyboardTracking(false);
    m_number->setAlignment(Qt::AlignRight);
    m_number->setToolTip(tr(
        "Number of the frame that is shown, counted from 0 as the command line does; type one to go there"));
    layout->addWidget(m_number);
    m_time = new QLabel(this);
    m_time->setObjectName(QStringLiteral("playbackTime"));
    m_time->setToolTip(tr("Time of the frame since the first one, and length of the recording"));
    layout->addWidget(m_time);
    layout->addWidget(addButton(actions.loop));
    createPaceControls();
    layout->addWidget(m_pace);
    layout->addWidget(m_speed);
    m_notice = new QLabel(this);
    m_notice->setObjectName(QStringLiteral("playbackNote"));
    layout->addWidget(m_notice);

    connect(m_slider, &QSlider::valueChanged, m_playback, [this](int iValue) { m_playback->goTo(iValue); });
    connect(m_number, &QSpinBox::valueChanged, m_playback, [this](int iValue) { m_playback->goTo(iValue); });
    connect(m_playback, &CkPlayback::sourceChanged, this, &CkPlaybackBar::adaptToSource);
    connect(m_playback, &CkPlayback::settingsChanged, this, &CkPlaybackBar::refresh);
    // Polled: the source may be much faster than the display, and a signal per frame would cost more.
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, &CkPlaybackBar::refresh);
    adaptToSource();
}

void CkPlaybackBar::createPaceControls() {
    m_pace = new QComboBox(this);
    m_pace->setObjectName(QStringLiteral("playbackPace"));
    m_pace->addItem(tr("Real time"), int(SkPlaybackSettings::RealTime));
    m_pace->addItem(tr("Every frame"), int(SkPlaybackSettings::EveryFrame));
    m_pace->setToolTip(tr("Real time: as it was recorded; frames that come too late are left out.\n"
                          "Every frame: as fast as the chain can process them, nothing left out."));
    m_speed = new QComboBox(this);
    m_speed->setObjectName(QStringLiteral("playbackSpeed"));
    for (const double speed : kSpeeds) {
        addSpeed(m_speed, speed);
    }
    connect(m_pace, &QComboBox::currentIndexChanged, m_playback,
            [this] { m_playback->setPace(m_pace->currentData().toInt()); });
    connect(m_speed, &QComboBox::currentIndexChanged, m_playback,
            [this] { m_playback->setSpeed(m_speed->currentData().toDouble()); });
}

QToolButton* CkPlaybackBar::addButton(QAction* pAction) {
    auto* button = new QToolButton(this);
    button->setDefaultAction(pAction);
    button->setAutoRaise(true);
    button->setIconSize(QSize(20, 20));
    button->setObjectName(QStringLiteral("btn_") + pAction->objectName());
    return button;
}

QString CkPlaybackBar::timeText(qint64 iNanoseconds) {
    const qint64 ms = iNanoseconds / kMillisecond;
    const QLatin1Char zero('0');
    const QString rest = QStringLiteral("%1.%2").arg(ms / 1000 % 60, 2, 10, zero).arg(ms % 1000, 3, 10, zero);
    const qint64 minutes = ms / 60'000;
    return minutes < 60
               ? QStringLiteral("%1:%2").arg(minutes).arg(rest)
               : QStringLiteral("%1:%2:%3").arg(minutes / 60).arg(minutes % 60, 2, 10, zero).arg(rest);
}

void CkPlaybackBar::adaptToSource() {
    const CkVideoSource* source = m_playback->source();
    if (source == nullptr) {
        m_timer.stop();
        hide();
        return;
    }
    m_shown = -2;
    m_total.clear();
    const int last = asInt(source->frameCount() - 1);
    {
        const QSignalBlocker slider(m_slider);
        const QSignalBlocker number(m_number);
        m_slider->setRange(0, last);
        m_slider->setPageStep(qMax(1, last / 20));
        m_number->setRange(0, last);
        m_number->setSuffix(tr(" of %1").arg(source->frameCount()));
        if (const std::optional<qint64> total = m_playback->timeOf(last)) {
            m_total = timeText(*total);
        }
    }
    // As wide as the longest text, so that the controls keep their places during playback.
    m_time->setMinimumWidth(fontMetrics().horizontalAdvance(
                                m_total.isEmpty() ? QString() : m_total + QStringLiteral(" / ") + m_total) +
                            8);
    refresh();
    m_timer.start();
}

void CkPlaybackBar::refresh() {
    const CkVideoSource* source = m_playback->source();
    if (source == nullptr) {
        hide();
        return;
    }
    // A single picture has nothing to play, but may be damaged.
    setVisible(source->frameCount() > 1 || !source->errorMessage().isEmpty());
    const qint64 position = source->position();
    if (position != m_shown) {
        m_shown = position;
        const QSignalBlocker slider(m_slider);
        const QSignalBlocker number(m_number);
        if (!m_slider->isSliderDown()) {
            m_slider->setValue(asInt(position));
        }
        const auto* edit = m_number->findChild<QLineEdit*>();
        // Not while the user is typing a number.
        if (edit == nullptr || !edit->isModified()) {
            m_number->setValue(asInt(position));
        }
        const std::optional<qint64> time =
            m_total.isEmpty() || position < 0 ? std::nullopt : m_playback->timeOf(position);
        m_time->setText(time ? timeText(*time) + QStringLiteral(" / ") + m_total : QString());
    }
    showPace();
    const bool playing = source->isPlaying();
    if (m_actions.play->property("playing").toBool() != playing || m_actions.play->icon().isNull()) {
        m_actions.play->setProperty("playing", playing);
        m_actions.play->setText(playing ? tr("&Pause") : tr("&Play"));
        m_actions.play->setIcon(
            style()->standardIcon(playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    }
    m_actions.loop->setChecked(source->isLoop());
    showDamage();
}

void CkPlaybackBar::showPace() {
    const CkVideoSource* source = m_playback->source();
    const QSignalBlocker paceBlocker(m_pace);
    const QSignalBlocker speedBlocker(m_speed);
    m_pace->setCurrentIndex(m_pace->findData(source->pace()));
    // A chain file may contain a speed that is not in the list.
    if (m_speed->findData(source->speed()) < 0) {
        addSpeed(m_speed, source->speed());
    }
    m_speed->setCurrentIndex(m_speed->findData(source->speed()));
    const bool realTime = source->pace() == SkPlaybackSettings::RealTime;
    m_speed->setEnabled(realTime);
    m_speed->setToolTip(realTime ? tr("How much faster or slower than it was recorded")
                                 : tr("Every frame is played as fast as the chain can process it; choose "
                                      "real time to set a speed"));
}

void CkPlaybackBar::showDamage() {
    const CkVideoSource* source = m_playback->source();
    const QString error = source->errorMessage();
    const qint64 skipped = source->skippedFrames();
    QString notice;
    if (!error.isEmpty()) {
        notice = tr("<span style='color:#c02020'><b>Damaged</b></span>");
    } else if (skipped > 0) {
        notice = tr("%1 left out").arg(skipped);
    }
    if (notice != m_notice->text()) {
        m_notice->setText(notice);
    }
    m_notice->setToolTip(error.isEmpty() ? tr("Frames left out as too late since playback was started")
                                         : error);
    m_notice->setVisible(!notice.isEmpty());
}
