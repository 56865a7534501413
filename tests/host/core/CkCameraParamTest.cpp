#include "zuCore/CkCameraParameters.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <stdexcept>

using testing::ElementsAre;

namespace {

using SkDescription = CkCameraParam::SkDescription;

SkDescription describe(const char* name, CkCameraParam::EkKind kind, const CkValue& value,
                       double minimum = 0.0, double maximum = 0.0, double step = 1.0) {
    SkDescription description;
    description.name = QString::fromLatin1(name);
    description.kind = kind;
    description.value = value;
    description.minimum = minimum;
    description.maximum = maximum;
    description.step = step;
    return description;
}

/// A camera that logs the committed parameters and refuses on demand.
class CkCameraParamTest : public testing::Test {
protected:
    CkCameraParam* add(const SkDescription& description) { return parameters.addParam(description); }

    bool refuses = false;
    std::vector<std::string> commits;
    CkCameraParameters parameters{{QStringLiteral("id"), QStringLiteral("name"), {}, {}, 13},
                                  [this](const QList<CkCameraParam*>& params) {
                                      std::string text;
                                      for (const CkCameraParam* param : params) {
                                          text += param->name().toStdString() + "=" +
                                                  param->paramValue().toString().toStdString() + ";";
                                      }
                                      commits.push_back(text);
                                      return !refuses;
                                  }};
};

} // namespace

TEST_F(CkCameraParamTest, IntegersAreClampedAndStepped) {
    CkCameraParam* const param = add(describe("i", CkCameraParam::EkKind::Integer, 10, 10, 33, 5));
    struct SkCase {
        double set;
        qint64 kept;
    };
    // Steps from 10: 10, 15, 20, 25, 30; 33 lies beyond the last one.
    for (const SkCase& entry :
         {SkCase{-5, 10}, {12, 10}, {13, 15}, {17, 15}, {18, 20}, {31, 30}, {33, 30}, {1e30, 30}}) {
        EXPECT_TRUE(param->setParamValue(entry.set));
        EXPECT_EQ(param->paramValue(), CkValue(entry.kept)) << entry.set;
    }
    EXPECT_TRUE(param->setParamValue(QStringLiteral("25")));
    EXPECT_EQ(param->paramValue(), CkValue(25));
}

TEST_F(CkCameraParamTest, IntegersOverTheWholeRangeDoNotOverflow) {
    const double limit = 9.3e18;
    CkCameraParam* const param = add(describe("i", CkCameraParam::EkKind::Integer, 0, -limit, limit, 1));
    for (const qint64 value :
         {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(), qint64(0)}) {
        EXPECT_TRUE(param->setParamValue(value));
        EXPECT_EQ(param->paramValue(), CkValue(value));
    }
}

TEST_F(CkCameraParamTest, FloatsAreClampedAndStepped) {
    CkCameraParam* const param = add(describe("f", CkCameraParam::EkKind::Float, 1.0, 1.0, 2.0, 0.25));
    for (const auto& [set, kept] : {std::pair{0.0, 1.0}, {1.3, 1.25}, {1.4, 1.5}, {9.0, 2.0}}) {
        EXPECT_TRUE(param->setParamValue(set));
        EXPECT_DOUBLE_EQ(param->paramValue().toDouble(), kept) << set;
    }
    EXPECT_FALSE(param->setParamValue(std::nan("")));
    EXPECT_DOUBLE_EQ(param->paramValue().toDouble(), 2.0);

    CkCameraParam* const uneven = add(describe("u", CkCameraParam::EkKind::Float, 0.0, 0.0, 1.0, 0.4));
    EXPECT_TRUE(uneven->setParamValue(1.0));
    EXPECT_DOUBLE_EQ(uneven->paramValue().toDouble(), 0.8);

    CkCameraParam* const smooth = add(describe("s", CkCameraParam::EkKind::Float, 0.0, 0.0, 1.0, 0.0));
    EXPECT_TRUE(smooth->setParamValue(0.123));
    EXPECT_DOUBLE_EQ(smooth->paramValue().toDouble(), 0.123);
}

