#pragma once

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"

#include <QPointer>
#include <QWidget>

class QRadioButton;
class QVBoxLayout;

/// Lets the user pick a block's transform; each click applies at once. Reads the transform when it is built
/// and does not follow later changes. User-interface thread.
class CkToFProcessWidget : public QWidget {
    Q_OBJECT

public:
    /// The block stays the caller's; once it has gone, clicks do nothing.
    explicit CkToFProcessWidget(CkToFProcessCnbl* pBlock);
    ~CkToFProcessWidget() override;

    /// Adds a connected button to the layout.
    QRadioButton* createTransformItem(QVBoxLayout* pLayout, const QString& sText, bool bChecked);

private slots:
    void on_radioClicked();

private:
    QRadioButton* createTransformItem(QVBoxLayout* pLayout, const QString& sText,
                                      ToFTransform::EkTransformType transform);

    QPointer<CkToFProcessCnbl> m_pBlock;
    QRadioButton* m_pSetABPhase = nullptr;
    QRadioButton* m_pAandBtoAminB = nullptr;
    QRadioButton* m_pSetHybrid = nullptr;
    QRadioButton* m_pIntensity = nullptr;
    QRadioButton* m_pAmplitude = nullptr;
    QRadioButton* m_pDepth = nullptr;
    QRadioButton* m_pConcatPhases = nullptr;
};
