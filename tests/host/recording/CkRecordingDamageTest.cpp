#include "tests/host/recording/recordingFixture.h"

#include <QtEndian>

#include <random>

namespace {

class CkRecordingDamageTest : public RecordingFixture {
protected:
    /// Offsets of the directories, found independently of the reader.
    static std::vector<quint64> directories(const QByteArray& file) {
        std::vector<quint64> found;
        quint64 link = 8;
        for (;;) {
            const auto offset = qFromLittleEndian<quint64>(file.constData() + link);
            if (offset == 0) {
                return found;
            }
            found.push_back(offset);
            link = offset + 8 + 20 * qFromLittleEndian<quint64>(file.constData() + offset);
        }
    }
    static quint64 linkOf(const QByteArray& file, quint64 directory) {
        return directory + 8 + 20 * qFromLittleEndian<quint64>(file.constData() + directory);
    }
};

} // namespace

TEST_F(CkRecordingDamageTest, ATruncatedFileShowsWhatIsInFrontOfTheCut) {
    record(path("a.tif"), 5);
    const QByteArray whole = contents(path("a.tif"));
    const auto pages = directories(whole);
    ASSERT_EQ(pages.size(), 5U);
    for (qsizetype length = 0; length < whole.size(); length += 41) {
        setContents(path("cut.tif"), whole.left(length));
        qint64 complete = 0;
        for (const quint64 page : pages) {
            complete += linkOf(whole, page) + 8 <= quint64(length) ? 1 : 0;
        }
        CkRecordingReader reader;
        QString error;
        ASSERT_EQ(reader.open(path("cut.tif"), &error), complete > 0) << length;
        if (complete == 0) {
            EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("cut.tif"));
            continue;
        }
        ASSERT_EQ(reader.frameCount(), complete);
        const std::string page = "page " + std::to_string(complete + 1);
        EXPECT_THAT(reader.damage().toStdString(),
                    ::testing::AllOf(::testing::HasSubstr("cut.tif"), ::testing::HasSubstr(page)));
        for (qint64 i = 0; i < complete; ++i) {
            EXPECT_TRUE(isFrame(*reader.read(i, nullptr), i));
        }
    }
}

TEST_F(CkRecordingDamageTest, PagesInACircleAreSeenOnce) {
    record(path("a.tif"), 3);
    QByteArray bytes = contents(path("a.tif"));
    const auto pages = directories(bytes);
    qToLittleEndian<quint64>(pages[0], bytes.data() + linkOf(bytes, pages[2]));
    setContents(path("a.tif"), bytes);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    EXPECT_EQ(reader.frameCount(), 3);
    EXPECT_THAT(reader.damage().toStdString(), ::testing::HasSubstr("circle"));
}

TEST_F(CkRecordingDamageTest, ADamagedDirectoryLosesItsFrameOnly) {
    record(path("a.tif"), 3);
    QByteArray bytes = contents(path("a.tif"));
    const auto pages = directories(bytes);
    // The first entry of page 2, the width, becomes 0.
    qToLittleEndian<quint64>(0, bytes.data() + pages[1] + 8 + 12);
    setContents(path("a.tif"), bytes);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    ASSERT_EQ(reader.frameCount(), 3);
    QString error;
    EXPECT_EQ(reader.read(1, &error), nullptr);
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("a.tif\", page 2: "));
    EXPECT_TRUE(isFrame(*reader.read(0, &error), 0));
    EXPECT_TRUE(isFrame(*reader.read(2, &error), 2));
    EXPECT_TRUE(error.isEmpty());
}

TEST_F(CkRecordingDamageTest, ADirectoryHasFourThousandEntriesAtMost) {
    record(path("a.tif"), 2);
    const QByteArray whole = contents(path("a.tif"));
    const auto pages = directories(whole);
    for (const quint64 count : {quint64(0), quint64(4097), quint64(1) << 40U, ~quint64(0)}) {
        QByteArray bytes = whole;
        qToLittleEndian<quint64>(count, bytes.data() + pages[1]);
        setContents(path("a.tif"), bytes);
        CkRecordingReader reader;
        ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
        EXPECT_EQ(reader.frameCount(), 1);
        EXPECT_THAT(reader.damage().toStdString(), ::testing::HasSubstr("There is no directory")) << count;
    }
}

TEST_F(CkRecordingDamageTest, APageThatClaimsMorePixelsThanTheFileCanHoldIsRefused) {
    record(path("a.tif"), 1);
    QByteArray bytes = contents(path("a.tif"));
    const auto pages = directories(bytes);
    qToLittleEndian<quint64>(60000, bytes.data() + pages[0] + 8 + 12);
    qToLittleEndian<quint64>(60000, bytes.data() + pages[0] + 8 + 20 + 12);
    setContents(path("a.tif"), bytes);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    QString error;
    EXPECT_EQ(reader.read(0, &error), nullptr);
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("60000 x 60000"));
}

TEST_F(CkRecordingDamageTest, ForeignFilesAreRefusedWithTheirName) {
    const std::pair<const char*, QByteArray> files[] = {
        {"empty", {}},
        {"text", "This is not a picture at all."},
        {"png", QByteArray::fromHex("89504e470d0a1a0a0000000d49484452")},
        {"II", "II"},
        {"header", QByteArray("II\x2b\0\x08\0\0\0\0\0\0\0\0\0\0\0", 16)},
    };
    for (const auto& [name, bytes] : files) {
        setContents(path(name), bytes);
        CkRecordingReader reader;
        QString error;
        EXPECT_FALSE(reader.open(path(name), &error)) << name;
        EXPECT_THAT(error.toStdString(), ::testing::HasSubstr(name));
    }
    CkRecordingReader reader;
    QString error;
    EXPECT_FALSE(reader.open(path("missing.tif"), &error));
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("missing.tif"));
    CkRecordingReader folder;
    EXPECT_FALSE(folder.open(m_folder.path(), &error));
}

TEST_F(CkRecordingDamageTest, FlippedBytesNeverHarm) {
    std::mt19937 random(1);
    for (const auto compression : {EkRecordingCompression::None, EkRecordingCompression::Deflate}) {
        record(path("a.tif"), 4, compression);
        const QByteArray whole = contents(path("a.tif"));
        qint64 readFrames = 0;
        for (int round = 0; round < 120; ++round) {
            QByteArray bytes = whole;
            for (int i = 0; i < 1 + round % 8; ++i) {
                bytes[qsizetype(random() % quint64(bytes.size()))] = char(random());
            }
            setContents(path("b.tif"), bytes);
            CkRecordingReader reader;
            QString error;
            if (!reader.open(path("b.tif"), &error)) {
                EXPECT_FALSE(error.isEmpty());
                continue;
            }
            for (qint64 i = 0; i < reader.frameCount(); ++i) {
                const auto frame = reader.read(i, &error);
                EXPECT_TRUE(frame != nullptr || !error.isEmpty());
                readFrames += frame != nullptr ? 1 : 0;
            }
        }
        EXPECT_GT(readFrames, 120); // most damage is local
    }
}