TEST_F(CkCameraParamTest, WithoutLimitsEveryNumberIsKept) {
    CkCameraParam* const param = add(describe("i", CkCameraParam::EkKind::Integer, 0));
    EXPECT_TRUE(param->setParamValue(-123456));
    EXPECT_EQ(param->paramValue(), CkValue(-123456));
}

TEST_F(CkCameraParamTest, EnumerationsTakeTheirEntries) {
    SkDescription description = describe("e", CkCameraParam::EkKind::Enumeration, 2);
    description.entries = {{2, QStringLiteral("A minus B")}, {4, QStringLiteral("A and B")}};
    CkCameraParam* const param = add(description);
    EXPECT_TRUE(param->setParamValue(4));
    EXPECT_EQ(param->paramValue(), CkValue(4));
    EXPECT_TRUE(param->setParamValue(QStringLiteral("A minus B")));
    EXPECT_EQ(param->paramValue(), CkValue(2));
    EXPECT_TRUE(param->setParamValue(QStringLiteral("4")));
    EXPECT_FALSE(param->setParamValue(3));
    EXPECT_FALSE(param->setParamValue(QStringLiteral("neither")));
    EXPECT_FALSE(param->setParamValue(CkValue()));
    EXPECT_EQ(param->paramValue(), CkValue(4));

    description.name = QStringLiteral("open");
    description.acceptsUnlisted = true;
    CkCameraParam* const open = add(description);
    EXPECT_TRUE(open->setParamValue(3));
    EXPECT_EQ(open->paramValue(), CkValue(3));
    EXPECT_FALSE(open->setParamValue(QStringLiteral("neither")));
}

TEST_F(CkCameraParamTest, ReadOnlyStays) {
    SkDescription description = describe("r", CkCameraParam::EkKind::Integer, 7, 0, 10);
    description.readOnly = true;
    CkCameraParam* const param = add(description);
    EXPECT_FALSE(param->setParamValue(8));
    EXPECT_EQ(param->paramValue(), CkValue(7));
}

TEST_F(CkCameraParamTest, CommitSendsOneValueAndTellsIt) {
    CkCameraParam* const param = add(describe("i", CkCameraParam::EkKind::Integer, 1, 0, 10));
    std::vector<qint64> signalled;
    QObject::connect(param, &CkCameraParam::valueChanged, param,
                     [&](const CkValue& value) { signalled.push_back(value.toInt64()); });
    EXPECT_TRUE(param->setParamValue(5));
    EXPECT_EQ(param->committedValue(), CkValue(1));
    EXPECT_TRUE(signalled.empty());
    EXPECT_TRUE(param->commit());
    EXPECT_EQ(param->committedValue(), CkValue(5));
    EXPECT_THAT(signalled, ElementsAre(5));
    EXPECT_THAT(commits, ElementsAre("i=5;"));
}

TEST_F(CkCameraParamTest, ABatchReachesTheCameraAsOneInOrder) {
    CkCameraParam* const a = add(describe("a", CkCameraParam::EkKind::Integer, 1, 0, 10));
    CkCameraParam* const b = add(describe("b", CkCameraParam::EkKind::Bool, false));
    QList<CkCameraParam*> changed;
    QObject::connect(&parameters, &CkCameraParameters::committed, &parameters, [&](const auto& params) {
        changed = params;
        EXPECT_EQ(a->committedValue(), CkValue(3)); // all values are stored before the first signal
        EXPECT_EQ(b->committedValue(), CkValue(true));
    });
    b->setParamValue(true);
    a->setParamValue(3);
    parameters.addParamCommitToBatch(b);
    parameters.addParamCommitToBatch(a);
    parameters.addParamCommitToBatch(b);
    EXPECT_TRUE(commits.empty());
    EXPECT_TRUE(parameters.endCommitBatch(true));
    EXPECT_THAT(commits, ElementsAre("b=true;a=3;"));
    EXPECT_EQ(changed, (QList<CkCameraParam*>{b, a}));

    EXPECT_TRUE(parameters.endCommitBatch(true)) << "an empty batch succeeds";
    EXPECT_EQ(commits.size(), 1U) << "but reaches no camera";
    EXPECT_TRUE(changed.isEmpty());
}

