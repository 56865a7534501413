#include "host/recording/CkVideoSource.h"

#include "host/recording/CkOpenProgressScope.h"
#include "host/recording/FrameFiles.h"
#include "zuCore/CkChain.h"

#include <QDomElement>
#include <QFileInfo>

#include <algorithm>

namespace {

// A limit, because a file may have a million unreadable pages.
constexpr qint64 kMaximumPagesTried = 1000;

const QString kFile = QStringLiteral("file");

} // namespace

CkVideoSource::CkVideoSource()
    : m_player(std::make_unique<CkFramePlayer>(CkFramePlayer::SkOutput{
          .deliver = [this](CkImageData* data) { return deliver(data); },
          .showError = [this](const QString& text) { setErrorMessage(text); },
          .positionChanged = [this](qint64 frame) { emit positionChanged(frame); },
          .finished =
              [this] {
                  emit playingChanged(false);
                  emit finished();
              },
      })) {}

CkVideoSource::~CkVideoSource() {
    // Deleted while in a chain: the chain must not call a source whose player is destroyed.
    if (CkChain* const owner = chain()) {
        owner->stop();
    }
}

bool CkVideoSource::openFile(const QString& sFileName, QString* psError, const ProgressFunction& progress) {
    const std::shared_ptr<const IkFrameFile> file = FrameFiles::open(sFileName, psError, progress);
    if (file == nullptr) {
        return false;
    }
    useFile(file);
    return true;
}

void CkVideoSource::shareFile(const CkVideoSource& other) {
    if (const std::shared_ptr<const IkFrameFile> file = other.recording()) {
        useFile(file);
    }
}

void CkVideoSource::useFile(const std::shared_ptr<const IkFrameFile>& file) {
    SkFrameDescription first;
    QString error = file->damage();
    // If the first page cannot be shown, try the following ones.
    const qint64 tried = std::min(file->frameCount(), kMaximumPagesTried);
    for (qint64 frame = 0; frame < tried && !file->describe(frame, first, &error); ++frame) {
    }
    m_player->setFile(file, first);
    setErrorMessage(error);
    emit configurationChanged();
}

QString CkVideoSource::fileName() const {
    const std::shared_ptr<const IkFrameFile> file = recording();
    return file == nullptr ? QString() : file->fileName();
}

std::shared_ptr<const IkFrameFile> CkVideoSource::recording() const {
    return m_player->file();
}

void CkVideoSource::setAfterFrame(CkFramePlayer::AfterFrame afterFrame) {
    m_player->setAfterFrame(std::move(afterFrame));
}

void CkVideoSource::setDepthScale(const SkDepthScale& scale) {
    changeSettings([&scale](SkPlaybackSettings& settings) { settings.scale = scale; });
}

void CkVideoSource::changeSettings(const std::function<void(SkPlaybackSettings&)>& edit) {
    if (!(m_player->changeSettings(edit).scale == depthScale())) {
        emit configurationChanged();
    }
}

SkDepthScale CkVideoSource::depthScale() const {
    return m_player->settings().scale;
}

qint64 CkVideoSource::frameCount() const {
    return m_player->frameCount();
}

qint64 CkVideoSource::position() const {
    return m_player->state().position();
}

bool CkVideoSource::isPlaying() const {
    return m_player->state().mode() == CkPlaybackState::EkMode::Playing;
}

bool CkVideoSource::isLoop() const {
    return m_player->settings().loop;
}

int CkVideoSource::pace() const {
    return m_player->settings().pace;
}

double CkVideoSource::speed() const {
    return m_player->settings().speed;
}

qint64 CkVideoSource::skippedFrames() const {
    return m_player->state().skipped();
}

void CkVideoSource::play() {
    if (m_player->play()) {
        emit playingChanged(true);
    }
}

void CkVideoSource::pause() {
    if (m_player->pause()) {
        emit playingChanged(false);
    }
}

void CkVideoSource::step() {
    if (m_player->step()) {
        emit playingChanged(false);
    }
}

bool CkVideoSource::seek(qint64 iFrame) {
    return m_player->seek(iFrame);
}

void CkVideoSource::setLoop(bool bLoop) {
    changeSettings([bLoop](SkPlaybackSettings& settings) { settings.loop = bLoop; });
}

void CkVideoSource::setPace(int iPace) {
    changeSettings(
        [iPace](SkPlaybackSettings& settings) { settings.pace = SkPlaybackSettings::toPace(iPace); });
}

void CkVideoSource::setSpeed(double fSpeed) {
    changeSettings([fSpeed](SkPlaybackSettings& settings) {
        settings.speed = SkPlaybackSettings::toSpeed(fSpeed).value_or(settings.speed);
    });
}

QString CkVideoSource::title() const {
    const QString file = fileName();
    return file.isEmpty() ? CkImageSource::title() : QFileInfo(file).fileName();
}

bool CkVideoSource::sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    return m_player->format(info, pMetadata);
}

void CkVideoSource::setupStart() {
    CkImageSource::setupStart();
    m_player->chainStarted();
}

void CkVideoSource::setupStop() {
    CkImageSource::setupStop();
    m_player->chainStopped();
}

void CkVideoSource::frameEvent(EkFrameEvent event) {
    switch (event) {
    case EkFrameEvent::Entered:
        m_player->frameEntered();
        break;
    case EkFrameEvent::Dropped:
        m_player->frameDropped();
        break;
    case EkFrameEvent::Done:
        m_player->frameDone();
        break;
    }
}

bool CkVideoSource::saveSettings(QDomDocument& doc, QDomElement& element) const {
    if (!CkImageSource::saveSettings(doc, element)) {
        return false;
    }
    const QString file = fileName();
    element.setAttribute(kFile, file.isEmpty() ? m_missingFile : file);
    m_player->settings().save(element);
    return true;
}

bool CkVideoSource::loadSettings(const QDomElement& element) {
    if (!CkImageSource::loadSettings(element)) {
        return false;
    }
    changeSettings(
        [&element](SkPlaybackSettings& settings) { settings = SkPlaybackSettings::load(element); });
    const QString file = element.attribute(kFile);
    // A missing file may become available again; a pipe or a device is never a recording.
    if (const QFileInfo info(file); info.exists() && !info.isFile()) {
        setErrorMessage(tr("\"%1\": This is no ordinary file.").arg(file));
        return false;
    }
    QString error;
    if (!file.isEmpty() && !openFile(file, &error, CkOpenProgressScope::current())) {
        m_missingFile = file;
        setErrorMessage(error);
    }
    return true;
}

CkChainable* CkVideoSource::clone() {
    auto copy = std::make_unique<CkVideoSource>();
    copy->shareFile(*this);
    copy->m_missingFile = m_missingFile;
    copy->changeSettings([this](SkPlaybackSettings& settings) { settings = m_player->settings(); });
    return copy.release();
}
