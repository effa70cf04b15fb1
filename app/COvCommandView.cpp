#include "COvCommandView.h"

#include "CDisplayScale.h"
#include "CGXTButton.h"
#include "DevicePixels.h"
#include "ICommandTarget.h"
#include "ToolkitTypes.h"
#include "TvnText.h"

#include <QPainter>
#include <QTimer>

namespace {

constexpr COLORREF kBackground = 0x00605853;
constexpr int kStripStates = 3;
// The row's first button and the gap after each, at an interface scale of 1.0.
constexpr int kFirstX = 5;
constexpr int kTop = 7;
constexpr int kGap = 10;
constexpr double kLargeScale = 1.5;
constexpr char kIdProperty[] = "commandId";

struct Pictures {
    int nId;
    uint32_t nNormal;
    uint32_t nLarge;
};

// Mount has no picture at the large size of its own and shares burn's.
constexpr Pictures kPictures[] = {
    {639, tvn::kImageOpen, tvn::kImageOpenLarge},
    {640, tvn::kImageView, tvn::kImageViewLarge},
    {641, tvn::kImageExtract, tvn::kImageExtractLarge},
    {642, tvn::kImageViewMenu, tvn::kImageViewMenuLarge},
    {661, tvn::kImageBurn, tvn::kImageBurnLarge},
    {671, tvn::kImageMount, tvn::kImageMountLarge},
};

int Scaled(int nValue) {
    return static_cast<int>(nValue * GetUiScale());
}

} // namespace

COvCommandView::COvCommandView(QWidget* pParent) : QWidget(pParent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_pUpdateTimer = new QTimer(this);
    m_pUpdateTimer->setInterval(kUpdateIntervalMs);
    connect(m_pUpdateTimer, &QTimer::timeout, this, &COvCommandView::UpdateButtons);
}

COvCommandView::~COvCommandView() {
    RemoveButtons();
}

void COvCommandView::SetCommandTarget(ICommandTarget* pTarget) {
    m_pTarget = pTarget;
}

QString COvCommandView::PictureName(int nId) {
    const bool bLarge = GetUiScale() >= kLargeScale;
    for (const Pictures& pictures : kPictures) {
        if (pictures.nId == nId) {
            return TvnText(bLarge ? pictures.nLarge : pictures.nNormal);
        }
    }
    return TvnText(bLarge ? tvn::kImageViewLarge : tvn::kImageView);
}

void COvCommandView::RemoveButtons() {
    for (CGXTButton* pButton : m_buttons) {
        delete pButton;
    }
    m_buttons.clear();
    m_pUpdateTimer->stop();
}

int COvCommandView::CreateButtons(std::span<const int> ids) {
    RemoveButtons();
    const qreal dpr = DevicePixelRatioOf(this);
    int x = Scaled(kFirstX);
    int nFailed = 0;
    for (const int nId : ids) {
        if (nId == 0) {
            m_buttons.push_back(nullptr);
            continue;
        }
        auto* pButton = new CGXTButton(this);
        const QString path = QStringLiteral("Image/MainFrame/%1.png").arg(PictureName(nId));
        nFailed += pButton->Setup(path, kStripStates, CGXTButton::kNoMask) ? 0 : 1;
        pButton->setProperty(kIdProperty, nId);
        // Focus stays in the pane the user works in, which the command route asks first.
        pButton->setFocusPolicy(Qt::NoFocus);
        pButton->setToolTip(TvnText(static_cast<uint32_t>(nId)));
        pButton->setGeometry(ToLogical(QRect(QPoint(x, Scaled(kTop)), pButton->IconSize()), dpr));
        pButton->setEnabled(false);
        pButton->show();
        connect(pButton, &CGXTButton::clicked, this, [this, nId] { OnClicked(nId); });
        x += pButton->IconSize().width() + Scaled(kGap);
        m_buttons.push_back(pButton);
    }
    UpdateButtons();
    if (!m_buttons.empty()) {
        m_pUpdateTimer->start();
    }
    return nFailed;
}

CGXTButton* COvCommandView::Button(int nId) const {
    for (CGXTButton* pButton : m_buttons) {
        if (pButton != nullptr && pButton->property(kIdProperty).toInt() == nId) {
            return pButton;
        }
    }
    return nullptr;
}

void COvCommandView::OnClicked(int nId) {
    if (m_pTarget != nullptr) {
        m_pTarget->OnCommand(nId);
    }
    UpdateButtons();
}

// A command that no target on the route knows stays disabled.
void COvCommandView::UpdateButtons() {
    if (m_pTarget == nullptr) {
        return;
    }
    for (CGXTButton* pButton : m_buttons) {
        if (pButton == nullptr) {
            continue;
        }
        CommandState state;
        const int nId = pButton->property(kIdProperty).toInt();
        const bool bKnown = m_pTarget->OnUpdateCommand(nId, state);
        pButton->setEnabled(bKnown && state.bEnabled);
    }
}

void COvCommandView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), ColorFromRef(kBackground));
}
