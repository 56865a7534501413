#include "host/viewer/panels/quality/CkQualityPanel.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "tests/host/viewer/ViewerPictures.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

/// A view that shows no picture of its own.
class CkFollowingView : public CkMdiView {
public:
    explicit CkFollowingView(int iViewId) : m_iFollowed(iViewId) {}
    int connectedViewId() const override { return m_iFollowed; }

private:
    int m_iFollowed;
};

class QualityPanelTest : public ::testing::Test {
protected:
    QualityPanelTest() {
        auto* layout = new QHBoxLayout(&m_window);
        m_pArea = new CkViewArea;
        m_pPanel = new CkQualityPanel(m_pArea);
        layout->addWidget(m_pArea, 1);
        layout->addWidget(m_pPanel);
        m_window.resize(1000, 600);
        m_window.show();
    }

    CkFedImageView* addView() {
        auto* view = new CkFedImageView;
        m_pArea->addView(view);
        return view;
    }
    static std::unique_ptr<CkImageData> depth(float metres, quint32 width = 80, quint32 height = 60) {
        auto frame = makeFrame<float>(EkImageDataType::Float32, width, height, 1, 32,
                                      [metres](quint32, quint32, quint32) { return metres; });
        CkImageMetadata metadata;
        metadata.channelNames = QStringList{QStringLiteral("Depth")};
        frame->setMetadata(metadata);
        return frame;
    }
    template <class Widget>
    Widget* child(const char* name) const {
        return m_pPanel->findChild<Widget*>(QLatin1String(name));
    }
    static void drag(CkImageCanvas* canvas, const QPointF& from, const QPointF& to) {
        const QPoint start = canvas->fromPicture(from).toPoint();
        const QPoint end = canvas->fromPicture(to).toPoint();
        QTest::mousePress(canvas, Qt::LeftButton, {}, start);
        QTest::mouseMove(canvas, (start + end) / 2);
        QTest::mouseMove(canvas, end);
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, end);
    }

    QWidget m_window;
    CkViewArea* m_pArea = nullptr;
    CkQualityPanel* m_pPanel = nullptr;
};

} // namespace

TEST_F(QualityPanelTest, MeasuresTheMiddleOfTheActivePicture) {
    EXPECT_EQ(child<QLabel>("qualityWhere")->text(), QStringLiteral("No view is active"));
    EXPECT_FALSE(child<QPushButton>("qualityCopy")->isEnabled());
    CkFedImageView* view = addView();
    EXPECT_EQ(m_pPanel->measuredView(), view);
    view->feed(depth(1.5F));
    EXPECT_EQ(m_pPanel->region(), QRect(30, 22, 20, 15)); // a quarter of each side
    EXPECT_DOUBLE_EQ(m_pPanel->values().mean, 1500.0);
    const auto where = [this] { return child<QLabel>("qualityWhere")->text(); };
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return where().contains("region at 30, 22 of 20 x 15 pixels, 1 frame\n"); }, 30000))
        << qPrintable(where());
    view->feed(depth(1.6F));
    EXPECT_EQ(m_pPanel->values().frames, 2);
    EXPECT_NEAR(m_pPanel->values().temporalStd, 100.0 / std::sqrt(2.0), 1e-3);
    EXPECT_EQ(m_pPanel->history().values().size(), 2U);
    // The numbers follow a little later.
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return child<QLabel>("qualityValue0")->text() == "1600.0 mm"; }, 30000));
    EXPECT_TRUE(where().contains(", 2 frames\n")) << qPrintable(where());
    // The picture has no known source.
    EXPECT_TRUE(
        where().endsWith("Saturated pixels may count as valid: Samples of this type have no upper limit."))
        << qPrintable(where());
    EXPECT_TRUE(child<QPushButton>("qualityCopy")->isEnabled());
    m_pPanel->restart();
    EXPECT_TRUE(m_pPanel->history().values().empty());
}

