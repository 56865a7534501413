#pragma once

#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"
#include "zuCore/CkPicBufAPI.h"

#include <QDomElement>
#include <QLabel>
#include <atomic>

/// A block for the chain panel: passes frames on, has a setting, a widget, a help text, and an error on
/// demand.
class CkDemoBlock : public CkImageProvider {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Demo block")
    Q_CLASSINFO("UniqueID", "test.CkDemoBlock")

public:
    Q_INVOKABLE CkDemoBlock() : CkImageProvider(41) {}

    QString title() const override { return QStringLiteral("Demo %1").arg(m_iSetting); }
    IkChainData* processData(IkChainData* pData) override {
        if (m_bFail) {
            setErrorMessage(QStringLiteral("The demo block fails."));
            return nullptr;
        }
        const QString warning = m_bWarn ? QStringLiteral("Odd, but it works.") : QString();
        if (errorMessage() != warning) {
            setErrorMessage(warning);
        }
        return state() == Blocked ? nullptr : pData;
    }
    bool saveSettings(QDomDocument& doc, QDomElement& element) const override {
        element.setAttribute(QStringLiteral("setting"), m_iSetting);
        return CkImageProvider::saveSettings(doc, element);
    }
    bool loadSettings(const QDomElement& element) override {
        m_iSetting = element.attribute(QStringLiteral("setting")).toInt();
        return CkImageProvider::loadSettings(element);
    }
    bool hasHelp() const override { return true; }
    void help(QString& sText) override { sText = QStringLiteral("Helps to <b>test</b>."); }
    QWidget* configurationWidget() override {
        auto* label = new QLabel(QStringLiteral("settings of the demo block"));
        label->setObjectName(QStringLiteral("demoSettings"));
        return label;
    }

    int m_iSetting = 5;
    std::atomic<bool> m_bFail{false};
    std::atomic<bool> m_bWarn{false};
};

/// A block that accepts no input.
class CkPickyBlock : public CkImageProvider {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Picky block")
    Q_CLASSINFO("UniqueID", "test.CkPickyBlock")

public:
    Q_INVOKABLE CkPickyBlock() : CkImageProvider(41) {}
    bool acceptsDataFrom(CkChainable*) override { return false; }
};
