#include "host/viewer/playback/CkRecordingOpener.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/ChainFile.h"
#include "host/viewer/base/ProgressDialogDelay.h"
#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/ViewAppearance.h"
#include "host/viewer/playback/CkDepthImportDialog.h"
#include "host/viewer/playback/CkStillPicture.h"
#include "host/viewer/playback/RecordedChain.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkRTTI.h"

#include <QDomDocument>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include <atomic>
#include <future>

namespace {

using namespace std::chrono_literals;

constexpr int kPollMs = 30;
constexpr int kProgressSteps = 1000;

/// Searches the file for its frames on another thread, so that the window stays responsive with a slow disk.
bool openWithProgress(CkVideoSource& source, const QString& fileName, QWidget* window, QString& error,
                      bool& cancelled) {
    std::atomic<bool> cancel = false;
    std::atomic<double> share = 0.0;
    std::atomic<qint64> frames = 0;
    const auto progress = [&](qint64 found, double done) {
        frames = found;
        share = done;
        return !cancel;
    };
    auto result = std::async(std::launch::async, [&] { return source.openFile(fileName, &error, progress); });
    if (result.wait_for(kProgressDialogDelay) != std::future_status::ready) {
        QProgressDialog dialog(CkRecordingOpener::tr("Opening \"%1\"...").arg(fileName),
                               CkRecordingOpener::tr("Cancel"), 0, kProgressSteps, window);
        dialog.setObjectName(QStringLiteral("openingRecording"));
        dialog.setWindowTitle(CkRecordingOpener::tr("Open Recording"));
        dialog.setWindowModality(Qt::ApplicationModal);
        dialog.setMinimumDuration(0);
        dialog.setAutoReset(false);
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &dialog, [&] {
            dialog.setValue(int(share * kProgressSteps));
            dialog.setLabelText(CkRecordingOpener::tr("Opening \"%1\": %n frame(s) so far", nullptr,
                                                      pluralNumber(frames.load()))
                                    .arg(fileName));
            if (result.wait_for(0s) == std::future_status::ready) {
                dialog.done(QDialog::Accepted);
            }
        });
        timer.start(kPollMs);
        dialog.exec();
        cancel = true; // no effect once the search is over
    }
    const bool opened = result.get();
    cancelled = !opened && cancel && share < 1.0;
    return opened;
}

/// Null, with error set, when the chain cannot be loaded.
CkChain* loadChain(const CkVideoSource& source, const QDomDocument& doc, QString& error) {
    CkChain* chain = CkChainManager::instance()->createChain();
    if (chain == nullptr || !chain->load(doc.documentElement(), &error)) {
        CkChainManager::instance()->closeChain(chain);
        return nullptr;
    }
    for (CkChainable* block : chain->imageSources()) {
        if (auto* player = qobject_cast<CkVideoSource*>(block);
            player != nullptr && player->frameCount() == 0) {
            player->shareFile(source);
        }
    }
    return chain;
}

/// A chain of the source alone, which then owns it. Null when no chain can be made.
CkChain* chainOf(std::unique_ptr<CkVideoSource>& source) {
    CkChainManager* chains = CkChainManager::instance();
    CkChain* chain = chains->createChain();
    if (chain == nullptr || !chains->insertAfter(chain, source.get(), nullptr)) {
        chains->closeChain(chain);
        return nullptr;
    }
    static_cast<void>(source.release());
    return chain;
}

} // namespace

void CkRecordingOpener::registerSource() {
    CkRTTI::instance()->registerClass(nullptr, &CkVideoSource::staticMetaObject,
                                      QStringLiteral("CkChainable"));
    CkStillPicture::registerFormat();
}

bool CkRecordingOpener::recognises(const QByteArray& sFirstBytes) {
    for (const char* magic : {"II\x2a", "II\x2b"}) {
        if (sFirstBytes.startsWith(QByteArray(magic, 3) + '\0')) {
            return true;
        }
    }
    return sFirstBytes.startsWith(QByteArray("MM\0\x2a", 4)) ||
           sFirstBytes.startsWith(QByteArray("MM\0\x2b", 4));
}

