#pragma once

#include "plugins/zplToF/integration/CkToFActions.h"
#include "plugins/zplToF/integration/CkToFChainEditor.h"
#include "tests/support/FakeAppDelegate.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageSource.h"
#include "zuCoreGui/CkMdiView.h"

#include <QSet>
#include <memory>
#include <vector>

class CkCameraParameters;

/// Parameters of a fake camera; -1 omits the parameter.
struct FakeCameraModel {
    int readoutMode = 4;
    int dataFormat = 13;
    quint32 sensorType = 0;
    bool refuseCommits = false;
    bool refuseFormats = false; ///< the data format cannot be changed
};

/// What reached the camera.
struct FakeCameraLog {
    int commits = 0;       ///< that succeeded, an empty batch included
    QStringList committed; ///< "name=value", in order
};

/// Opens a camera with these parameters through the camera manager, and closes it.
class FakeCamera {
public:
    explicit FakeCamera(const FakeCameraModel& model);
    ~FakeCamera();
    FakeCamera(const FakeCamera&) = delete;
    FakeCamera& operator=(const FakeCamera&) = delete;

    void* handle() const { return m_handle; }
    int value(const char* name) const;
    CkCameraParameters* parameters() const;
    const FakeCameraLog& log() const { return *m_log; }
    void close();

private:
    void* m_handle = nullptr;
    std::shared_ptr<FakeCameraLog> m_log = std::make_shared<FakeCameraLog>();
};

enum class FakeKind { Unknown, Grey, AB, AminB, PhaseShift, Depth, Hybrid };

/// Descriptor and metadata of a picture of a kind; false for Unknown.
bool describe(FakeKind kind, bool separatePhases, SkPicBufInfo& info, CkImageMetadata& metadata);

/// A source whose output format is one of these kinds.
class FakeSource : public CkImageSource {
    Q_OBJECT

public:
    explicit FakeSource(FakeKind kindOfFrames, bool separate = false)
        : kind(kindOfFrames), separatePhases(separate) {
        ++alive;
    }
    ~FakeSource() override { --alive; }

    bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;
    QList<void*> cameraHandles() const override { return handles; }

    FakeKind kind;
    bool separatePhases;
    QList<void*> handles;
    /// Once this camera is set up, the source delivers A and B, for a hybrid camera X1X2X3.
    const FakeCamera* follows = nullptr;
    static int alive;
};

/// Chain operations that fail on request.
class FailingChainHost : public CkToFChainHost {
public:
    QSet<QString> failing;
    QStringList calls;

    bool insertAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) override;
    bool branchAfter(CkChain* pChain, CkChainable* pNew, CkChainable* pAfter) override;
    bool remove(CkChain*& pChain, CkChainable* pBlock, bool bKeepBlock) override;
    CkChain* createChain() override;
    void closeChain(CkChain* pChain) override;
    void deleteChainable(CkChainable* pBlock) override;
};

/// Passes pictures on and is no ToF block.
class PassBlock : public CkImageProvider {
public:
    bool acceptsDataFrom(CkChainable*) override { return true; }
};

/// A box in one line: icon, title, text, buttons and default button.
QString boxLine(const SkToFMessage& message);

/// A view that holds a frame of its own.
class ViewWithImage : public CkMdiView {
public:
    using CkMdiView::CkMdiView;
    CkImageData* currentImage() override { return image.get(); }
    std::unique_ptr<CkImageData> image;
};

/// Records starts (true) and stops of all chains, also of those created later, in order.
class ChainLog {
public:
    ChainLog();
    ~ChainLog();
    ChainLog(const ChainLog&) = delete;
    ChainLog& operator=(const ChainLog&) = delete;

    QList<bool> runs;

private:
    void watch(CkChain* chain);

    QObject m_context;
};

/// One view on a chain with one source, a fake application, and the actions under test.
class ToFFixture {
public:
    ToFFixture();
    ~ToFFixture();

    /// A chain of a source of this kind with an active view on it.
    void open(FakeKind kind, bool separatePhases = false, const FakeCamera* camera = nullptr);
    CkChain* chain() const { return m_chain; }
    /// Transforms of the chain's ToF blocks in the order of the chain.
    static QList<int> transforms(CkChain* chain);
    QStringList boxTexts() const;
    QStringList boxLines() const;

    FakeAppDelegate app;
    FailingChainHost chainHost;
    CkToFActions actions{chainHost};
    std::vector<SkToFMessage> boxes;
    QMessageBox::StandardButton answer = QMessageBox::Ok;
    QList<bool> ranAtBoxes;                ///< whether the chain was running when a box was shown
    QList<QPointer<CkMdiView>> calibrated; ///< views the calibration dialog was run on
    QList<bool> ranAtCalibrations;         ///< as for the boxes
    FakeSource* source = nullptr;
    CkMdiView* view = nullptr;

private:
    bool chainRuns() const { return m_chain != nullptr && m_chain->started(); }

    QPointer<CkChain> m_chain;
};
