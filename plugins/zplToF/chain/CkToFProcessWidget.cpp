#include "plugins/zplToF/chain/CkToFProcessWidget.h"

#include <QFrame>
#include <QRadioButton>
#include <QVBoxLayout>

CkToFProcessWidget::CkToFProcessWidget(CkToFProcessCnbl* pBlock) : m_pBlock(pBlock) {
    setWindowTitle(tr("ToF Image Processing"));
    auto* const layout = new QVBoxLayout(this);
    m_pIntensity = createTransformItem(layout, tr("Intensity [in: RawX2 (A and B), Raw Hybrid ToF]"),
                                       ToFTransform::Intensity);
    m_pAmplitude = createTransformItem(
        layout, tr("Amplitude [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]"), ToFTransform::Amplitude);
    m_pDepth = createTransformItem(
        layout, tr("Phase shift (depth) and confidence [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]"),
        ToFTransform::Depth);
    m_pConcatPhases = createTransformItem(
        layout, tr("Concatenate phases coming as separate images from camera"), ToFTransform::ConcatPhases);

    auto* const line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);

    // These speak the language of the raw formats in every translation.
    m_pSetABPhase =
        createTransformItem(layout, QStringLiteral("Set metadata as RawX2 phases image with (A and B)"),
                            ToFTransform::SetABPhase);
    m_pAandBtoAminB = createTransformItem(layout, QStringLiteral("RawX2 (A and B) to signed Raw (A-B)"),
                                          ToFTransform::AandBtoAminB);
    m_pSetHybrid = createTransformItem(layout, QStringLiteral("Set metadata as Raw Hybrid ToF image"),
                                       ToFTransform::SetHybrid);
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

QRadioButton* CkToFProcessWidget::createTransformItem(QVBoxLayout* pLayout, const QString& sText,
                                                      ToFTransform::EkTransformType transform) {
    return createTransformItem(pLayout, sText, m_pBlock->transform() == transform);
}

void CkToFProcessWidget::on_radioClicked() {
    const auto* const button = qobject_cast<QRadioButton*>(sender());
    if (button == nullptr || m_pBlock.isNull()) {
        return;
    }
    const std::pair<const QRadioButton*, ToFTransform::EkTransformType> items[] = {
        {m_pSetABPhase, ToFTransform::SetABPhase},     {m_pAandBtoAminB, ToFTransform::AandBtoAminB},
        {m_pSetHybrid, ToFTransform::SetHybrid},       {m_pIntensity, ToFTransform::Intensity},
        {m_pAmplitude, ToFTransform::Amplitude},       {m_pDepth, ToFTransform::Depth},
        {m_pConcatPhases, ToFTransform::ConcatPhases},
    };
    for (const auto& [item, transform] : items) {
        if (item == button) {
            m_pBlock->setTransform(transform, true);
        }
    }
}