TEST_F(QualityPanelTest, ARegionIsDrawnWithTheMouse) {
    CkFedImageView* view = addView();
    view->feed(depth(2.0F));
    const QPointF from(10.5, 5.5);
    const QPointF to(40.5, 25.5);
    // Without the button the mouse moves the picture.
    drag(view->canvas(), from, to);
    EXPECT_EQ(m_pPanel->region(), QRect(30, 22, 20, 15));
    child<QToolButton>("qualityDraw")->click();
    drag(view->canvas(), from, to);
    EXPECT_EQ(m_pPanel->region(), QRect(10, 5, 31, 21));
    EXPECT_EQ(m_pPanel->values().frames, 1);
    // Backwards, and beyond the picture.
    drag(view->canvas(), QPointF(20.5, 20.5), QPointF(-50.0, -50.0));
    EXPECT_EQ(m_pPanel->region(), QRect(0, 0, 21, 21));
    // A click does not change it.
    drag(view->canvas(), from, from);
    EXPECT_EQ(m_pPanel->region(), QRect(0, 0, 21, 21));
}

TEST_F(QualityPanelTest, FollowsTheActiveViewAndRemembersItsRegion) {
    CkFedImageView* first = addView();
    first->feed(depth(1.0F));
    m_pPanel->setRegion(QRect(1, 2, 30, 20));
    CkFedImageView* second = addView();
    second->feed(depth(3.0F));
    EXPECT_EQ(m_pPanel->measuredView(), second);
    EXPECT_DOUBLE_EQ(m_pPanel->values().mean, 3000.0);
    first->feed(depth(9.0F));
    EXPECT_DOUBLE_EQ(m_pPanel->values().mean, 3000.0);
    m_pArea->setActiveView(first->viewId());
    EXPECT_EQ(m_pPanel->region(), QRect(1, 2, 30, 20));
    EXPECT_DOUBLE_EQ(m_pPanel->values().mean, 9000.0);
    m_pArea->closeView(first->viewId(), false);
    EXPECT_TRUE(QTest::qWaitFor([this, second] { return m_pPanel->measuredView() == second; }, 30000));
}

TEST_F(QualityPanelTest, AViewWithoutAPictureIsMeasuredInTheOneItFollows) {
    CkFedImageView* picture = addView();
    picture->feed(depth(1.0F));
    auto* cloud = new CkFollowingView(picture->viewId());
    m_pArea->addView(cloud);
    ASSERT_EQ(m_pArea->activeView(), cloud);
    EXPECT_EQ(m_pPanel->measuredView(), picture);
    picture->feed(depth(1.25F));
    EXPECT_DOUBLE_EQ(m_pPanel->values().mean, 1250.0);
    m_pArea->addView(new CkFollowingView(-1));
    EXPECT_EQ(m_pPanel->measuredView(), nullptr);
    EXPECT_TRUE(
        child<QLabel>("qualityWhere")->text().startsWith(QStringLiteral("The active view shows no picture")));
}

TEST_F(QualityPanelTest, ButtonsAreWholeInALongerLanguageToo) {
    const QList<QAbstractButton*> buttons = {
        child<QToolButton>("qualityDraw"), child<QPushButton>("qualityRestart"),
        child<QPushButton>("qualityCopy"), child<QPushButton>("qualitySave")};
    buttons[0]->setText("Region zeichnen");
    buttons[1]->setText("Neu beginnen");
    buttons[2]->setText("Kopieren");
    buttons[3]->setText("CSV speichern...");
    int sum = 0;
    for (const QAbstractButton* button : buttons) {
        sum += button->sizeHint().width();
    }
    const auto whole = [&] {
        return std::all_of(buttons.begin(), buttons.end(), [](const QAbstractButton* button) {
            return button->width() >= button->sizeHint().width();
        });
    };
    const auto rows = [&] {
        QSet<int> tops;
        for (const QAbstractButton* button : buttons) {
            tops.insert(button->geometry().center().y());
        }
        return tops.size();
    };
    // Wide, narrow, and wide again.
    for (const int width : {sum + 60, sum - 20, sum + 100}) {
        m_pPanel->setFixedWidth(width);
        const int expected = width > sum ? 1 : 2;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return m_pPanel->width() == width && whole() && rows() == expected; }, 30000))
            << width << " of " << sum << ", " << rows() << " rows";
    }
}

