#include "tests/host/core/chainBlocks.h"

#include "zuCore/CkPicBufAPI.h"

#include <QDomElement>
#include <stdexcept>
#include <thread>

bool waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

void Gate::close() {
    const std::lock_guard lock(m_mutex);
    m_bClosed = true;
}

void Gate::open() {
    const std::lock_guard lock(m_mutex);
    m_bClosed = false;
    m_opened.notify_all();
}

void Gate::pass() {
    std::unique_lock lock(m_mutex);
    ++m_iWaiting;
    m_opened.wait(lock, [this] { return !m_bClosed; });
    --m_iWaiting;
}

int Gate::waiting() const {
    const std::lock_guard lock(m_mutex);
    return m_iWaiting;
}

TestSource::TestSource() : m_info(packedFormat(8, 4)) {}

bool TestSource::sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_mutex);
    if (!m_bKnown) {
        return false;
    }
    info = m_info;
    if (pMetadata != nullptr) {
        *pMetadata = m_metadata;
    }
    return true;
}

void TestSource::announce(const SkPicBufInfo& info, const CkImageMetadata& metadata) {
    const std::lock_guard lock(m_mutex);
    m_info = info;
    m_metadata = metadata;
    m_bKnown = true;
}

void TestSource::announceNothing() {
    const std::lock_guard lock(m_mutex);
    m_bKnown = false;
}

std::string TestSource::frameEvents() const {
    const std::lock_guard lock(m_mutex);
    return m_frameEvents;
}

void TestSource::frameEvent(EkFrameEvent event) {
    const std::lock_guard lock(m_mutex);
    m_frameEvents += event == EkFrameEvent::Entered ? 'E' : event == EkFrameEvent::Dropped ? 'x' : 'D';
}

bool TestSource::push(quint8 uiValue) {
    SkPicBufInfo info;
    CkImageMetadata metadata;
    {
        const std::lock_guard lock(m_mutex);
        info = m_info;
        metadata = m_metadata;
    }
    return pushFormat(info, metadata, uiValue);
}

bool TestSource::pushFormat(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint8 uiValue) {
    auto frame = makeFrame(info, metadata);
    SkPicBuf& picture = frame->picBuf();
    if (picture.data == nullptr) {
        return false;
    }
    picture.additionalData.frameNumber = m_uiNumber++;
    std::fill_n(picture.data, size_t(picture.lineSize) * picture.height, uiValue);
    return deliver(frame.release());
}

bool PassBlock::acceptsDataFrom(CkChainable* pUpstream) {
    return qobject_cast<CkImageProvider*>(pUpstream) != nullptr;
}

AddBlock::~AddBlock() {
    if (pDeleted != nullptr) {
        *pDeleted = true;
    }
}

bool AddBlock::queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                                    CkImageMetadata* pOutMeta) {
    CkImageProvider::queryOutputImageInfo(in, out, pInMeta, pOutMeta);
    if (dividesRows && pInMeta != nullptr && pInMeta->phasesCount > 1) {
        out.height = in.height / quint32(pInMeta->phasesCount);
    }
    return !refuses;
}

void AddBlock::setupStart() {
    CkImageProvider::setupStart();
    SkPicBufInfo info;
    inputKnownAtStart = inputImageInfo(info, nullptr);
    inputAtStart = info;
    calledWhileStopped = calledWhileStopped || m_bSetUp;
    m_bSetUp = true;
    ++starts;
}

void AddBlock::setupStop() {
    CkImageProvider::setupStop();
    calledWhileStopped = calledWhileStopped || !m_bSetUp || inside;
    m_bSetUp = false;
    ++stops;
}

IkChainData* AddBlock::processData(IkChainData* pData) {
    inside = true;
    calledWhileStopped = calledWhileStopped || !m_bSetUp;
    ++frames;
    gate.pass();
    if (throws) {
        inside = false;
        throw std::runtime_error("block gone wrong");
    }
    auto* const input = dynamic_cast<CkImageData*>(pData);
    SkPicBufInfo info;
    CkImageMetadata metadata;
    SkPicBuf picture;
    IkChainData* result = nullptr;
    const bool able = input != nullptr &&
                      queryOutputImageInfo(input->picBuf(), info, &input->metadata(), &metadata) &&
                      CkPicBufAPI::AllocPicBufFromPool(memoryPool(), this, picture, info, false);
    if (able) {
        for (quint32 row = 0; row < info.height; ++row) {
            for (quint32 x = 0; x < info.width; ++x) {
                picture.row(row)[x] = quint8(input->picBuf().row(row)[x] + number);
            }
        }
        picture.copyPicAdditionalData(input->picBuf());
        auto output = std::make_unique<CkImageData>();
        output->setPicBuf(picture);
        output->setMetadata(metadata);
        delete input;
        result = output.release();
    }
    inside = false;
    return result;
}

bool AddBlock::saveSettings(QDomDocument& doc, QDomElement& element) const {
    const bool saved = CkImageProvider::saveSettings(doc, element);
    element.setAttribute(QStringLiteral("number"), int(number));
    // A name that the chain itself uses: the block's value must not replace the chain's.
    element.setAttribute(QStringLiteral("id"), QStringLiteral("my own"));
    return saved;
}

bool AddBlock::loadSettings(const QDomElement& element) {
    bool isNumber = false;
    number = element.attribute(QStringLiteral("number")).toInt(&isNumber);
    return CkImageProvider::loadSettings(element) && isNumber;
}

int KeepingSink::takeFrame(CkImageData* pData) {
    std::unique_ptr<CkImageData> frame(pData);
    inside = true;
    gate.pass();
    std::unique_ptr<CkImageData> oldest;
    {
        const std::lock_guard lock(m_mutex);
        m_values.push_back(frame->picBuf().data[0]);
        m_pixels.push_back(frame->picBuf().data);
        m_lastInfo = frame->picBuf();
        m_frames.push_back(std::move(frame));
        if (m_frames.size() > m_uiKeep) {
            oldest = std::move(m_frames.front());
            m_frames.erase(m_frames.begin());
        }
    }
    inside = false;
    return 0;
}

std::vector<int> KeepingSink::values() const {
    const std::lock_guard lock(m_mutex);
    return m_values;
}

std::vector<const quint8*> KeepingSink::pixels() const {
    const std::lock_guard lock(m_mutex);
    return m_pixels;
}

SkPicBufInfo KeepingSink::lastInfo() const {
    const std::lock_guard lock(m_mutex);
    return m_lastInfo;
}
