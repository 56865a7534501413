#include "plugins/zplToF/chain/CkToFProcessWidget.h"
#include "tests/plugins/zplToF/chain/ToFChainRig.h"

#include <QApplication>
#include <QFrame>
#include <QRadioButton>
#include <QTest>
#include <QTranslator>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace {

using Block = CkToFProcessCnbl;

/// A language in which every word is put in brackets.
class Brackets : public QTranslator {
public:
    QString translate(const char* context, const char* text, const char*, int) const override {
        return QString("[%1] %2").arg(context, text);
    }
    bool isEmpty() const override { return false; }
};

struct Item {
    int transform;
    const char* text;
    bool translated;
};

const Item kItems[] = {
    {1, "Intensity [in: RawX2 (A and B), Raw Hybrid ToF]", true},
    {2, "Amplitude [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]", true},
    {3, "Phase shift (depth) and confidence [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]", true},
    {4, "Concatenate phases coming as separate images from camera", true},
    {0, "Set metadata as RawX2 phases image with (A and B)", false},
    {5, "RawX2 (A and B) to signed Raw (A-B)", false},
    {6, "Set metadata as Raw Hybrid ToF image", false},
};

/// The widgets of the layout from top to bottom.
QList<QWidget*> content(const QWidget& widget) {
    QList<QWidget*> list;
    const auto* const layout = qobject_cast<QVBoxLayout*>(widget.layout());
    for (int i = 0; layout != nullptr && i < layout->count(); ++i) {
        list.append(layout->itemAt(i)->widget());
    }
    return list;
}

QRadioButton* button(const QWidget& widget, int transform) {
    for (auto* candidate : widget.findChildren<QRadioButton*>()) {
        for (const Item& item : kItems) {
            if (item.transform == transform && candidate->text() == item.text) {
                return candidate;
            }
        }
    }
    return nullptr;
}

void expectTexts(const QWidget& widget, bool translated) {
    const QString prefix = translated ? "[CkToFProcessWidget] " : "";
    EXPECT_EQ(widget.windowTitle(), prefix + "ToF Image Processing");
    const QList<QWidget*> list = content(widget);
    ASSERT_EQ(list.size(), 8);
    for (int i = 0, item = 0; i < 8; ++i) {
        if (i == 4) {
            const auto* const line = qobject_cast<QFrame*>(list[i]);
            ASSERT_NE(line, nullptr);
            EXPECT_EQ(line->frameShape(), QFrame::HLine);
            EXPECT_EQ(line->frameShadow(), QFrame::Sunken);
            continue;
        }
        const auto* const radio = qobject_cast<QRadioButton*>(list[i]);
        ASSERT_NE(radio, nullptr);
        EXPECT_EQ(radio->text(), (kItems[item].translated ? prefix : QString()) + kItems[item].text);
        EXPECT_EQ(radio->parentWidget(), &widget);
        ++item;
    }
}

TEST(CkToFProcessWidget, OrderAndTexts) {
    Block block;
    const std::unique_ptr<QWidget> widget(block.configurationWidget());
    ASSERT_NE(qobject_cast<CkToFProcessWidget*>(widget.get()), nullptr);
    EXPECT_EQ(widget->parent(), nullptr);
    expectTexts(*widget, false);
}

TEST(CkToFProcessWidget, OnlyTheUpperFourAndTheTitleAreTranslated) {
    Brackets brackets;
    ASSERT_TRUE(QApplication::installTranslator(&brackets));
    Block block;
    const std::unique_ptr<QWidget> widget(block.configurationWidget());
    QApplication::removeTranslator(&brackets);
    expectTexts(*widget, true);
}

TEST(CkToFProcessWidget, TheTextsOfTheBlockAreTranslated) {
    Brackets brackets;
    ASSERT_TRUE(QApplication::installTranslator(&brackets));
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(Block::SetHybrid);
    rig.process(rig.frame(1));
    QString help;
    rig.block->help(help);
    QApplication::removeTranslator(&brackets);
    EXPECT_EQ(rig.block->errorMessage(), "[CkToFProcessCnbl] The input image data type is not supported.");
    EXPECT_TRUE(help.startsWith("[CkToFProcessCnbl] Processes ToF images."));
}

TEST(CkToFProcessWidget, ChecksTheCurrentTransform) {
    for (int transform = -1; transform < 8; ++transform) {
        Block block;
        block.setTransform(Block::EkTransformType(transform), false);
        const CkToFProcessWidget widget(&block);
        for (const Item& item : kItems) {
            ASSERT_NE(button(widget, item.transform), nullptr);
            EXPECT_EQ(button(widget, item.transform)->isChecked(), item.transform == transform);
        }
    }
}

TEST(CkToFProcessWidget, HasItsOneSlot) {
    const QMetaObject& meta = CkToFProcessWidget::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    EXPECT_EQ(meta.method(meta.methodOffset()).methodSignature(), "on_radioClicked()");
    EXPECT_EQ(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Slot);
}

TEST(CkToFProcessWidget, AClickSetsTheTransform) {
    Block block;
    CkToFProcessWidget widget(&block);
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    for (const Item& item : kItems) {
        QTest::mouseClick(button(widget, item.transform), Qt::LeftButton, Qt::NoModifier, QPoint(8, 8));
        EXPECT_EQ(block.transform(), item.transform);
        EXPECT_TRUE(button(widget, item.transform)->isChecked());
    }
}

TEST(CkToFProcessWidget, AClickRestartsARunningChainAlsoOnTheCurrentTransform) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(Block::Amplitude);
    int starts = 0;
    QObject::connect(rig.chain, &CkChain::runningChanged, [&](bool running) { starts += running; });
    CkToFProcessWidget widget(rig.block);
    button(widget, Block::Depth)->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(starts, 1);
    EXPECT_TRUE(rig.chain->started());
    button(widget, Block::Depth)->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(starts, 2);
    SkPicBufInfo info;
    ASSERT_TRUE(rig.chain->negotiatedInfo(rig.block, info, nullptr));
    EXPECT_EQ(info.dataType, EkImageDataType::Float32);
}

TEST(CkToFProcessWidget, DoesNotFollowChangesMadeElsewhere) {
    Block block;
    CkToFProcessWidget widget(&block);
    block.setTransform(Block::Depth, false);
    EXPECT_TRUE(button(widget, Block::Amplitude)->isChecked());
    EXPECT_FALSE(button(widget, Block::Depth)->isChecked());
}

TEST(CkToFProcessWidget, OutlivesItsBlock) {
    auto block = std::make_unique<Block>();
    CkToFProcessWidget widget(block.get());
    block.reset();
    button(widget, Block::Depth)->click();
    EXPECT_TRUE(button(widget, Block::Depth)->isChecked());
}

TEST(CkToFProcessWidget, ASenderThatIsNoButtonIsIgnored) {
    Block block;
    CkToFProcessWidget widget(&block);
    QMetaObject::invokeMethod(&widget, "on_radioClicked");
    QVBoxLayout* const layout = qobject_cast<QVBoxLayout*>(widget.layout());
    QRadioButton* const stranger = widget.createTransformItem(layout, "Something else", false);
    stranger->click();
    EXPECT_EQ(block.transform(), Block::Amplitude);
}

} // namespace
