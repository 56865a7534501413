#include "tests/plugins/zplToF/chain/ToFChainRig.h"
#include "zuCore/CkCameraSource.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkRTTI.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QMetaClassInfo>
#include <gtest/gtest.h>

namespace {

using Block = CkToFProcessCnbl;

QDomElement elementWith(QDomDocument& doc, const QString& transform) {
    QDomElement element = doc.createElement("block");
    if (!transform.isNull()) {
        element.setAttribute("transform", transform);
    }
    return element;
}

/// The block reports that the angles of a complete set cannot be processed.
void startWithWrongAngles(ToFChainRig& rig) {
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(Block::Depth);
    rig.process(rig.phase(0, 0, 200, 100));
    rig.process(rig.phase(1, 180, 200, 100));
    QString message;
    EXPECT_FALSE(rig.block->checkAllPhasesAngleValuesCompleteForProcessing(&message));
    EXPECT_EQ(message, "2 phases processing requires phases with 0 and 90 deg.");
}

TEST(CkToFProcessCnbl, IsCreatedAndListedByItsClassInformation) {
    const QMetaObject& meta = Block::staticMetaObject;
    EXPECT_STREQ(meta.className(), "CkToFProcessCnbl");
    EXPECT_STREQ(meta.classInfo(meta.indexOfClassInfo("CustomName")).value(), "ToF Image Processing");
    EXPECT_STREQ(meta.classInfo(meta.indexOfClassInfo("UniqueID")).value(),
                 "com.orvane.Pictor.CkToFProcessCnbl");
    const std::unique_ptr<QObject> object(meta.newInstance());
    auto* const block = qobject_cast<Block*>(object.get());
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->transform(), Block::Amplitude);
    EXPECT_EQ(block->blockKind(), 41);
    EXPECT_EQ(block->buffersCountInMemoryPool(), 1);
}

TEST(CkToFProcessCnbl, TheTitleNamesTheTransform) {
    Block block;
    EXPECT_EQ(block.title(), "ToF Amplitude");
    const char* const titles[] = {"ToF SetABPhase",    "ToF Intensity",    "ToF Amplitude", "ToF Depth",
                                  "ToF Concat phases", "ToF AandBtoAminB", "ToF SetHybrid"};
    for (int transform = 0; transform < 7; ++transform) {
        block.setTransform(Block::EkTransformType(transform), false);
        EXPECT_EQ(block.title(), titles[transform]);
    }
    for (int transform : {-1, 7, 2147483647}) {
        block.setTransform(Block::EkTransformType(transform), false);
        EXPECT_EQ(block.title(), "ToF ");
    }
}

TEST(CkToFProcessCnbl, AcceptsImageProvidersOnly) {
    Block block;
    Block provider;
    CkChainable plain;
    EXPECT_TRUE(block.acceptsDataFrom(&provider));
    EXPECT_FALSE(block.acceptsDataFrom(&plain));
    EXPECT_FALSE(block.acceptsDataFrom(nullptr));
}

TEST(CkToFProcessCnbl, SettingsRoundTrip) {
    for (int transform = 0; transform < 7; ++transform) {
        QDomDocument doc;
        QDomElement element = doc.createElement("block");
        Block saved;
        saved.setTransform(Block::EkTransformType(transform), false);
        EXPECT_TRUE(saved.saveSettings(doc, element));
        EXPECT_EQ(element.attribute("transform"), QString::number(transform));
        Block loaded;
        EXPECT_TRUE(loaded.loadSettings(element));
        EXPECT_EQ(loaded.transform(), transform);
    }
}

TEST(CkToFProcessCnbl, SavingTransform3WritesTheText3AndLoadingRestoresIt) {
    QDomDocument doc;
    QDomElement element = doc.createElement("block");
    Block block;
    block.setTransform(Block::Depth, false);
    ASSERT_TRUE(block.saveSettings(doc, element));
    EXPECT_EQ(element.attribute("transform"), "3");
    Block other;
    ASSERT_TRUE(other.loadSettings(element));
    EXPECT_EQ(other.transform(), Block::Depth);
}

