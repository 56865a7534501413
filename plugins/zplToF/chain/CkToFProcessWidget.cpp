#include "plugins/zplToF/chain/CkToFProcessWidget.h"

#include <QFrame>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

using namespace ToFTransform;

/// A choice of the widget. Texts below the line name raw formats and are not translated.
struct SkItem {
    EkTransformType transform;
    const char* text;
    bool belowLine;
};

constexpr SkItem kItems[] = {
    {Intensity, QT_TRANSLATE_NOOP("CkToFProcessWidget", "Intensity [in: RawX2 (A and B), Raw Hybrid ToF]"),
     false},
    {Amplitude,
     QT_TRANSLATE_NOOP("CkToFProcessWidget", "Amplitude [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]"),
     false},
    {Depth,
     QT_TRANSLATE_NOOP("CkToFProcessWidget",
                       "Phase shift (depth) and confidence [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]"),
     false},
    {ConcatPhases,
     QT_TRANSLATE_NOOP("CkToFProcessWidget", "Concatenate phases coming as separate images from camera"),
     false},
    {SetABPhase, "Set metadata as RawX2 phases image with (A and B)", true},
    {AandBtoAminB, "RawX2 (A and B) to signed Raw (A-B)", true},
    {SetHybrid, "Set metadata as Raw Hybrid ToF image", true},
};

} // namespace

CkToFProcessWidget::CkToFProcessWidget(CkToFProcessCnbl* pBlock) : m_pBlock(pBlock) {
    setWindowTitle(tr("ToF Image Processing"));
    auto* const layout = new QVBoxLayout(this);
    QFrame* line = nullptr;
    for (const SkItem& item : kItems) {
        if (item.belowLine && line == nullptr) {
            line = new QFrame(this);
            line->setFrameShape(QFrame::HLine);
            line->setFrameShadow(QFrame::Sunken);
            layout->addWidget(line);
        }
        const QString text = item.belowLine ? QString::fromLatin1(item.text) : tr(item.text);
        m_buttons[size_t(item.transform)] =
            createTransformItem(layout, text, m_pBlock->transform() == item.transform);
    }
}

CkToFProcessWidget::~CkToFProcessWidget() = default;

QRadioButton* CkToFProcessWidget::createTransformItem(QVBoxLayout* pLayout, const QString& sText,
                                                      bool bChecked) {
    auto* const button = new QRadioButton(sText, this);
    button->setChecked(bChecked);
    pLayout->addWidget(button);
    connect(button, SIGNAL(clicked(bool)), this, SLOT(on_radioClicked()));
    return button;
}

void CkToFProcessWidget::on_radioClicked() {
    const auto* const button = qobject_cast<QRadioButton*>(sender());
    if (button == nullptr || m_pBlock.isNull()) {
        return;
    }
    const auto clicked = std::find(m_buttons.begin(), m_buttons.end(), button);
    if (clicked != m_buttons.end()) {
        m_pBlock->setTransform(EkTransformType(clicked - m_buttons.begin()), true);
    }
}
