#pragma once

#include "plugins/zplToF/view3d/CkToFScene.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"
#include "tests/support/ModalDriver.h"

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QBuffer>
#include <Qt3DRender/QGeometryRenderer>

inline constexpr float kPi = 3.14159265F;

inline std::unique_ptr<CkImageData> phaseOf(float radians, float confidence = 0.1F) {
    return TestFrame::phase(8, 6, [=](int, int) { return DepthPixel{radians, confidence}; });
}

/// A 3D view operated by actions, keys and dialogs.
class ViewActionTest : public ViewTest {
protected:
    static QByteArray vertices(const CkToF3DMdiView& view) {
        const auto* positions = CkToF3DMdiView::getSceneAttribute(view.scene()->cloudRenderer(),
                                                                  QStringLiteral("vertexPosition"));
        return positions != nullptr ? positions->buffer()->data() : QByteArray();
    }
    static QString label(const CkToF3DMdiView& view) {
        for (const QLabel* candidate : view.findChildren<QLabel*>()) {
            if (candidate->text().startsWith(QLatin1String("Width"))) {
                return candidate->text();
            }
        }
        return {};
    }
    void useLens(float offsetM) {
        m_host.store(QStringLiteral("ToF.OptCompensateDistorsion"), true);
        m_host.store(QStringLiteral("ToF.OptRealDistandeOffsetM"), offsetM);
        m_host.store(QStringLiteral("ToF.OptOrthoRadialCorrection"), false);
    }
    static void connectReports(const CkMdiView& view, const std::function<void(qint32)>& report) {
        QObject::connect(&view, &CkMdiView::receivedFrame, report);
    }
    /// The path of a file in the temporary folder.
    QString inFolder(const QString& name) const { return m_folder.filePath(name); }
    static void chooseFile(QWidget* window, const QString& name) {
        auto* dialog = qobject_cast<QFileDialog*>(window);
        ASSERT_NE(dialog, nullptr);
        auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(edit, nullptr);
        edit->setText(name);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    QTemporaryDir m_folder;
    ModalDriver m_driver;
};
