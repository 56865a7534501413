#include "host/recording/CkPageErrors.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

class CkPageErrorsTest : public ::testing::Test {
protected:
    CkPageErrors m_errors;
    CkPageErrors::Clock::time_point m_now{1h};

    QString add(const char* error) { return m_errors.add(QString::fromLatin1(error), m_now); }
};

} // namespace

TEST_F(CkPageErrorsTest, TheFirstOfARunIsReportedAtOnceUnchanged) {
    EXPECT_EQ(add("page 1: torn"), QLatin1String("page 1: torn"));
    EXPECT_EQ(m_errors.endOfRun(), QString());
    EXPECT_EQ(add("page 3: torn"), QLatin1String("page 3: torn"));
}

TEST_F(CkPageErrorsTest, LaterOnesAreReportedTwiceASecondWithTheirCount) {
    add("page 1: torn");
    int shown = 0;
    for (int page = 2; page <= 1000; ++page) {
        m_now += 1ms;
        shown += add("page n: torn").isEmpty() ? 0 : 1;
    }
    EXPECT_EQ(shown, 1); // 999 ms
    m_now += 1ms;
    EXPECT_EQ(add("page 1001: torn"), QLatin1String("page 1001: torn (1001 pages in a row)"));
}

TEST_F(CkPageErrorsTest, ADelayedMessageIsReportedAtTheEndOfTheRun) {
    add("page 1: torn");
    add("page 2: torn");
    add("page 3: torn");
    EXPECT_EQ(m_errors.endOfRun(), QLatin1String("page 3: torn (3 pages in a row)"));
    EXPECT_EQ(m_errors.endOfRun(), QString());
}
