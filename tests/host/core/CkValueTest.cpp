#include "zuCore/CkValue.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

TEST(CkValue, KnowsItsType) {
    EXPECT_EQ(CkValue().type(), CkValue::EkType::None);
    EXPECT_FALSE(CkValue().isValid());
    EXPECT_EQ(CkValue(3).type(), CkValue::EkType::Int);
    EXPECT_EQ(CkValue(qint64(3)).type(), CkValue::EkType::Int);
    EXPECT_EQ(CkValue(3.0).type(), CkValue::EkType::Float);
    EXPECT_EQ(CkValue(3.0F).type(), CkValue::EkType::Float);
    EXPECT_EQ(CkValue(true).type(), CkValue::EkType::Bool);
    EXPECT_EQ(CkValue(QStringLiteral("3")).type(), CkValue::EkType::String);
}

TEST(CkValue, FractionsAreCutOffTowardsZero) {
    EXPECT_EQ(CkValue(2.9).toInt64(), 2);
    EXPECT_EQ(CkValue(-2.9).toInt64(), -2);
    EXPECT_EQ(CkValue(QStringLiteral("-2.9")).toInt(), -2);
}

TEST(CkValue, NumbersOutOfRangeSaturate) {
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    EXPECT_EQ(CkValue(1e300).toInt64(), most);
    EXPECT_EQ(CkValue(-1e300).toInt64(), least);
    EXPECT_EQ(CkValue(9223372036854775808.0).toInt64(), most);
    EXPECT_EQ(CkValue(-9223372036854775808.0).toInt64(), least);
    EXPECT_EQ(CkValue(std::nan("")).toInt64(), 0);
    EXPECT_EQ(CkValue(most).toInt(), std::numeric_limits<int>::max());
    EXPECT_EQ(CkValue(least).toInt(), std::numeric_limits<int>::min());
    EXPECT_EQ(CkValue(QStringLiteral("99999999999999999999")).toInt64(), most);
    EXPECT_EQ(CkValue(QStringLiteral("-1e999")).toInt64(), least);
}

TEST(CkValue, TextsThatAreNoNumbersGiveZero) {
    for (const char* text : {"", "abc", "12x", "1,5", "true"}) {
        EXPECT_EQ(CkValue(QString::fromLatin1(text)).toInt64(), 0) << text;
        EXPECT_EQ(CkValue(QString::fromLatin1(text)).toDouble(), 0.0) << text;
    }
    EXPECT_EQ(CkValue().toInt(), 0);
    EXPECT_EQ(CkValue().toDouble(), 0.0);
    EXPECT_EQ(CkValue().toString(), QString());
}

TEST(CkValue, ToBool) {
    EXPECT_TRUE(CkValue(-1).toBool());
    EXPECT_FALSE(CkValue(0).toBool());
    EXPECT_TRUE(CkValue(0.25).toBool());
    EXPECT_FALSE(CkValue(0.0).toBool());
    EXPECT_TRUE(CkValue(QStringLiteral("true")).toBool());
    EXPECT_TRUE(CkValue(QStringLiteral("0.5")).toBool());
    EXPECT_FALSE(CkValue(QStringLiteral("false")).toBool());
    EXPECT_FALSE(CkValue(QStringLiteral("0")).toBool());
    EXPECT_FALSE(CkValue().toBool());
}

TEST(CkValue, TextsAreExactAndWithoutLocale) {
    EXPECT_EQ(CkValue(-42).toString(), QStringLiteral("-42"));
    EXPECT_EQ(CkValue(0.1).toString(), QStringLiteral("0.1"));
    EXPECT_EQ(CkValue(true).toString(), QStringLiteral("true"));
    EXPECT_EQ(CkValue(false).toString(), QStringLiteral("false"));
    const double third = 1.0 / 3.0;
    EXPECT_EQ(CkValue(CkValue(third).toString()).toDouble(), third);
    const qint64 big = 9007199254740993; // not a double
    EXPECT_EQ(CkValue(CkValue(big).toString()).toInt64(), big);
}

TEST(CkValue, ComparesTypeAndValue) {
    EXPECT_EQ(CkValue(3), CkValue(qint64(3)));
    EXPECT_NE(CkValue(3), CkValue(3.0));
    EXPECT_NE(CkValue(1), CkValue(true));
    EXPECT_EQ(CkValue(), CkValue());
}
