#include "plugins/zplToF/cloud/CkToFReusedBytes.h"

#include <QList>

#include <gmock/gmock.h>

#include <cstring>

TEST(CkToFReusedBytes, KeepsItsArrayWhileNobodyShares) {
    CkToFReusedBytes bytes;
    bytes.prepare(1000);
    const char* first = bytes.begin();
    EXPECT_EQ(bytes.current().size(), 1000);
    EXPECT_EQ(bytes.tag(), -1);
    bytes.setTag(7);
    bytes.prepare(1000);
    EXPECT_EQ(bytes.begin(), first);
    EXPECT_EQ(bytes.tag(), 7);
}

TEST(CkToFReusedBytes, LeavesASharedArrayAlone) {
    CkToFReusedBytes bytes;
    bytes.prepare(100);
    std::memset(bytes.begin(), 'a', 100);
    const QByteArray held = bytes.current();
    bytes.prepare(100);
    std::memset(bytes.begin(), 'b', 100);
    EXPECT_EQ(held, QByteArray(100, 'a'));
    EXPECT_EQ(bytes.current(), QByteArray(100, 'b'));
}

TEST(CkToFReusedBytes, StaysRightWhenEveryArrayIsShared) {
    CkToFReusedBytes bytes;
    QList<QByteArray> held;
    for (char c = 'a'; c < 'k'; c++) {
        bytes.prepare(64);
        std::memset(bytes.begin(), c, 64);
        held.append(bytes.current());
    }
    for (int i = 0; i < held.size(); i++) {
        EXPECT_EQ(held[i], QByteArray(64, char('a' + i)));
    }
}

TEST(CkToFReusedBytes, PreparingChangesNothingYet) {
    CkToFReusedBytes bytes;
    bytes.prepare(10);
    std::memset(bytes.begin(), 'x', 10);
    bytes.setTag(3);
    bytes.prepare(20000);
    EXPECT_EQ(bytes.current(), QByteArray(10, 'x'));
    EXPECT_EQ(bytes.tag(), 3);
    bytes.begin();
    EXPECT_EQ(bytes.current().size(), 20000);
    EXPECT_EQ(bytes.tag(), -1);
}

TEST(CkToFReusedBytes, HandsOutNothingForSizeZero) {
    CkToFReusedBytes bytes;
    bytes.prepare(50);
    bytes.begin();
    bytes.prepare(0);
    bytes.begin();
    EXPECT_TRUE(bytes.current().isEmpty());
}
