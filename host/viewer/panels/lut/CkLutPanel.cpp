#include "host/viewer/panels/lut/CkLutPanel.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/panels/lut/CkHistogramWidget.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/picture/PictureText.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QSettings>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {

constexpr int kShowMs = 150;

QPixmap mapPixmap(int index, const QSize& size) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    lut.setPseudoColorIndex(index);
    const QList<QRgb> colours = PictureColours::colours(lut);
    QImage image(size, QImage::Format_RGB32);
    for (int x = 0; x < size.width() && !colours.isEmpty(); ++x) {
        const QRgb colour = colours[(colours.size() - 1) * x / std::max(1, size.width() - 1)];
        for (int y = 0; y < size.height(); ++y) {
            image.setPixel(x, y, colour);
        }
    }
    return QPixmap::fromImage(image);
}

} // namespace

CkLutPanel::CkLutPanel(CkViewArea* pArea, QWidget* pParent) : QWidget(pParent), m_area(pArea) {
    setObjectName(QStringLiteral("lutPanel"));
    createControls();
    m_delay.setSingleShot(true);
    m_delay.setInterval(kShowMs);
    connect(&m_delay, &QTimer::timeout, this, &CkLutPanel::showContrast);
    connect(m_area, &CkViewArea::activeViewChanged, this, &CkLutPanel::refresh);
    connect(m_mapBox, &QComboBox::activated, this, &CkLutPanel::applyMap);
    connect(m_autoBox, &QCheckBox::clicked, this, &CkLutPanel::applyFlags);
    connect(m_saturationBox, &QCheckBox::clicked, this, &CkLutPanel::applyFlags);
    connect(m_low, &QDoubleSpinBox::valueChanged, this, &CkLutPanel::applyWindow);
    connect(m_high, &QDoubleSpinBox::valueChanged, this, &CkLutPanel::applyWindow);
    connect(m_gamma, &QDoubleSpinBox::valueChanged, this, [this](double fGamma) {
        if (m_imageView) {
            m_imageView->setGamma(fGamma);
        }
    });
    connect(m_fullButton, &QPushButton::clicked, this, [this] {
        if (m_imageView) {
            m_imageView->setFullRange();
            refresh();
        }
    });
    connect(m_histogram, &CkHistogramWidget::windowDragged, this, [this](const SkDisplayWindow& window) {
        if (m_imageView) {
            m_imageView->setWindow(window);
            const QSignalBlocker blocker(m_autoBox);
            m_autoBox->setChecked(false);
        }
    });
    refresh();
}

QComboBox* CkLutPanel::createMapBox() {
    auto* box = new QComboBox(this);
    box->setObjectName(QStringLiteral("lutMap"));
    const QSize size(72, 14);
    box->setIconSize(size);
    const QStringList names = CkLut::pseudoColorNames();
    for (int i = 0; i < names.size(); ++i) {
        box->addItem(QIcon(mapPixmap(i, size)), PictureText::translated(names[i]));
    }
    return box;
}

QDoubleSpinBox* CkLutPanel::createNumber(const QString& sName) {
    auto* number = new QDoubleSpinBox(this);
    number->setObjectName(sName);
    number->setRange(-1e12, 1e12);
    number->setKeyboardTracking(false);
    number->setAlignment(Qt::AlignRight);
    // The wide range must not determine the width.
    number->setMinimumWidth(70);
    number->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return number;
}

void CkLutPanel::createControls() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    auto* form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addLayout(form);
    m_mapBox = createMapBox();
    form->addRow(tr("Colours"), m_mapBox);
    m_autoBox = new QCheckBox(tr("Automatic"), this);
    m_autoBox->setObjectName(QStringLiteral("lutAuto"));
    m_saturationBox = new QCheckBox(tr("Mark saturated"), this);
    m_saturationBox->setObjectName(QStringLiteral("lutSaturation"));
    auto* flags = new QHBoxLayout;
    flags->addWidget(m_autoBox);
    flags->addWidget(m_saturationBox);
    form->addRow(tr("Contrast"), flags);
    m_histogram = new CkHistogramWidget(this);
    m_histogram->setObjectName(QStringLiteral("lutHistogram"));
    layout->addWidget(m_histogram);
    m_low = createNumber(QStringLiteral("lutLow"));
    m_high = createNumber(QStringLiteral("lutHigh"));
    auto* window = new QHBoxLayout;
    window->addWidget(m_low, 1);
    window->addWidget(new QLabel(tr("to"), this));
    window->addWidget(m_high, 1);
    auto* lower = new QFormLayout;
    lower->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    lower->addRow(tr("Window"), window);
    m_gamma = new QDoubleSpinBox(this);
    m_gamma->setObjectName(QStringLiteral("lutGamma"));
    m_gamma->setRange(0.1, 10.0);
    m_gamma->setSingleStep(0.1);
    m_gamma->setValue(1.0);
    m_gamma->setAlignment(Qt::AlignRight);
    m_fullButton = new QPushButton(tr("Full Range"), this);
    m_fullButton->setObjectName(QStringLiteral("lutFull"));
    auto* last = new QHBoxLayout;
    last->addWidget(m_gamma, 1);
    last->addWidget(m_fullButton, 1);
    lower->addRow(tr("Gamma"), last);
    layout->addLayout(lower);
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("lutSummary"));
    m_summary->setWordWrap(true);
    layout->addWidget(m_summary);
    layout->addStretch();
}

