// The program's one document: it saves and loads nothing, and only holds the tree of the image
// that is open, which the folder tree and the file list show, and the folder the user is in.
#pragma once

#include "IOvDocument.h"

#include <memory>

class COvDataItem;

class COvrinDoc : public IOvDocument {
public:
    // Starts with an empty root named for no image.
    COvrinDoc();
    ~COvrinDoc() override;
    COvrinDoc(const COvrinDoc&) = delete;
    COvrinDoc& operator=(const COvrinDoc&) = delete;

    COvDataItem* GetRootItem() const override { return m_pRootItem.get(); }
    void DeleteRootItem() override;
    void CreateRootItem() override;
    COvDataItem* GetCurrentFolder() const override { return m_pCurrentFolder; }
    void SetCurrentFolder(COvDataItem* pFolder) override { m_pCurrentFolder = pFolder; }

private:
    std::unique_ptr<COvDataItem> m_pRootItem;
    COvDataItem* m_pCurrentFolder = nullptr;
};
