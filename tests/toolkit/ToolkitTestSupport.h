// Tiny pictures painted in code, a parent that records the messages its controls send, and
// the mouse and keys of a person.
#pragma once

#include "CTvgMessageBox.h"
#include "CTvnStringTable.h"
#include "CWindowMessage.h"
#include "SkinImages.h"
#include "TestFiles.h"
#include "TvnText.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <initializer_list>
#include <vector>

namespace toolkittest {

// A strip of equal pieces, each filled with one colour.
inline QImage Strip(std::initializer_list<QRgb> colours, int nPieceWidth, int nHeight) {
    QImage strip(nPieceWidth * static_cast<int>(colours.size()), nHeight, QImage::Format_ARGB32);
    int x = 0;
    for (QRgb colour : colours) {
        for (int y = 0; y < nHeight; ++y) {
            for (int i = 0; i < nPieceWidth; ++i) {
                strip.setPixel(x + i, y, colour);
            }
        }
        x += nPieceWidth;
    }
    return strip;
}

// Points the toolkit's install folder at a temporary one for the life of the object.
class TempInstall {
public:
    TempInstall() { SetInstallFolder(QString::fromStdString(m_dir.Path().string())); }
    ~TempInstall() { SetInstallFolder(QString()); }
    // Saves image under the relative path ('/' separated), making its folders.
    void Save(const QImage& image, const QString& relativePath) const {
        const QString path = InstallPath(relativePath);
        QDir().mkpath(path.section(u'/', 0, -2));
        image.save(path, "PNG");
    }

private:
    testsupport::TempDir m_dir;
};

// The committed pictures under the source tree's Image/ and the English texts, for the life of
// the object.
class CommittedSkin {
public:
    CommittedSkin() {
        SetInstallFolder(QDir::cleanPath(QStringLiteral(OVRIN_LANGUAGE_DIR "/..")));
        m_table.LoadFile(QStringLiteral(OVRIN_LANGUAGE_DIR "/Enu/Tvnrc.txt"));
        SetCurrentStringTable(&m_table);
    }
    ~CommittedSkin() {
        SetCurrentStringTable(nullptr);
        SetInstallFolder(QString());
    }

private:
    CTvnStringTable m_table;
};

struct Message {
    uint32_t nMessage;
    uintptr_t wParam;
    intptr_t lParam;
};

// A parent window that keeps every window message its children send or post.
class RecordingParent : public QWidget {
public:
    RecordingParent() { resize(400, 300); }
    std::vector<Message> m_messages;
    std::vector<Message>& Delivered() {
        QCoreApplication::sendPostedEvents(this);
        return m_messages;
    }
    int Count(uint32_t nMessage) {
        return static_cast<int>(std::ranges::count(Delivered(), nMessage, &Message::nMessage));
    }

protected:
    bool event(QEvent* pEvent) override {
        if (pEvent->type() >= QEvent::User && pEvent->type() <= QEvent::MaxUser) {
            const auto* pMessage = static_cast<CWindowMessage*>(pEvent);
            m_messages.push_back({pMessage->Message(), pMessage->WParam(), pMessage->LParam()});
            return true;
        }
        return QWidget::event(pEvent);
    }
};

inline void Mouse(QWidget& widget, QEvent::Type type, QPoint pos, Qt::MouseButton button,
                  Qt::MouseButtons buttons) {
    QMouseEvent event(type, QPointF(pos), QPointF(widget.mapToGlobal(pos)), button, buttons,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}
inline void MoveTo(QWidget& widget, QPoint pos, Qt::MouseButtons buttons = Qt::NoButton) {
    Mouse(widget, QEvent::MouseMove, pos, Qt::NoButton, buttons);
}
inline void PressAt(QWidget& widget, QPoint pos) {
    Mouse(widget, QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton);
}
inline void ReleaseAt(QWidget& widget, QPoint pos) {
    Mouse(widget, QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton);
}
inline void ClickAt(QWidget& widget, QPoint pos) {
    PressAt(widget, pos);
    ReleaseAt(widget, pos);
}
inline void Click(QWidget& widget) {
    ClickAt(widget, widget.rect().center());
}
inline void Leave(QWidget& widget) {
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&widget, &event);
}
// Answers every modal box that comes up while it lives, the skinned ones and the system's, and
// keeps their texts.
class BoxCatcher {
public:
    BoxCatcher() {
        QObject::connect(&m_poll, &QTimer::timeout, [this] { CloseActiveBox(); });
        m_poll.start(5);
    }
    QStringList m_lstTexts;
    // Boxes that came up unable to take the user's answer.
    int m_nDisabled = 0;

private:
    void CloseActiveBox() {
        QWidget* pModal = QApplication::activeModalWidget();
        if (auto* pBox = qobject_cast<CTvgMessageBox*>(pModal); pBox && pBox->isVisible()) {
            m_lstTexts << pBox->accessibleDescription();
            m_nDisabled += pBox->isEnabled() ? 0 : 1;
            pBox->reject();
        } else if (auto* pSystem = qobject_cast<QMessageBox*>(pModal);
                   pSystem && pSystem->isVisible()) {
            m_lstTexts << pSystem->text();
            pSystem->reject();
        }
    }

    QTimer m_poll;
};

inline void Key(QWidget& widget, QEvent::Type type, int nKey) {
    QKeyEvent event(type, nKey, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace toolkittest