bool CkRecordingOpener::askForScale(CkVideoSource& source) const {
    const std::shared_ptr<const IkFrameFile> file = source.recording();
    SkFrameDescription first;
    if (!file->describe(0, first, nullptr) || !first.object.isEmpty() ||
        !CkDepthImportDialog::mayHoldDepths(first.info)) {
        return true;
    }
    const std::unique_ptr<CkImageData> frame = file->read(0, nullptr);
    if (frame == nullptr) {
        return true;
    }
    CkDepthImportDialog dialog(file->fileName(), *frame, m_window);
    if (dialog.exec() != QDialog::Accepted) {
        return false;
    }
    source.setDepthScale(dialog.scale());
    return true;
}

bool CkRecordingOpener::askForChain(const CkVideoSource& source, QDomDocument& chain) const {
    QDomDocument scratch;
    QDomElement settings = scratch.createElement(QStringLiteral("block"));
    source.saveSettings(scratch, settings);
    // The file is open already.
    settings.removeAttribute(QStringLiteral("file"));
    QString error;
    chain = RecordedChain::forPlayback(source.recording()->recordingInfo(), settings, error);
    if (!error.isEmpty()) {
        qWarning("\"%s\": %s", qUtf8Printable(source.fileName()), qUtf8Printable(error));
    }
    if (chain.isNull()) {
        return true;
    }
    QMessageBox box(QMessageBox::Question, tr("Open Recording"),
                    tr("\"%1\" was recorded with a processing chain:\n\n%2\n\nOpen it with this chain?")
                        .arg(QFileInfo(source.fileName()).fileName(),
                             RecordedChain::blockTitles(chain).join(QStringLiteral(", "))),
                    QMessageBox::NoButton, m_window);
    box.setObjectName(QStringLiteral("restoreChainBox"));
    const QAbstractButton* with = box.addButton(tr("With the &Chain"), QMessageBox::AcceptRole);
    const QAbstractButton* without = box.addButton(tr("&Pictures Only"), QMessageBox::NoRole);
    box.addButton(QMessageBox::Cancel);
    box.exec();
    if (box.clickedButton() != with) {
        chain = QDomDocument();
    }
    return box.clickedButton() == with || box.clickedButton() == without;
}

bool CkRecordingOpener::open(const QString& sFileName, QString& sError) {
    auto source = std::make_unique<CkVideoSource>();
    bool cancelled = false;
    if (!openWithProgress(*source, sFileName, m_window, sError, cancelled)) {
        if (cancelled) {
            sError.clear();
        }
        return false;
    }
    sError.clear();
    source->setPace(SkPlaybackSettings::RealTime);
    QDomDocument doc;
    if (m_window != nullptr && (!askForScale(*source) || !askForChain(*source, doc))) {
        return false;
    }
    const QString damage = source->errorMessage();
    if (!damage.isEmpty()) {
        qWarning("%s", qUtf8Printable(damage));
    }
    const QJsonObject appearance = source->recording()->recordingInfo().viewSettings;
    CkChain* chain = nullptr;
    if (!doc.isNull()) {
        QString reason;
        chain = loadChain(*source, doc, reason);
        if (chain == nullptr) {
            qWarning("%s",
                     qUtf8Printable(tr("\"%1\" is opened without its chain: %2").arg(sFileName, reason)));
        }
    }
    if (chain == nullptr) {
        chain = chainOf(source);
        if (chain == nullptr) {
            sError = tr("\"%1\": no new processing chain can be made.").arg(sFileName);
            return false;
        }
    }
    openViews(chain, sFileName, appearance);
    // When a chain starts, CkPlayback shows its first frame.
    chain->start();
    return true;
}

void CkRecordingOpener::openViews(CkChain* pChain, const QString& sFileName, const QJsonObject& appearance) {
    QList<CkChainable*> shown = pChain->imageSources();
    for (CkChainable* end : ChainFile::shownEnds(pChain, sFileName)) {
        if (!shown.contains(end)) {
            shown.append(end);
        }
    }
    CkImageView* first = nullptr;
    for (CkChainable* block : std::as_const(shown)) {
        auto* view = new CkImageView(block);
        m_area->addView(view);
        first = first == nullptr ? view : first;
    }
    ViewAppearance::applyAfterFirstPicture(*first, appearance);
}