TEST(CkToFProcessCnbl, JunkInTheAttributeCountsAsZero) {
    QDomDocument doc;
    for (const char* text : {"abc", "", "3.5", "0x3", "2147483648", "-2147483649", "3 4", "three"}) {
        Block block;
        block.loadSettings(elementWith(doc, text));
        EXPECT_EQ(block.transform(), Block::SetABPhase) << text;
    }
}

TEST(CkToFProcessCnbl, NumbersOutsideTheListAreKeptAndSavedAgain) {
    QDomDocument doc;
    for (int number : {7, -1, 41, 2147483647, -2147483647 - 1}) {
        Block block;
        block.loadSettings(elementWith(doc, QString::number(number)));
        EXPECT_EQ(int(block.transform()), number);
        QDomElement element = doc.createElement("block");
        block.saveSettings(doc, element);
        EXPECT_EQ(element.attribute("transform"), QString::number(number));
    }
}

TEST(CkToFProcessCnbl, SpacesAroundTheNumberAreLegal) {
    QDomDocument doc;
    Block block;
    block.loadSettings(elementWith(doc, " 6 "));
    EXPECT_EQ(block.transform(), Block::SetHybrid);
}

TEST(CkToFProcessCnbl, WithoutTheAttributeANewBlockStaysAtAmplitude) {
    QDomDocument doc;
    Block block;
    EXPECT_TRUE(block.loadSettings(elementWith(doc, QString())));
    EXPECT_EQ(block.transform(), Block::Amplitude);
}

TEST(CkToFProcessCnbl, HelpIsThisText) {
    Block block;
    EXPECT_TRUE(block.hasHelp());
    QString text = "before";
    block.help(text);
    EXPECT_EQ(text, "Processes ToF images.<ul><li><b>Phase shift</b>: measured phase shift between sent and "
                    "reflected light. "
                    "[0; 2PI]</li><li><b>Amplitude</b>: strength of the reflected "
                    "light</li><li><b>Intensity</b>: strength "
                    "of the ambient light</li><li><b>Confidence</b>: standard deviation of phase shift "
                    "measurement. (lower is "
                    "better)</li></ul>Phase shift of 2PI is equivalent to the maximum measurable distance.");
}

TEST(CkToFProcessCnbl, ACloneHasTheTransformAndAnEmptyAngleList) {
    ToFChainRig rig;
    startWithWrongAngles(rig);
    QString message;
    const std::unique_ptr<CkChainable> depth(rig.block->clone());
    auto* const twin = qobject_cast<Block*>(depth.get());
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(twin->transform(), Block::Depth);
    EXPECT_EQ(twin->chain(), nullptr);
    EXPECT_EQ(twin->errorMessage(), QString());
    EXPECT_FALSE(twin->checkAllPhasesAngleValuesCompleteForProcessing(&message));
    EXPECT_EQ(message, "ToF processing requires 2, 4 or 8 phases.") << "no angle at all";

    Block hybrid;
    hybrid.setTransform(Block::SetHybrid, false);
    const std::unique_ptr<CkChainable> hybridTwin(hybrid.clone());
    EXPECT_EQ(qobject_cast<Block*>(hybridTwin.get())->transform(), Block::SetHybrid);
}

/// Sends a set with these angles and returns whether they are usable.
struct Verdict {
    bool complete;
    QString message;
};

Verdict verdictOn(std::vector<qint32> angles, int transform) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(qint32(angles.size()));
    rig.start(transform);
    for (size_t i = 0; i < angles.size(); ++i) {
        rig.process(rig.phase(qint32(i), angles[i], 200, 100));
    }
    Verdict verdict{false, "untouched"};
    verdict.complete = rig.block->checkAllPhasesAngleValuesCompleteForProcessing(&verdict.message);
    EXPECT_EQ(rig.block->checkAllPhasesAngleValuesCompleteForProcessing(nullptr), verdict.complete);
    return verdict;
}

