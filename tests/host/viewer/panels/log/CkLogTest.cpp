#include "host/viewer/panels/log/CkLogModel.h"
#include "host/viewer/panels/log/CkLogPanel.h"
#include "host/viewer/panels/log/CkLogSink.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>
#include <thread>

namespace {

QStringList shown(const CkLogPanel& panel) {
    QStringList texts;
    for (int row = 0; row < panel.filter()->rowCount(); ++row) {
        texts.append(panel.filter()->index(row, CkLogModel::TextColumn).data().toString());
    }
    return texts;
}

class Log : public ::testing::Test {
protected:
    void SetUp() override {
        CkLogSink::instance()->install();
        m_panel.model()->clear();
    }
    void TearDown() override { CkLogSink::instance()->uninstall(); }
    CkLogPanel m_panel;
};

TEST_F(Log, ShowsWhatEveryThreadLogs) {
    qInfo("from the window's thread");
    std::thread([] { qWarning("from another thread"); }).join();
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(m_panel), QStringList({"from the window's thread", "from another thread"}));
    const QModelIndex level = m_panel.filter()->index(1, CkLogModel::LevelColumn);
    EXPECT_EQ(level.data().toString(), CkLogModel::levelText(2));
}

TEST_F(Log, LevelsAndSearchNarrowTheList) {
    qDebug("alpha debug");
    qInfo("beta info");
    qWarning("Alpha warning");
    qCritical("beta error");
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(m_panel).size(), 4);
    auto* level = m_panel.findChild<QComboBox*>("logLevel");
    auto* search = m_panel.findChild<QLineEdit*>("logSearch");
    level->setCurrentIndex(2);
    EXPECT_EQ(shown(m_panel), QStringList({"Alpha warning", "beta error"}));
    search->setText("alpha");
    EXPECT_EQ(shown(m_panel), QStringList({"Alpha warning"}));
    level->setCurrentIndex(0);
    EXPECT_EQ(shown(m_panel), QStringList({"alpha debug", "Alpha warning"}));
}

TEST_F(Log, AnAnnouncementAtTheHighestLevelDoesNotLookLikeAnError) {
    const QString line = "Starting ToF 3D with OpenGL 4.5 (glsl 4.50) on llvmpipe, platform: xcb";
    qCritical("%s", qUtf8Printable(line));
    qCritical("CkToF3DMdiView::shaderProgramLogChanged(): Starting ToF 3D with nothing");
    QCoreApplication::processEvents();
    const auto level = [this](int row) {
        return m_panel.filter()->index(row, CkLogModel::LevelColumn).data().toString();
    };
    const auto colour = [this](int row) {
        return m_panel.filter()->index(row, CkLogModel::TextColumn).data(Qt::ForegroundRole);
    };
    EXPECT_EQ(level(0), CkLogModel::levelText(1));
    EXPECT_FALSE(colour(0).isValid());
    EXPECT_EQ(level(1), CkLogModel::levelText(3));
    EXPECT_TRUE(colour(1).isValid());
    // It passes every filter nevertheless.
    m_panel.findChild<QComboBox*>("logLevel")->setCurrentIndex(3);
    EXPECT_EQ(shown(m_panel).value(0), line);
}

TEST_F(Log, KeepsANumberOfEntriesAndNoMore) {
    for (int i = 0; i < CkLogSink::kMaximumEntries + 5; ++i) {
        SkLogEntry entry;
        entry.text = QString::number(i);
        m_panel.model()->add(entry);
    }
    EXPECT_EQ(m_panel.model()->rowCount(), CkLogSink::kMaximumEntries);
    EXPECT_EQ(m_panel.model()->index(0, CkLogModel::TextColumn).data(Qt::DisplayRole).toString(), "5");
}

} // namespace
