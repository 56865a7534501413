#pragma once

#include "tests/support/PushSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCoreGui/CkMdiView.h"

#include <QPointer>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>

inline constexpr int kPatienceMs = 30000; // how long a test waits for an event

/// Copies every frame into a picture of its own pool and marks its first byte.
class MarkingBlock : public CkImageProvider {
public:
    explicit MarkingBlock(quint8 uiMark) : m_uiMark(uiMark) {}

    QString title() const override { return QStringLiteral("Mark"); }
    int buffersCountInMemoryPool() const override { return 1; }

    IkChainData* processData(IkChainData* pData) override {
        auto* in = dynamic_cast<CkImageData*>(pData);
        SkPicBuf picture;
        if (in == nullptr ||
            !CkPicBufAPI::AllocPicBufFromPool(memoryPool(), this, picture, in->picBuf(), true)) {
            return nullptr;
        }
        picture.data[0] = m_uiMark;
        picture.copyPicAdditionalData(in->picBuf());
        auto* out = new CkImageData;
        out->setPicBuf(picture);
        out->setMetadata(in->metadata());
        delete pData;
        return out;
    }

private:
    const quint8 m_uiMark;
};

/// A chain with a source.
class CkMdiViewTest : public testing::Test {
protected:
    void SetUp() override {
        chain = CkChainManager::instance()->createChain();
        ASSERT_NE(chain, nullptr);
        source = new PushSource;
        source->setFormat(16, 8, 1, EkImageDataType::UInt8, 8);
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    }

    void TearDown() override {
        if (chain) {
            CkChainManager::instance()->closeChain(chain);
        }
    }

    MarkingBlock* append(quint8 uiMark, CkChainable* pAfter) {
        auto* block = new MarkingBlock(uiMark);
        EXPECT_TRUE(CkChainManager::instance()->insertAfter(chain, block, pAfter));
        return block;
    }

    // Does not run the event loop, so that no view gets the frame meanwhile.
    bool pushAndWait(quint64 uiFrameNumber, CkChainable* pLast) {
        const quint64 uiBefore = chain->blockStatistics(pLast).framesOut;
        if (!source->push(uiFrameNumber)) {
            return false;
        }
        for (int i = 0; i < kPatienceMs; ++i) {
            if (chain->blockStatistics(pLast).framesOut > uiBefore) {
                return true;
            }
            QThread::msleep(1);
        }
        return false;
    }

    QPointer<CkChain> chain;
    PushSource* source = nullptr;
};

/// Connected after a view, it receives every frame after the view.
class OtherSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        delete pData;
        ++frames;
        return 0;
    }
    std::atomic<int> frames = 0;
};

/// The base class alone.
class BareView : public CkMdiView {
public:
    using CkMdiView::CkMdiView;
    using CkMdiView::setDataProvider;
};
