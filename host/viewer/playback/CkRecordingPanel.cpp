#include "host/viewer/playback/CkRecordingPanel.h"

#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/playback/CkPlaybackBar.h"
#include "host/viewer/playback/CkRecordingJob.h"
#include "host/viewer/playback/CkRecordingManager.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kRefreshMs = 250;
constexpr int kWidth = 160;
constexpr qint64 kNanosecondsPerMs = 1'000'000;

using EkState = CkRecordingJob::EkState;

} // namespace

CkRecordingPanel::CkRecordingPanel(CkRecordingManager* pManager, QWidget* pParent)
    : QWidget(pParent), m_manager(pManager) {
    setObjectName(QStringLiteral("recordingPanel"));
    setMinimumWidth(kWidth);
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(6, 6, 6, 6);
    m_rowLayout = new QVBoxLayout;
    m_rowLayout->setSpacing(8);
    column->addLayout(m_rowLayout);
    m_empty = new QLabel(tr("Nothing is being recorded."), content);
    m_empty->setWordWrap(true);
    column->addWidget(m_empty);
    column->addStretch();
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
    connect(pManager, &CkRecordingManager::jobsChanged, this, &CkRecordingPanel::rebuild);
    connect(pManager, &CkRecordingManager::problemOccurred, this, &CkRecordingPanel::refresh);
    m_timer.setInterval(kRefreshMs);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (isVisible()) {
            refresh();
        }
    });
    rebuild();
}

QString CkRecordingPanel::sizeText(quint64 uiBytes) {
    return QLocale().formattedDataSize(qint64(uiBytes), 1, QLocale::DataSizeSIFormat);
}

QString CkRecordingPanel::countersText(const CkRecordingJob& job) {
    const CkRecorder::SkState state = job.counters();
    QString text = tr("%n frame(s), %1, %2", nullptr, pluralNumber(state.written))
                       .arg(sizeText(state.bytes),
                            CkPlaybackBar::timeText(job.elapsedMs() * kNanosecondsPerMs).chopped(2));
    if (job.state() != EkState::Finished) {
        text += tr(", %1 in the queue").arg(state.waiting);
    }
    return text;
}

CkRecordingPanel::SkRow CkRecordingPanel::createRow(CkRecordingJob* pJob) {
    SkRow row;
    row.widget = new QWidget(this);
    row.widget->setObjectName(QStringLiteral("recordingRow"));
    auto* grid = new QGridLayout(row.widget);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(2);
    row.indicator = new QLabel(row.widget);
    row.name = new QLabel(QFileInfo(pJob->fileName()).fileName(), row.widget);
    row.name->setTextFormat(Qt::PlainText);
    row.name->setToolTip(
        tr("%1\nrecorded to %2").arg(pJob->title(), QDir::toNativeSeparators(pJob->fileName())));
    row.name->setWordWrap(true);
    row.counters = new QLabel(row.widget);
    row.counters->setObjectName(QStringLiteral("recordingCounters"));
    row.counters->setWordWrap(true);
    row.drops = new QLabel(row.widget);
    row.drops->setObjectName(QStringLiteral("recordingDrops"));
    row.drops->setWordWrap(true);
    const auto button = [&row](const QString& text, const QString& name, const QString& tip) {
        auto* made = new QToolButton(row.widget);
        made->setText(text);
        made->setObjectName(name);
        made->setToolTip(tip);
        return made;
    };
    row.stop = button(tr("Stop"), QStringLiteral("btnStopRecording"),
                      tr("Write the queued frames and close the file"));
    row.open = button(tr("Open"), QStringLiteral("btnOpenRecording"), tr("Play this recording"));
    row.remove = button(QStringLiteral("\u2715"), QStringLiteral("btnForgetRecording"),
                        tr("Remove this entry; the file is kept"));
    grid->addWidget(row.indicator, 0, 0, Qt::AlignTop);
    grid->addWidget(row.name, 0, 1, 1, 4);
    grid->addWidget(row.counters, 1, 1);
    grid->addWidget(row.stop, 1, 2, Qt::AlignTop);
    grid->addWidget(row.open, 1, 3, Qt::AlignTop);
    grid->addWidget(row.remove, 1, 4, Qt::AlignTop);
    grid->addWidget(row.drops, 2, 1, 1, 4);
    grid->setColumnStretch(1, 1);
    connect(row.stop, &QToolButton::clicked, pJob, &CkRecordingJob::stop);
    connect(row.open, &QToolButton::clicked, this, [this, pJob] { emit openRequested(pJob->fileName()); });
    connect(row.remove, &QToolButton::clicked, this, [this, pJob] { m_manager->remove(pJob); });
    return row;
}

void CkRecordingPanel::rebuild() {
    const QList<CkRecordingJob*>& jobs = m_manager->jobs();
    for (auto row = m_rows.begin(); row != m_rows.end();) {
        if (jobs.contains(row.key())) {
            ++row;
            continue;
        }
        // Not deleted at once: the click that led here came from inside the row.
        row->widget->hide();
        row->widget->deleteLater();
        row = m_rows.erase(row);
    }
    for (CkRecordingJob* job : jobs) {
        if (!m_rows.contains(job)) {
            const SkRow row = createRow(job);
            m_rows.insert(job, row);
            m_rowLayout->insertWidget(0, row.widget);
        }
    }
    m_empty->setVisible(jobs.isEmpty());
    if (m_manager->runningCount() > 0) {
        m_timer.start();
    } else {
        m_timer.stop();
    }
    refresh();
}

void CkRecordingPanel::refresh() {
    for (auto row = m_rows.cbegin(); row != m_rows.cend(); ++row) {
        refreshRow(*row, *row.key());
    }
}

void CkRecordingPanel::refreshRow(const SkRow& row, const CkRecordingJob& job) const {
    const CkRecorder::SkState state = job.counters();
    const bool running = job.state() == EkState::Running;
    const bool finished = job.state() == EkState::Finished;
    const QString colour = running                                       ? QStringLiteral("#d02020")
                           : !state.error.isEmpty() || state.dropped > 0 ? QStringLiteral("#c07000")
                                                                         : QStringLiteral("#2e8b3d");
    row.indicator->setText(QStringLiteral("<span style='color:%1'>%2</span>")
                               .arg(colour, running ? QStringLiteral("\u25cf") : QStringLiteral("\u25a0")));
    row.indicator->setToolTip(running    ? tr("Recording")
                              : finished ? tr("Finished")
                                         : tr("Writing the queued frames"));
    row.counters->setText(countersText(job));
    QStringList problems;
    if (state.dropped > 0) {
        problems.append(tr("%1 dropped").arg(state.dropped));
    }
    if (!state.error.isEmpty()) {
        problems.append(state.error);
    }
    row.drops->setText(problems.isEmpty() ? QString()
                                          : QStringLiteral("<b style='color:#c02020'>%1</b>")
                                                .arg(problems.join(QStringLiteral(". ")).toHtmlEscaped()));
    row.drops->setVisible(!problems.isEmpty());
    row.stop->setVisible(!finished);
    row.stop->setEnabled(running);
    row.stop->setToolTip(running ? tr("Write the queued frames and close the file")
                                 : tr("The file is being closed"));
    row.open->setVisible(finished);
    row.open->setEnabled(state.written > 0);
    row.open->setToolTip(state.written > 0 ? tr("Play this recording") : tr("The file holds no frame"));
    row.remove->setVisible(finished);
}