TEST(CheckAllPhases, TableOfAngleLists) {
    const QString two = "2 phases processing requires phases with 0 and 90 deg.";
    const QString four = "4 phases processing requires phases with 0, 90, 180 and 270 deg.";
    const QString eight =
        "8 phases processing requires phases with 0, 45, 90, 135, 180, 225, 270 and 315 deg.";
    const QString other = "ToF processing requires 2, 4 or 8 phases.";
    const QString none = "untouched";
    const struct {
        std::vector<qint32> angles;
        QString message;
    } cases[] = {
        {{0, 90}, none},
        {{90, 0}, none},
        {{0, 180}, two},
        {{90, 90}, two},
        {{0, 90, 180, 270}, none},
        {{270, 180, 90, 0}, none},
        {{0, 90, 180, 360}, four},
        {{0, 0, 180, 270}, four},
        {{0, 45, 90, 135, 180, 225, 270, 315}, none},
        {{315, 270, 225, 180, 135, 90, 45, 0}, none},
        {{0, 45, 90, 136, 180, 225, 270, 315}, eight},
        {{0, 90, 180}, other},
        {{0, 45, 90, 135, 180}, other},
        {{1, 2, 3, 4, 5, 6, 7, 8, 9}, other},
    };
    for (const auto& c : cases) {
        for (int transform : {Block::Amplitude, Block::Depth}) {
            const Verdict verdict = verdictOn(c.angles, transform);
            EXPECT_EQ(verdict.complete, c.message == none);
            EXPECT_EQ(verdict.message, c.message);
        }
    }
}

TEST(CheckAllPhases, Angles0And180AreNoTwoPhases) {
    const Verdict verdict = verdictOn({0, 180}, Block::Depth);
    EXPECT_FALSE(verdict.complete);
    EXPECT_EQ(verdict.message, "2 phases processing requires phases with 0 and 90 deg.");
}

TEST(CheckAllPhases, ASingleAngleOrIntensityIsAlwaysComplete) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 0); // one image per set, of an unknown number of phases
    rig.useSequence(1);
    rig.start(Block::Depth);
    EXPECT_FALSE(rig.process(rig.phase(0, 77, 200, 100)).empty());
    EXPECT_TRUE(rig.block->checkAllPhasesAngleValuesCompleteForProcessing(nullptr));
    for (int transform : {0, 1, 4, 5, 6, -1, 7}) {
        const Verdict verdict = verdictOn({0, 180}, transform);
        EXPECT_TRUE(verdict.complete);
        EXPECT_EQ(verdict.message, "untouched");
    }
}

TEST(SetTransform, RestartsARunningChain) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(Block::Amplitude);
    int starts = 0;
    QObject::connect(rig.chain, &CkChain::runningChanged, [&](bool running) { starts += running; });
    rig.block->setTransform(Block::Depth, true);
    QCoreApplication::processEvents();
    EXPECT_EQ(starts, 1);
    EXPECT_TRUE(rig.chain->started());
    const ToFResult result = rig.process(rig.frame(5));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(result.picture().dataType, EkImageDataType::Float32);
    rig.block->setTransform(Block::Depth, true);
    QCoreApplication::processEvents();
    EXPECT_EQ(starts, 2) << "also when the transform is the same";
}

TEST(SetTransform, OnAStoppedChainOrWithoutTheFlagItOnlyStores) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    int changes = 0;
    QObject::connect(rig.chain, &CkChain::runningChanged, [&](bool) { ++changes; });
    rig.block->setTransform(Block::Depth, true);
    EXPECT_TRUE(rig.chain->stopped());
    rig.start(Block::Amplitude);
    QCoreApplication::processEvents();
    const int afterStart = changes;
    rig.block->setTransform(Block::Intensity, false);
    QCoreApplication::processEvents();
    EXPECT_EQ(changes, afterStart);
    EXPECT_EQ(rig.block->transform(), Block::Intensity);
    Block alone;
    alone.setTransform(Block::Intensity, true);
    EXPECT_EQ(alone.transform(), Block::Intensity);
}

