#pragma once

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "tests/support/FakeVideoSource.h"
#include "zuCore/CkChain.h"

#include <functional>
#include <memory>
#include <semaphore>

/// A second source without consumers: passing it a frame runs code on the thread of the chain.
class CkBellSource : public PushSource {
    Q_OBJECT

public:
    Q_INVOKABLE CkBellSource() { setFormat(1, 1, 1, EkImageDataType::UInt8, 8); }
};

/// The result of a frame.
struct ToFResult {
    std::unique_ptr<CkImageData> output; ///< null for no output; the input itself when it passed through
    bool passedThrough = false;

    bool empty() const { return output == nullptr; }
    const SkPicBuf& picture() const { return output->picBuf(); }
};

/// A chain of a source and a ToF block. Frames are passed to the block one by one on the thread of the chain,
/// so that nothing else runs at the same time.
class ToFChainRig {
public:
    explicit ToFChainRig(std::unique_ptr<PushSource> pushSource = std::make_unique<CkVideoSource>());
    ~ToFChainRig();
    ToFChainRig(const ToFChainRig&) = delete;
    ToFChainRig& operator=(const ToFChainRig&) = delete;

    CkChain* chain = nullptr;
    PushSource* source = nullptr;
    CkToFProcessCnbl* block = nullptr;

    /// Two interleaved taps of 16-bit samples, 12 bits used.
    void useAandB(quint32 width, quint32 height, qint32 phases);
    void useAminusB(quint32 width, quint32 height, qint32 phases);
    void useHybrid(quint32 width, quint32 height, qint32 phases);
    /// Images of a set one by one.
    void useSequence(qint32 length);

    void start(int transform);
    void stop();

    using Samples = std::function<int(quint32 x, quint32 y, quint32 c)>;
    /// A frame with the current format and metadata of the source, of 8 or 16-bit samples.
    std::unique_ptr<CkImageData> frame(const Samples& samples) const;
    std::unique_ptr<CkImageData> frame(int value) const;
    /// One image of a sequence.
    std::unique_ptr<CkImageData> phase(qint32 index, qint32 angle, int a, int b) const;
    /// One image of a sectioned measurement.
    std::unique_ptr<CkImageData> section(quint32 index, const Samples& samples) const;

    ToFResult process(std::unique_ptr<CkImageData> frame);
    /// Runs something on the thread of the started chain and waits for it.
    void onChainThread(const std::function<void()>& action);

private:
    /// Takes the place of a view, so that the pool has pictures for results that the test keeps.
    class View : public IkFrameSink {
        int takeFrame(CkImageData* data) override;
    };
    View m_view;

    class Bell : public IkFrameSink {
    public:
        int takeFrame(CkImageData* data) override;
        const std::function<void()>* action = nullptr;
        std::binary_semaphore done{0};
    };
    Bell m_bell;
    CkBellSource* m_pBellSource = nullptr;
};

/// Error texts for frames that the block cannot process.
namespace ToFTexts {
inline const QString noPicture = "The block works on pictures only.";
inline const QString noPixels = "The picture has no pixels.";
inline const QString unknownTransform =
    "The block is set to a transform that does not exist. Choose one of those in its settings.";
inline const QString tooLarge = "The set of phase images needs more than 1 GiB of memory.";
inline const QString noMemory = "There is not enough memory for the images of a set.";
inline const QString setDiffers =
    "The images of the set have another number or size than the chain was started "
    "for. Stop the chain and start it again.";
inline const QString outsideSet = "The index of the image is outside its set.";
inline const QString noReference = "The chain was started for sections without a reference section. Stop the "
                                   "chain and start it again.";
inline const QString referenceDiffers =
    "The section has another size or sample type than its reference section.";
inline const QString nothingToMerge =
    "There is nothing to merge: the hybrid picture has fewer than two sections.";
inline const QString noOutput =
    "Nothing is left of the picture: it has too few rows for its phases, or too few columns.";
inline const QString notSupported = "Pictures of this sample type or layout cannot be processed.";
} // namespace ToFTexts

/// The same value in every pixel and channel of a picture's rows, or -1 where they differ.
std::vector<int> rowValues(const SkPicBuf& picture);
/// A sample of a picture of any integer type of up to 32 bits, or a float's integer part.
int valueAt(const SkPicBuf& picture, quint32 x, quint32 y, quint32 c = 0);
