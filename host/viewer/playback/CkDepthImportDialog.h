#pragma once

#include "host/recording/SkDepthScale.h"

#include <QDialog>

class CkImageData;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QRadioButton;
struct SkPicBuf;

/// Asks for the meaning of the samples of a picture from another program: grey values, or depths and their
/// unit. User-interface thread.
class CkDepthImportDialog : public QDialog {
    Q_OBJECT

public:
    /// The first frame provides the range that the dialog shows and its initial proposal.
    CkDepthImportDialog(const QString& sFileName, const CkImageData& first, QWidget* pParent = nullptr);

    /// Whether pictures of this format may hold depths: one channel of more than 8 bits.
    static bool mayHoldDepths(const SkPicBufInfo& info);

    /// Integers: millimetres. Floats: metres, unless the largest value is beyond 100.
    static SkDepthScale proposal(const SkPicBufInfo& info, double fLargest);

    /// Not active for a grey picture.
    SkDepthScale scale() const;
    void setScale(const SkDepthScale& scale);

private:
    void measure(const SkPicBuf& picture);
    void createDetails();
    double metresPerCount() const;
    void adaptToUnit();
    void showRange();

    double m_smallest = 0.0; ///< of the finite samples other than 0
    double m_largest = 0.0;
    bool m_hasZeros = false;
    QRadioButton* m_picture = nullptr;
    QRadioButton* m_depth = nullptr;
    QComboBox* m_unit = nullptr;
    QDoubleSpinBox* m_millimetres = nullptr;
    QCheckBox* m_zero = nullptr;
    QLabel* m_range = nullptr;
    QWidget* m_details = nullptr;
};
