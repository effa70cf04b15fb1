#include "CFolderTreeView.h"

#include "COvDataItem.h"
#include "CShellIcons.h"
#include "CWindowMessage.h"
#include "ViewPalette.h"

#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int kNodeRole = Qt::UserRole;
constexpr int kExpandedOnceRole = Qt::UserRole + 1;
// Folder pictures come in the sizes that the tree draws at 1.0 and at 1.5.
constexpr int kIconSizes[] = {16, 24, 32};

bool TextBefore(const QTreeWidgetItem* a, const QTreeWidgetItem* b) {
    return a->text(0).compare(b->text(0), Qt::CaseInsensitive) < 0;
}

bool HasChildren(const QTreeWidgetItem* pItem) {
    return pItem->childCount() > 0 ||
           pItem->childIndicatorPolicy() == QTreeWidgetItem::ShowIndicator;
}

} // namespace

CFolderTreeView::CFolderTreeView(IOvDocument* pDocument, QWidget* pParent)
    : QWidget(pParent), m_pDocument(pDocument), m_wndTree(this) {
    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(&m_wndTree);
    ApplyViewPalette(&m_wndTree);
    // The expansion is seen before the view draws the children, so they are in place at once.
    connect(&m_wndTree, &QTreeWidget::itemExpanded, this, &CFolderTreeView::OnItemExpanding);
    connect(&m_wndTree, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* pCurrent) { OnSelChanged(pCurrent); });
    m_pDocument->AddView(this);
}

CFolderTreeView::~CFolderTreeView() {
    m_pDocument->RemoveView(this);
}

void CFolderTreeView::OnInitialUpdate() {
    RebuildTree();
}

void CFolderTreeView::OnUpdate(IOvView*, int nHint) {
    if (nHint == kHintNewTree) {
        RebuildTree();
    }
}

COvDataItem* CFolderTreeView::NodeOf(const QTreeWidgetItem* pItem) {
    if (pItem == nullptr) {
        return nullptr;
    }
    return reinterpret_cast<COvDataItem*>(pItem->data(0, kNodeRole).value<quintptr>());
}

QIcon CFolderTreeView::FolderIcon(int nIcon, int nOpenIcon) {
    const auto key = std::make_pair(nIcon, nOpenIcon);
    const auto found = m_mapFolderIcons.find(key);
    if (found != m_mapFolderIcons.end()) {
        return found->second;
    }
    const QIcon closed = CShellIcons::Instance().Icon(nIcon);
    const QIcon open = CShellIcons::Instance().Icon(nOpenIcon);
    QIcon icon;
    for (const int nSize : kIconSizes) {
        icon.addPixmap(closed.pixmap(nSize), QIcon::Normal);
        icon.addPixmap(open.pixmap(nSize), QIcon::Selected);
    }
    m_mapFolderIcons.emplace(key, icon);
    return icon;
}

QTreeWidgetItem* CFolderTreeView::MakeItem(COvDataItem* pNode) {
    auto* pItem = new QTreeWidgetItem();
    pItem->setText(0, pNode->m_strName);
    pItem->setData(0, kNodeRole, QVariant::fromValue(reinterpret_cast<quintptr>(pNode)));
    const bool bRoot = (pNode->m_uKind & COvDataItem::KindRoot) != 0;
    pItem->setIcon(0, bRoot ? CShellIcons::Instance().RootIcon()
                            : FolderIcon(pNode->m_nIcon, pNode->m_nOpenIcon));
    // The button shows before any child is inserted; the first expansion inserts them.
    pItem->setChildIndicatorPolicy(pNode->m_nFolders != 0
                                       ? QTreeWidgetItem::ShowIndicator
                                       : QTreeWidgetItem::DontShowIndicatorWhenChildless);
    return pItem;
}

QTreeWidgetItem* CFolderTreeView::InsertNode(QTreeWidgetItem* pParent, COvDataItem* pNode) {
    if (pNode == nullptr) {
        return nullptr;
    }
    QTreeWidgetItem* pItem = MakeItem(pNode);
    if (pParent == nullptr) {
        m_wndTree.addTopLevelItem(pItem);
        return pItem;
    }
    // After the last sibling that does not sort after it, as a sorted insert does.
    int nLow = 0;
    int nHigh = pParent->childCount();
    while (nLow < nHigh) {
        const int nMid = (nLow + nHigh) / 2;
        if (TextBefore(pItem, pParent->child(nMid))) {
            nHigh = nMid;
        } else {
            nLow = nMid + 1;
        }
    }
    pParent->insertChild(nLow, pItem);
    return pItem;
}