TEST(IsInChainWithVideoSource, LooksAtTheClassOfTheFirstSource) {
    Block alone;
    EXPECT_FALSE(alone.isInChainWithVideoSource());
    ToFChainRig video;
    EXPECT_TRUE(video.block->isInChainWithVideoSource());
    ToFChainRig other(std::make_unique<PushSource>());
    EXPECT_FALSE(other.block->isInChainWithVideoSource());
}

TEST(IsInChainWithVideoSource, ACameraCountsAndAChainWithoutSourceDoesNot) {
    CkChainManager* const manager = CkChainManager::instance();
    CkChain* chain = manager->createChain();
    auto* const camera = new CkCameraSource;
    auto* const block = new Block;
    ASSERT_TRUE(manager->insertAfter(chain, camera, nullptr));
    ASSERT_TRUE(manager->insertAfter(chain, block, camera));
    EXPECT_TRUE(block->isInChainWithVideoSource());
    delete camera;
    EXPECT_TRUE(chain->imageSources().isEmpty());
    EXPECT_FALSE(block->isInChainWithVideoSource());
    manager->closeChain(chain);
}

TEST(IsInChainWithVideoSource, OfSeveralSourcesTheFirstDecides) {
    ToFChainRig other(std::make_unique<PushSource>());
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(other.chain, new CkVideoSource, nullptr));
    EXPECT_FALSE(other.block->isInChainWithVideoSource());
    ToFChainRig video; // a video, and the rig's own second source
    ASSERT_EQ(video.chain->imageSources().size(), 2);
    EXPECT_TRUE(video.block->isInChainWithVideoSource());
}

/// Passes a frame to the block of a stopped chain, which only a test does: it shows what the block still
/// holds.
bool makesSomething(ToFChainRig& rig, std::unique_ptr<CkImageData> frame) {
    const std::unique_ptr<IkChainData> answer(rig.block->processData(frame.get()));
    if (answer != nullptr) {
        static_cast<void>(frame.release()); // the block has deleted it
    }
    return answer != nullptr;
}

TEST(SetupStop, ForgetsTheSet) {
    ToFChainRig rig;
    startWithWrongAngles(rig);
    QString message;
    rig.stop();
    EXPECT_FALSE(rig.block->checkAllPhasesAngleValuesCompleteForProcessing(&message));
    EXPECT_EQ(message, "ToF processing requires 2, 4 or 8 phases.") << "no angle at all";
    EXPECT_FALSE(makesSomething(rig, rig.phase(1, 90, 200, 100)));
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::setDiffers) << "no buffer";
}

TEST(SetupStop, ForgetsTheReferenceSection) {
    ToFChainRig rig;
    rig.useHybrid(4, 2, 1);
    rig.source->metadata.sectionMode = 3;
    rig.start(Block::Amplitude);
    const auto frame = [&] { return rig.section(1, [](quint32, quint32, quint32) { return 5; }); };
    EXPECT_FALSE(rig.process(frame()).empty());
    rig.stop();
    EXPECT_FALSE(makesSomething(rig, frame()));
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noReference);
}

TEST(SetupStop, ForgetsTheBufferOfMergedSections) {
    ToFChainRig rig;
    rig.useHybrid(4, 6, 3);
    rig.start(Block::ConcatPhases);
    EXPECT_FALSE(rig.process(rig.frame(5)).empty());
    rig.stop();
    EXPECT_FALSE(makesSomething(rig, rig.frame(5)));
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::nothingToMerge);
}

TEST(CheckAllPhases, TheListHasAnEntryForEveryImageAlsoWithoutABuffer) {
    ToFChainRig rig;
    rig.start(Block::Depth); // the input is not known yet
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::setDiffers);
    QString message;
    EXPECT_FALSE(rig.block->checkAllPhasesAngleValuesCompleteForProcessing(&message));
    EXPECT_EQ(message, "2 phases processing requires phases with 0 and 90 deg.");
    rig.useSequence(4);
    EXPECT_TRUE(rig.process(rig.phase(9, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::outsideSet);
    EXPECT_FALSE(rig.block->checkAllPhasesAngleValuesCompleteForProcessing(&message));
    EXPECT_EQ(message, "4 phases processing requires phases with 0, 90, 180 and 270 deg.");
}

} // namespace
