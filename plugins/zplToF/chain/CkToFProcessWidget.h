#pragma once

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/transform/ToFTransforms.h"

#include <QPointer>
#include <QWidget>

#include <array>

class QRadioButton;
class QVBoxLayout;

/// Lets the user pick a block's transform; each click applies at once. Reads the transform when it is built
/// and does not follow later changes. User-interface thread.
class CkToFProcessWidget : public QWidget {
    Q_OBJECT

public:
    /// The block stays the caller's; once it is deleted, clicks do nothing.
    explicit CkToFProcessWidget(CkToFProcessCnbl* pBlock);
    ~CkToFProcessWidget() override;

    /// Adds a connected button to the layout.
    QRadioButton* createTransformItem(QVBoxLayout* pLayout, const QString& sText, bool bChecked);

private slots:
    void on_radioClicked();

private:
    void addChoices(QVBoxLayout* pLayout, bool bRawToRaw);

    QPointer<CkToFProcessCnbl> m_block;
    std::array<QRadioButton*, ToFTransforms::kCount> m_buttons{}; ///< by EkTransformType
};
