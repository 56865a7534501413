#pragma once

#include <QApplication>
#include <QList>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <functional>

/// Operates the modal windows that the code under test opens, with key presses from within their own event
/// loop. Message boxes are recorded and closed with Enter unless a handler is set; other windows go to the
/// handlers of expectWindow in turn.
class ModalDriver : public QObject {
public:
    struct Box {
        QString title;
        QString text;
        QMessageBox::Icon icon;
        QWidget* parent;
    };

    ModalDriver() {
        m_timer.setInterval(5);
        connect(&m_timer, &QTimer::timeout, this, [this] { look(); });
        m_timer.start();
    }

    QList<Box> boxes;
    /// Replaces the Enter key for message boxes.
    std::function<void(QMessageBox*)> onBox;

    void expectWindow(std::function<void(QWidget*)> handler) { m_handlers.append(std::move(handler)); }
    /// Expected windows that have not opened yet.
    qsizetype pending() const { return m_handlers.size(); }
    /// Ignores this window, which belongs to the test.
    void ignoreWindow(QWidget* pWindow) { m_ignored = pWindow; }

private:
    void look() {
        QWidget* window = QApplication::activeModalWidget();
        if (window == nullptr || !window->isVisible() || window == m_ignored || window == m_handled) {
            return;
        }
        if (auto* box = qobject_cast<QMessageBox*>(window)) {
            handled(box);
            boxes.append({box->windowTitle(), box->text(), box->icon(), box->parentWidget()});
            later(box, [this](QWidget* pBox) {
                if (onBox) {
                    onBox(static_cast<QMessageBox*>(pBox));
                } else {
                    QTest::keyClick(pBox, Qt::Key_Return);
                }
            });
        } else if (!m_handlers.isEmpty()) {
            handled(window);
            later(window, m_handlers.takeFirst());
        }
    }

    // Not within the timer's callback: the handler may open the next window before it returns.
    void later(QWidget* pWindow, std::function<void(QWidget*)> handler) {
        QMetaObject::invokeMethod(
            pWindow, [pWindow, handler = std::move(handler)] { handler(pWindow); }, Qt::QueuedConnection);
    }

    // Once each; the next window may be built at the same address.
    void handled(QWidget* pWindow) {
        m_handled = pWindow;
        connect(pWindow, &QObject::destroyed, this, [this, pWindow] {
            if (m_handled == pWindow) {
                m_handled = nullptr;
            }
        });
    }

    QTimer m_timer;
    QList<std::function<void(QWidget*)>> m_handlers;
    QWidget* m_ignored = nullptr;
    QWidget* m_handled = nullptr;
};