TEST_F(QualityPanelTest, DoesNothingWhileItIsHidden) {
    CkFedImageView* view = addView();
    view->feed(depth(1.0F));
    m_pPanel->hide();
    EXPECT_EQ(m_pPanel->measuredView(), nullptr);
    EXPECT_TRUE(view->canvas()->findChildren<QWidget*>().isEmpty());
    view->feed(depth(2.0F));
    EXPECT_TRUE(std::isnan(m_pPanel->values().mean));
    m_pPanel->show();
    EXPECT_EQ(m_pPanel->measuredView(), view);
    EXPECT_DOUBLE_EQ(m_pPanel->values().mean, 2000.0);
    // In a background tab it counts as hidden.
    m_pPanel->setShownByDock(false);
    EXPECT_EQ(m_pPanel->measuredView(), nullptr);
    m_pPanel->setShownByDock(true);
    EXPECT_EQ(m_pPanel->measuredView(), view);
}

TEST_F(QualityPanelTest, TheHistoryOutlivesAnotherTabAndAnotherView) {
    CkFedImageView* first = addView();
    first->feed(depth(1.0F));
    first->feed(depth(2.0F));
    const auto means = [this] {
        QList<double> values;
        for (const SkQualityValues& entry : m_pPanel->history().values()) {
            values.append(entry.mean);
        }
        return values;
    };
    EXPECT_EQ(means(), (QList<double>{1000.0, 2000.0}));
    m_pPanel->setShownByDock(false);
    m_pPanel->setShownByDock(true);
    EXPECT_EQ(means(), (QList<double>{1000.0, 2000.0})) << "and the frame that still stands is no new one";
    CkFedImageView* second = addView();
    second->feed(depth(5.0F));
    EXPECT_EQ(means(), (QList<double>{5000.0}));
    m_pArea->setActiveView(first->viewId());
    EXPECT_EQ(m_pPanel->values().mean, 2000.0);
    first->feed(depth(3.0F));
    EXPECT_EQ(means(), (QList<double>{1000.0, 2000.0, 3000.0}));
    EXPECT_EQ(m_pPanel->values().frames, 3) << "the spread over time goes on";
    // The panel's settings apply to the next view too; a restart affects one view only.
    m_pPanel->restart();
    EXPECT_TRUE(means().isEmpty());
    m_pArea->setActiveView(second->viewId());
    EXPECT_EQ(means(), (QList<double>{5000.0}));
    m_pArea->closeView(second->viewId(), false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_pPanel->measuredView() == first; }, 30000));
}

TEST_F(QualityPanelTest, ValuesAreCopiedAndSaved) {
    CkFedImageView* view = addView();
    view->feed(depth(1.0F));
    view->feed(depth(2.0F));
    m_pPanel->copy();
    EXPECT_TRUE(QGuiApplication::clipboard()->text().startsWith(QStringLiteral("Mean\t2000.0 mm\n")));
    QTemporaryDir folder;
    QString error;
    ASSERT_TRUE(m_pPanel->saveHistory(folder.filePath(QStringLiteral("a.csv")), error));
    QFile file(folder.filePath(QStringLiteral("a.csv")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().count('\n'), 4); // comment, column names, two frames
    EXPECT_FALSE(m_pPanel->saveHistory(folder.filePath(QStringLiteral("no/a.csv")), error));
    EXPECT_TRUE(error.contains(QStringLiteral("no/a.csv")));
}
