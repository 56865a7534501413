#include "plugins/zplToF/chain/CkToFProcessWidget.h"

#include <QFrame>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

CkToFProcessWidget::CkToFProcessWidget(CkToFProcessCnbl* pBlock) : m_block(pBlock) {
    setWindowTitle(tr("ToF Image Processing"));
    auto* const layout = new QVBoxLayout(this);
    addChoices(layout, false);
    auto* const line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);
    addChoices(layout, true);
}

CkToFProcessWidget::~CkToFProcessWidget() = default;

void CkToFProcessWidget::addChoices(QVBoxLayout* pLayout, bool bRawToRaw) {
    for (const SkToFTransform& transform : ToFTransforms::all()) {
        if (transform.isRawToRaw == bRawToRaw) {
            const QString text = bRawToRaw ? QString::fromLatin1(transform.choice) : tr(transform.choice);
            m_buttons[size_t(transform.type)] =
                createTransformItem(pLayout, text, m_block->transform() == transform.type);
        }
    }
}

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
    if (button == nullptr || m_block.isNull()) {
        return;
    }
    const auto clicked = std::find(m_buttons.begin(), m_buttons.end(), button);
    if (clicked != m_buttons.end()) {
        m_block->setTransform(ToFTransform::EkTransformType(clicked - m_buttons.begin()), true);
    }
}