TEST_F(CkCameraParamTest, ARefusedBatchIsTakenBackWhole) {
    CkCameraParam* const a = add(describe("a", CkCameraParam::EkKind::Integer, 1, 0, 10));
    CkCameraParam* const b = add(describe("b", CkCameraParam::EkKind::Integer, 2, 0, 10));
    int signalled = 0;
    QObject::connect(a, &CkCameraParam::valueChanged, a, [&] { ++signalled; });
    refuses = true;
    a->setParamValue(5);
    b->setParamValue(6);
    parameters.addParamCommitToBatch(a);
    parameters.addParamCommitToBatch(b);
    EXPECT_FALSE(parameters.endCommitBatch(true));
    EXPECT_EQ(a->paramValue(), CkValue(1));
    EXPECT_EQ(b->paramValue(), CkValue(2));
    EXPECT_EQ(signalled, 0);
    refuses = false;
    EXPECT_TRUE(parameters.endCommitBatch(true)) << "the refused batch is over";
    EXPECT_EQ(a->committedValue(), CkValue(1));
}

TEST_F(CkCameraParamTest, ABatchThatIsNotCommittedIsTakenBack) {
    CkCameraParam* const a = add(describe("a", CkCameraParam::EkKind::Integer, 1, 0, 10));
    a->setParamValue(5);
    parameters.addParamCommitToBatch(a);
    EXPECT_TRUE(parameters.endCommitBatch(false));
    EXPECT_EQ(a->paramValue(), CkValue(1));
    EXPECT_TRUE(commits.empty());
}

TEST_F(CkCameraParamTest, FindsByName) {
    CkCameraParam* const param = add(describe("Gain", CkCameraParam::EkKind::Integer, 1));
    EXPECT_EQ(parameters.findParam(QStringLiteral("Gain")), param);
    EXPECT_EQ(parameters.findParam(QStringLiteral("gain")), nullptr);
    EXPECT_EQ(parameters.findParam(QStringLiteral("gain"), true), param);
    EXPECT_EQ(add(describe("Gain", CkCameraParam::EkKind::Integer, 2)), nullptr) << "the name is taken";
    EXPECT_EQ(parameters.params().size(), 1);
    EXPECT_EQ(parameters.cameraInfo().sensorType, 13U);
}

TEST_F(CkCameraParamTest, AForeignParameterDoesNotGetIntoABatch) {
    CkCameraParameters other({}, nullptr);
    CkCameraParam* const foreign = other.addParam(describe("x", CkCameraParam::EkKind::Integer, 1));
    foreign->setParamValue(2);
    parameters.addParamCommitToBatch(foreign);
    parameters.addParamCommitToBatch(nullptr);
    EXPECT_TRUE(parameters.endCommitBatch(true));
    EXPECT_TRUE(commits.empty());
    EXPECT_EQ(foreign->committedValue(), CkValue(1));
    EXPECT_TRUE(foreign->commit()) << "without a driver every value is accepted";
}

TEST(CkCameraParameters, ADriverThatThrowsRefuses) {
    CkCameraParameters parameters(
        {}, [](const QList<CkCameraParam*>&) -> bool { throw std::runtime_error("x"); });
    CkCameraParam* const param = parameters.addParam(describe("a", CkCameraParam::EkKind::Integer, 1));
    EXPECT_TRUE(param->setParamValue(2));
    EXPECT_FALSE(param->commit());
    EXPECT_EQ(param->paramValue(), CkValue(1));
}

TEST_F(CkCameraParamTest, TheLastStepReachesTheMaximumWhateverTheRounding) {
    // 0.0 + 3 * 0.1 is 0.30000000000000004.
    CkCameraParam* const whole = add(describe("f", CkCameraParam::EkKind::Float, 0.0, 0.0, 0.3, 0.1));
    EXPECT_TRUE(whole->setParamValue(0.3));
    EXPECT_EQ(whole->paramValue().toDouble(), 0.3);
    // The fourth step would end at 0.4.
    CkCameraParam* const cut = add(describe("g", CkCameraParam::EkKind::Float, 0.0, 0.0, 0.38, 0.1));
    EXPECT_TRUE(cut->setParamValue(0.38));
    EXPECT_NEAR(cut->paramValue().toDouble(), 0.3, 1e-12);
}