void CFolderTreeView::InsertSubfolders(QTreeWidgetItem* pItem) {
    const COvDataItem* pNode = NodeOf(pItem);
    if (pNode == nullptr) {
        return;
    }
    // All at once: one insertion into the model, in the order that one sorted insert after
    // another would give.
    QList<QTreeWidgetItem*> items;
    size_t pos = 0;
    while (COvDataItem* pChild = pNode->GetNextChild(pos)) {
        if (pChild->IsFolder()) {
            items.append(MakeItem(pChild));
        }
    }
    std::stable_sort(items.begin(), items.end(), TextBefore);
    pItem->addChildren(items);
}

void CFolderTreeView::OnItemExpanding(QTreeWidgetItem* pItem) {
    if (pItem == nullptr || pItem->data(0, kExpandedOnceRole).toBool()) {
        return;
    }
    pItem->setData(0, kExpandedOnceRole, true);
    InsertSubfolders(pItem);
}

void CFolderTreeView::Expand(QTreeWidgetItem* pItem) {
    if (pItem == nullptr) {
        return;
    }
    if (pItem->isExpanded()) {
        // Already open: only the first expansion inserts, and it may not have run yet.
        OnItemExpanding(pItem);
        return;
    }
    pItem->setExpanded(true);
}

void CFolderTreeView::RebuildTree() {
    m_wndTree.clear();
    QTreeWidgetItem* pRoot = InsertNode(nullptr, m_pDocument->GetRootItem());
    if (pRoot == nullptr) {
        return;
    }
    if (HasChildren(pRoot)) {
        Expand(pRoot);
    }
    // The selection is how the list learns of the new tree: it makes the root current.
    m_wndTree.setCurrentItem(pRoot);
}

void CFolderTreeView::OnSelChanged(QTreeWidgetItem* pItem) {
    COvDataItem* pNode = NodeOf(pItem);
    if (pNode == nullptr) {
        return;
    }
    m_pDocument->SetCurrentFolder(pNode);
    m_pDocument->UpdateAllViews(this, kHintCurrentFolder);
}

QTreeWidgetItem* CFolderTreeView::FindItemByNode(const COvDataItem* pNode) const {
    for (QTreeWidgetItemIterator it(const_cast<COvTreeCtrl*>(&m_wndTree)); *it != nullptr; ++it) {
        if (NodeOf(*it) == pNode) {
            return *it;
        }
    }
    return nullptr;
}

QTreeWidgetItem* CFolderTreeView::FindCurrentItem() const {
    const COvDataItem* pCurrent = m_pDocument->GetCurrentFolder();
    if (pCurrent != m_pDocument->GetRootItem()) {
        return FindItemByNode(pCurrent);
    }
    return m_wndTree.topLevelItem(0);
}

void CFolderTreeView::OnOpenFolder(uintptr_t wParam, intptr_t lParam) {
    if (wParam != kOpenChildFolder) {
        return;
    }
    const auto* pNode = reinterpret_cast<const COvDataItem*>(lParam);
    QTreeWidgetItem* pItem = FindCurrentItem();
    // Expanding makes sure that the child's item exists.
    Expand(pItem);
    if (pItem == nullptr || !HasChildren(pItem)) {
        return;
    }
    QTreeWidgetItem* pChild = nullptr;
    for (int i = 0; i < pItem->childCount() && pChild == nullptr; ++i) {
        if (NodeOf(pItem->child(i)) == pNode) {
            pChild = pItem->child(i);
        }
    }
    if (pChild == nullptr) {
        return;
    }
    pItem->setSelected(false);
    m_wndTree.setCurrentItem(pChild);
    m_wndTree.scrollToItem(pChild);
    if (HasChildren(pChild)) {
        Expand(pChild);
    }
}

bool CFolderTreeView::event(QEvent* pEvent) {
    if (pEvent->type() == CWindowMessage::TypeOf(kWmOvOpenFolder)) {
        const auto* pMessage = static_cast<const CWindowMessage*>(pEvent);
        OnOpenFolder(pMessage->WParam(), pMessage->LParam());
        return true;
    }
    return QWidget::event(pEvent);
}
