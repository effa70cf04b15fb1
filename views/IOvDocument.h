// What the browsing views need of the document: the tree it owns, the folder that is current,
// and the notice that goes to every view when either changes.
#pragma once

#include <vector>

class COvDataItem;

// The document's update hints.
inline constexpr int kHintCurrentFolder = 1;
inline constexpr int kHintNewTree = 2;

// A pane that follows the document.
class IOvView {
public:
    virtual ~IOvView() = default;
    virtual void OnUpdate(IOvView* pSender, int nHint) = 0;
};

class IOvDocument {
public:
    virtual ~IOvDocument() = default;

    // Null when no tree could be made.
    virtual COvDataItem* GetRootItem() const = 0;
    // Each image gets a fresh tree: the old root goes first, with every node below it, so that
    // no node of one image outlives it into the next.
    virtual void DeleteRootItem() = 0;
    virtual void CreateRootItem() = 0;
    // Null before the tree picks one; may be the root.
    virtual COvDataItem* GetCurrentFolder() const = 0;
    virtual void SetCurrentFolder(COvDataItem* pFolder) = 0;

    // Views register themselves for their lifetime; the document does not own them.
    void AddView(IOvView* pView);
    void RemoveView(IOvView* pView);
    // Calls OnUpdate of every registered view but the sender.
    void UpdateAllViews(IOvView* pSender, int nHint);

private:
    std::vector<IOvView*> m_vecViews;
};
