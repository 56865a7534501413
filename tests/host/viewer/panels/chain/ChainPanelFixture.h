#pragma once

#include "host/viewer/panels/chain/CkChainPanel.h"
#include "host/viewer/panels/chain/CkChainTree.h"
#include "tests/host/viewer/ViewerBlocks.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkRTTI.h"

#include <QToolButton>

inline const QString kDemo = QStringLiteral("test.CkDemoBlock");

/// The viewer with one running camera; the test blocks are registered.
class ChainPanel : public ViewerFixture {
protected:
    void SetUp() override {
        ViewerFixture::SetUp();
        const QString base = QStringLiteral("CkChainable");
        ASSERT_TRUE(CkRTTI::instance()->registerClass(nullptr, &CkDemoBlock::staticMetaObject, base));
        ASSERT_TRUE(CkRTTI::instance()->registerClass(nullptr, &CkPickyBlock::staticMetaObject, base));
        m_options.cameras = QStringList{"sim:grey"};
        ASSERT_TRUE(start());
        ASSERT_TRUE(waitForFrame(firstView()));
        QCoreApplication::processEvents();
    }

    CkChainPanel* panel() const { return window()->chainPanel(); }
    CkChainTree* tree() const { return panel()->tree(); }
    CkChain* chain() const { return firstView()->dataProvider()->chain(); }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    static void click(QWidget* parent, const char* name) {
        auto* button = parent->findChild<QToolButton*>(QLatin1String(name));
        ASSERT_NE(button, nullptr) << name;
        ASSERT_TRUE(button->isEnabled()) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }
};
