// Sequences of frames with their expected outputs and error texts, as a table: sets of phases and sections,
// reference sections, transforms that need no set, a pool without a free picture.

#include "tests/plugins/zplToF/chain/ToFChainRig.h"

#include <gtest/gtest.h>

namespace {

using Block = CkToFProcessCnbl;

using namespace ToFTexts;
const QString none;
const QString kTwoPhases = "2 phases processing requires phases with 0 and 90 deg.";
const QString kFourPhases = "4 phases processing requires phases with 0, 90, 180 and 270 deg.";
const QString kOddPhases = "ToF processing requires 2, 4 or 8 phases.";
const QString kWrongKind = "The input image must be RAWX2 image with A and B channel, or RAW A minus B ToF "
                           "image, or X1X2X3 ToF image.";

using Out = std::vector<int>;

/// A frame of 4 x 2 pixels and its expected result.
struct Step {
    qint64 index;  ///< in its set
    qint64 count;  ///< images of the set, by the metadata of this frame
    int value;     ///< of its pixels, see frameOf
    Out rows;      ///< of the output, one value per row; empty: no output
    QString error; ///< shown on the block afterwards
    qint32 angle = 0;
    bool foreign = false;       ///< a colour picture instead
    bool releaseBefore = false; ///< the outputs kept so far are released first
};

enum class Kind { Phases, Sections };

struct Sequence {
    const char* name;
    Kind kind;
    Block::EkTransformType transform;
    qint64 setUpCount;
    std::vector<Step> steps;
    quint32 setUpMode = 0; ///< section mode at set-up
    quint32 mode = 0;      ///< section mode of the frames
    bool keepsOutputs = false;
};

std::vector<Sequence> phaseGathering() {
    constexpr auto concat = Block::ConcatPhases;
    return {
        {"in order",
         Kind::Phases,
         concat,
         4,
         {{0, 4, 1, {}, none},
          {1, 4, 2, {}, none},
          {2, 4, 3, {}, none},
          {3, 4, 4, {1, 1, 2, 2, 3, 3, 4, 4}, none}}},
        {"two sets",
         Kind::Phases,
         concat,
         2,
         {{0, 2, 1, {}, none},
          {1, 2, 2, {1, 1, 2, 2}, none},
          {0, 2, 3, {}, none},
          {1, 2, 4, {3, 3, 4, 4}, none}}},
        {"restarted after two",
         Kind::Phases,
         concat,
         3,
         {{0, 3, 1, {}, none},
          {1, 3, 2, {}, none},
          {0, 3, 5, {}, none},
          {1, 3, 6, {}, none},
          {2, 3, 7, {5, 5, 6, 6, 7, 7}, none}}},
        {"repeated: the later one holds",
         Kind::Phases,
         concat,
         2,
         {{0, 2, 1, {}, none},
          {0, 2, 2, {}, none},
          {1, 2, 3, {2, 2, 3, 3}, none},
          {1, 2, 4, {2, 2, 4, 4}, none}}},
        {"one missing",
         Kind::Phases,
         concat,
         3,
         {{0, 3, 1, {}, none},
          {2, 3, 3, {}, none},
          {0, 3, 4, {}, none},
          {1, 3, 5, {}, none},
          {2, 3, 6, {4, 4, 5, 5, 6, 6}, none}}},
        {"out of order",
         Kind::Phases,
         concat,
         3,
         {{0, 3, 1, {}, none}, {2, 3, 3, {}, none}, {1, 3, 2, {1, 1, 2, 2, 3, 3}, none}}},
        {"starts in the middle",
         Kind::Phases,
         concat,
         2,
         {{1, 2, 9, {}, none}, {0, 2, 1, {}, none}, {1, 2, 2, {1, 1, 2, 2}, none}}},
        {"out of range: the set is not disturbed",
         Kind::Phases,
         concat,
         2,
         {{0, 2, 1, {}, none},
          {2, 2, 9, {}, outsideSet},
          {-1, 2, 9, {}, outsideSet},
          {2000000000, 2, 9, {}, outsideSet},
          {1, 2, 2, {1, 1, 2, 2}, none}}},
        {"the length shrinks: what fits is kept",
         Kind::Phases,
         Block::Amplitude,
         3,
         {{.index = 0, .count = 3, .value = 60, .rows = {}, .error = none, .angle = 0},
          {.index = 2, .count = 3, .value = 70, .rows = {}, .error = none, .angle = 180},
          {.index = 1, .count = 2, .value = 80, .rows = {50, 50}, .error = none, .angle = 90},
          {.index = 0, .count = 2, .value = 30, .rows = {}, .error = none, .angle = 0}}},
        // Four phases: sqrt((60 + 60)^2 + (80 + 80)^2) / 4.
        {"the length grows within the buffer: the new ones are missing",
         Kind::Phases,
         Block::Amplitude,
         4,
         {{.index = 0, .count = 2, .value = 60, .rows = {}, .error = none, .angle = 0},
          {.index = 1, .count = 2, .value = 80, .rows = {50, 50}, .error = none, .angle = 90},
          {.index = 2, .count = 4, .value = -60, .rows = {}, .error = none, .angle = 180},
          {.index = 3, .count = 4, .value = -80, .rows = {50, 50}, .error = none, .angle = 270}}},
        {"the length shrinks and grows: what was cut off has to come again",
         Kind::Phases,
         Block::Amplitude,
         4,
         {{.index = 0, .count = 4, .value = 60, .rows = {}, .error = none, .angle = 0},
          {.index = 3, .count = 4, .value = 70, .rows = {}, .error = none, .angle = 270},
          {.index = 1, .count = 2, .value = 80, .rows = {50, 50}, .error = none, .angle = 90},
          {.index = 2, .count = 4, .value = -60, .rows = {}, .error = none, .angle = 180},
          {.index = 3, .count = 4, .value = -80, .rows = {50, 50}, .error = none, .angle = 270}}},
        {"a shorter length whose output is smaller than the pool's pictures: dropped, and set up anew",
         Kind::Phases,
         concat,
         3,
         {{0, 3, 1, {}, none},
          {1, 2, 2, {}, none},
          {1, 2, 3, {}, none},
          {0, 2, 4, {}, none},
          {1, 2, 5, {4, 4, 5, 5}, none}}},
        {"the length grows beyond the buffer",
         Kind::Phases,
         concat,
         2,
         {{0, 2, 1, {}, none},
          {1, 4, 9, {}, setDiffers},
          {2, 4, 9, {}, setDiffers},
          {1, 2, 2, {1, 1, 2, 2}, none}}},
        {"the length is two billion for a frame",
         Kind::Phases,
         concat,
         2,
         {{0, 2, 1, {}, none}, {1, 2000000000, 9, {}, tooLarge}, {1, 2, 2, {1, 1, 2, 2}, none}}},
        {"index 0 of a set too large begins anew all the same",
         Kind::Phases,
         concat,
         2,
         {{0, 2, 1, {}, none}, {0, 8, 9, {}, setDiffers}, {1, 2, 2, {}, none}}},
    };
}

std::vector<Sequence> sections() {
    return {
        // 4000 of 12 bits is saturated, 1000 is not and counts twice; 11 bits in use are scaled to 16.
        {"sections are merged",
         Kind::Sections,
         Block::ConcatPhases,
         3,
         {{0, 3, 500, {}, none},
          {1, 3, 1000, {}, none},
          {2, 3, 4000, {2000 << 5, 2000 << 5}, none},
          {0, 3, 500, {}, none},
          {0, 3, 250, {}, none},
          {1, 3, 500, {}, none},
          {3, 3, 4000, {}, outsideSet},
          {2, 3, 4000, {1000 << 6, 1000 << 6}, none}}},
        {"images of two rows that say they hold three phases leave no rows for an intensity",
         Kind::Sections,
         Block::Intensity,
         3,
         {{0, 3, 500, {}, noOutput}, {1, 3, 1000, {}, noOutput}, {2, 3, 4000, {}, noOutput}}},
        {"a reference section does not count among the sections",
         Kind::Sections,
         Block::ConcatPhases,
         3,
         {{0, 3, 100, {}, none}, {1, 3, 600, {}, none}, {2, 3, 1124, {1024 << 5, 1024 << 5}, none}},
         3,
         3},
        // Amplitude of the windows v, v, v is 0; of v, v, 0 it is 2 v, see frameOf.
        {"section mode 3 with its buffers",
         Kind::Sections,
         Block::Amplitude,
         2,
         {{1, 2, 50, {100, 100}, none},
          {0, 2, 20, {}, none},
          {1, 2, 50, {60, 60}, none},
          {0, 2, 45, {}, none},
          {1, 2, 50, {10, 10}, none},
          {1, 2, 30, {0, 0}, none}},
         3,
         3},
        {"section mode 3 without its buffers",
         Kind::Sections,
         Block::Amplitude,
         1,
         {{0, 2, 20, {}, noReference}, {1, 2, 50, {}, noReference}, {2, 2, 50, {}, noReference}},
         0,
         3},
        {"the section count changes from frame to frame",
         Kind::Sections,
         Block::ConcatPhases,
         3,
         {{0, 3, 500, {}, none},
          {1, 0, 9, {}, noOutput}, // not part of a set: two rows for three phases
          {1, 0xffffffff, 9, {}, noOutput},
          {0xffffffff, 3, 9, {}, outsideSet},
          {0, 3, 500, {}, none},
          {1, 3, 1000, {}, none},
          {2, 3, 4000, {2000 << 5, 2000 << 5}, none}}},
    };
}

std::vector<Sequence> withoutASet() {
    return {
        {"SetABPhase works on each image",
         Kind::Phases,
         Block::SetABPhase,
         4,
         {{0, 4, 1, {1, 1}, none},
          {1, 4, 2, {2, 2}, none},
          {7, 4, 3, {3, 3}, none},
          {0, 2, 4, {4, 4}, none}}},
        {"AandBtoAminB works on each image",
         Kind::Phases,
         Block::AandBtoAminB,
         4,
         {{0, 4, 1, {1, 1}, none}, {-1, 4, 2, {2, 2}, none}, {3, 4, 3, {3, 3}, none}}},
        {"SetHybrid works on each section",
         Kind::Sections,
         Block::SetHybrid,
         3,
         {{0, 3, 1, {1, 1}, none}, {1, 3, 2, {2, 2}, none}, {9, 3, 3, {3, 3}, none}}},
    };
}

std::vector<Sequence> poolAndErrors() {
    return {
        // One picture for the block and three for the view of the rig.
        {"without a free picture a frame is dropped silently, and the set stays",
         Kind::Phases,
         Block::ConcatPhases,
         2,
         {{0, 2, 1, {}, none},
          {1, 2, 2, {1, 1, 2, 2}, none},
          {1, 2, 3, {1, 1, 3, 3}, none},
          {1, 2, 4, {1, 1, 4, 4}, none},
          {1, 2, 5, {1, 1, 5, 5}, none},
          {1, 2, 6, {}, none},
          {1, 2, 7, {}, none},
          {.index = 1, .count = 2, .value = 8, .rows = {1, 1, 8, 8}, .error = none, .releaseBefore = true}},
         0,
         0,
         true},
        // Differences of 60 and 80, sqrt(60^2 + 80^2) / 2, or of 60 and 0.
        {"a message of bad angles appears, stays and clears",
         Kind::Phases,
         Block::Amplitude,
         2,
         {{.index = 0, .count = 2, .value = 60, .rows = {}, .error = none, .angle = 0},
          {.index = 1, .count = 2, .value = 80, .rows = {50, 50}, .error = none, .angle = 90},
          {.index = 1, .count = 2, .value = 0, .rows = {30, 30}, .error = kTwoPhases, .angle = 180},
          {.index = 1, .count = 2, .value = 0, .rows = {30, 30}, .error = kTwoPhases, .angle = 45},
          {.index = 1, .count = 2, .value = 80, .rows = {50, 50}, .error = none, .angle = 90},
          {.index = 1, .count = 2, .value = 0, .rows = {30, 30}, .error = kTwoPhases, .angle = 0},
          {.index = 0, .count = 2, .value = 60, .rows = {}, .error = none, .angle = 0}}},
        {"four phases need their four angles",
         Kind::Phases,
         Block::Amplitude,
         4,
         {{.index = 0, .count = 4, .value = 0, .rows = {}, .error = none, .angle = 0},
          {.index = 1, .count = 4, .value = 0, .rows = {}, .error = none, .angle = 90},
          {.index = 2, .count = 4, .value = 0, .rows = {}, .error = none, .angle = 180},
          {.index = 3, .count = 4, .value = 0, .rows = {0, 0}, .error = kFourPhases, .angle = 360},
          {.index = 3, .count = 4, .value = 0, .rows = {0, 0}, .error = none, .angle = 270}}},
        {"three phases are none that can be processed: a zero picture",
         Kind::Phases,
         Block::Amplitude,
         3,
         {{.index = 0, .count = 3, .value = 60, .rows = {}, .error = none, .angle = 0},
          {.index = 1, .count = 3, .value = 60, .rows = {}, .error = none, .angle = 90},
          {.index = 2, .count = 3, .value = 60, .rows = {0, 0}, .error = kOddPhases, .angle = 180}}},
        {"a negotiation error appears, stays, clears, and does not replace a message that is shown",
         Kind::Phases,
         Block::Amplitude,
         2,
         {{.index = 0, .count = 0, .value = 5, .rows = {}, .error = kWrongKind, .foreign = true},
          {.index = 0, .count = 0, .value = 5, .rows = {}, .error = kWrongKind, .foreign = true},
          {.index = 0, .count = 2, .value = 60, .rows = {}, .error = none, .angle = 0},
          {.index = 1, .count = 2, .value = 0, .rows = {30, 30}, .error = kTwoPhases, .angle = 45},
          {.index = 0, .count = 0, .value = 5, .rows = {}, .error = kTwoPhases, .foreign = true},
          {.index = 1, .count = 2, .value = 80, .rows = {50, 50}, .error = none, .angle = 90}}},
    };
}

/// Phases: both taps the value, or where a difference counts, tap A the value above tap B. Sections: all
/// three windows the value, or where the amplitude counts, the first two.
std::unique_ptr<CkImageData> frameOf(ToFChainRig& rig, const Sequence& sequence, const Step& step) {
    const bool difference =
        sequence.transform == Block::AandBtoAminB || sequence.transform == Block::Amplitude;
    if (step.foreign) {
        rig.source->setFormat(4, 2, 3, EkImageDataType::UInt8, 8);
        rig.source->metadata = CkImageMetadata();
        return rig.frame(step.value);
    }
    if (sequence.kind == Kind::Phases) {
        rig.useAandB(4, 2, 1);
        rig.useSequence(qint32(step.count));
        const int b = difference ? 100 : step.value;
        return rig.phase(qint32(step.index), step.angle, difference ? b + step.value : step.value, b);
    }
    rig.useHybrid(4, 2, qint32(sequence.setUpCount) - (sequence.setUpMode == 3 ? 1 : 0));
    rig.source->metadata.sectionCount = quint32(step.count);
    rig.source->metadata.sectionMode = sequence.mode;
    return rig.section(quint32(step.index), [&](quint32, quint32, quint32 c) {
        return c == 2 && sequence.transform == Block::Amplitude ? 0 : step.value;
    });
}

void setUp(ToFChainRig& rig, const Sequence& sequence) {
    if (sequence.kind == Kind::Phases) {
        rig.useAandB(4, 2, 1);
        rig.useSequence(qint32(sequence.setUpCount));
    } else {
        rig.useHybrid(4, 2, qint32(sequence.setUpCount) - (sequence.setUpMode == 3 ? 1 : 0));
        rig.source->metadata.sectionCount = quint32(sequence.setUpCount);
        rig.source->metadata.sectionMode = sequence.setUpMode;
    }
    rig.start(sequence.transform);
}

void expectTable(const std::vector<Sequence>& table) {
    for (const Sequence& sequence : table) {
        SCOPED_TRACE(sequence.name);
        ToFChainRig rig;
        setUp(rig, sequence);
        std::vector<ToFResult> kept;
        for (size_t i = 0; i < sequence.steps.size(); ++i) {
            SCOPED_TRACE(i);
            const Step& step = sequence.steps[i];
            if (step.releaseBefore) {
                kept.clear();
            }
            ToFResult result = rig.process(frameOf(rig, sequence, step));
            EXPECT_EQ(rig.block->errorMessage(), step.error);
            EXPECT_FALSE(result.passedThrough);
            EXPECT_EQ(result.empty() ? Out() : rowValues(result.picture()), step.rows);
            if (sequence.keepsOutputs) {
                kept.push_back(std::move(result));
            }
        }
    }
}

TEST(FrameSequence, TableOfPhaseGathering) {
    expectTable(phaseGathering());
}

TEST(FrameSequence, TableOfSections) {
    expectTable(sections());
}

TEST(FrameSequence, TableOfTransformsThatNeedNoSet) {
    expectTable(withoutASet());
}

TEST(FrameSequence, TableOfPoolAndErrorTexts) {
    expectTable(poolAndErrors());
}

} // namespace