void CkLutPanel::refresh() {
    CkMdiView* view = m_area->activeView();
    if (view != m_view) {
        if (m_imageView) {
            disconnect(m_imageView, &CkImageView::contrastChanged, this, nullptr);
        }
        m_view = view;
        m_imageView = qobject_cast<CkImageView*>(view);
        if (m_imageView) {
            connect(m_imageView, &CkImageView::contrastChanged, this, [this] {
                if (!m_delay.isActive()) {
                    m_delay.start();
                }
            });
        }
    }
    bool automatic = false;
    bool saturation = false;
    const CkLut* lut = view != nullptr ? view->viewLut(&automatic, &saturation, nullptr) : nullptr;
    m_mapBox->setEnabled(lut != nullptr);
    m_mapBox->setToolTip(lut != nullptr    ? tr("Colours of the active view")
                         : view != nullptr ? tr("The active view has no colours to choose")
                                           : tr("No view is active"));
    if (lut != nullptr) {
        m_mapBox->setCurrentIndex(lut->pseudoColorIndex());
    }
    m_autoBox->setChecked(automatic && m_imageView);
    m_saturationBox->setChecked(saturation && m_imageView);
    if (m_imageView) {
        const QSignalBlocker blocker(m_gamma);
        m_gamma->setValue(m_imageView->gamma());
    }
    showContrast();
}

void CkLutPanel::showContrast() {
    const CkMdiView* const view = m_view;
    const QString why = view == nullptr               ? tr("No view is active")
                        : !m_imageView                ? tr("The active view sets its contrast itself")
                        : !m_imageView->hasPicture()  ? tr("There is no picture yet")
                        : m_imageView->showsColours() ? tr("A colour picture is shown as it is")
                                                      : QString();
    setContrastEnabled(why.isEmpty(), why);
    if (why.isEmpty()) {
        showWindow();
    } else {
        clearWindow();
    }
}

void CkLutPanel::setContrastEnabled(bool bEnabled, const QString& sWhy) {
    const auto set = [&](QWidget* pWidget, const QString& sHint) {
        pWidget->setEnabled(bEnabled);
        pWidget->setToolTip(bEnabled ? sHint : sWhy);
    };
    set(m_autoBox, tr("The contrast follows every frame"));
    set(m_saturationBox, tr("Show samples at the end of their range in red"));
    set(m_low, tr("Value shown with the first colour"));
    set(m_high, tr("Value shown with the last colour"));
    set(m_gamma, tr("Below 1 the dark parts become lighter, above 1 darker"));
    set(m_fullButton, tr("The whole range of values, without automatic contrast"));
    const QString reason = bEnabled ? m_imageView->saturationReason() : QString();
    if (!reason.isEmpty()) {
        m_saturationBox->setEnabled(false);
        m_saturationBox->setToolTip(reason);
    }
}

void CkLutPanel::clearWindow() {
    for (QDoubleSpinBox* number : {m_low, m_high}) {
        const QSignalBlocker blocker(number);
        number->setSuffix(QString());
        number->setValue(0.0);
        number->clear();
    }
    m_histogram->clear();
    m_summary->clear();
}

void CkLutPanel::showWindow() {
    const SkPicBuf& picture = m_imageView->currentImage()->picBuf();
    const bool isFloat = isFloatType(picture.dataType);
    const SkDisplayWindow window = m_imageView->window();
    const SkPictureStatistics& statistics = m_imageView->statistics();
    const double range = std::max(window.high - window.low, 1e-9);
    const int decimals = isFloat ? std::clamp(3 - int(std::floor(std::log10(range))), 0, 9) : 0;
    const QString unit = m_imageView->unit();
    for (QDoubleSpinBox* number : {m_low, m_high}) {
        if (number->hasFocus() && !m_imageView->autoContrast()) {
            continue;
        }
        const QSignalBlocker blocker(number);
        number->setDecimals(decimals);
        number->setSingleStep(isFloat ? std::pow(10.0, -std::max(0, decimals - 2)) : 1.0);
        number->setSuffix(unit.isEmpty() ? QString() : QLatin1Char(' ') + unit);
        number->setValue(number == m_low ? window.low : window.high);
    }
    m_histogram->showStatistics(statistics, window, true);
    const QLocale locale = PictureText::locale();
    QString summary =
        tr("Values %1 to %2")
            .arg(locale.toString(statistics.minimum, 'g', 5), locale.toString(statistics.maximum, 'g', 5));
    if (!unit.isEmpty()) {
        summary += QLatin1Char(' ') + unit;
    }
    if (statistics.notFinite > 0) {
        summary += tr(", %1 invalid").arg(statistics.notFinite);
    }
    m_summary->setText(PictureText::format(picture) + QLatin1Char('\n') + summary);
}

void CkLutPanel::applyMap(int iIndex) {
    if (!m_view) {
        return;
    }
    bool automatic = false;
    bool saturation = false;
    CkLut* lut = m_view->viewLut(&automatic, &saturation, nullptr);
    if (lut == nullptr) {
        return;
    }
    lut->setPseudoColorIndex(iIndex);
    lut->allocRgbTable(0);
    m_view->setViewLut(lut, automatic, saturation, true);
    const CkImageData* frame = m_imageView ? m_imageView->currentImage() : nullptr;
    if (frame != nullptr) {
        const bool isFloat = frame->picBuf().dataType == EkImageDataType::Float32;
        ViewerSettings::open()->setValue(ViewerSettings::pseudoColorKey(isFloat), iIndex);
    }
}

void CkLutPanel::applyFlags() {
    if (!m_imageView) {
        return;
    }
    CkLut* lut = m_imageView->viewLut(nullptr, nullptr, nullptr);
    m_imageView->setViewLut(lut, m_autoBox->isChecked(), m_saturationBox->isChecked(), true);
}

void CkLutPanel::applyWindow() {
    if (m_imageView) {
        m_imageView->setWindow({m_low->value(), m_high->value()});
        const QSignalBlocker blocker(m_autoBox);
        m_autoBox->setChecked(false);
    }
}
