// One node of the browsed tree of an image: the root, a folder or a file.
#pragma once

#include "NodeChildren.h"
#include "NodeText.h"
#include "QmzTypes.h"

#include <QString>
#include <cstdint>
#include <new>

struct FileTypeRecord;

class COvDataItem {
public:
    enum Kind : uint32_t { KindRoot = 1, KindFolder = 2, KindFile = 4 };
    enum SortColumn { SortName = 0, SortSize = 1, SortType = 2, SortTime = 3 };

    // Fills the type text and icons of a new node; returns false when there is no answer.
    using FileTypeLookup = bool (*)(const QString& path, bool isFolder, FileTypeRecord& record);

    // For the root, text is its name; otherwise it is the node's full path in the image with a
    // leading '\'.
    COvDataItem(const QString& text, uint32_t kind, uint32_t sizeLow, uint32_t sizeHigh);
    ~COvDataItem();

    COvDataItem(const COvDataItem&) = delete;
    COvDataItem& operator=(const COvDataItem&) = delete;

    // Nodes come from one pool (FixedBlockPool) on the thread that builds and frees trees.
    static void* operator new(size_t size);
    static void* operator new(size_t size, const std::nothrow_t&) noexcept;
    static void operator delete(void* p) noexcept;

    // Adds a child and rolls its size up to every ancestor; null when it cannot be allocated.
    COvDataItem* AddChild(const QString& text, uint32_t kind, uint32_t sizeLow, uint32_t sizeHigh);

    COvDataItem* GetParent() const { return m_pParent; }
    void SetParent(COvDataItem* pParent) { m_pParent = pParent; }
    // Returns the child at pos and moves pos on, or null at the end.
    COvDataItem* GetNextChild(size_t& pos) const;
    bool IsFolder() const { return (m_uKind & KindFolder) != 0; }
    bool IsFile() const { return (m_uKind & KindFile) != 0; }

    // Folders before files, then by name without regard to case; null first.
    static bool LessByNameAscending(const COvDataItem* a, const COvDataItem* b);
    void SortChildrenByName();

    // The process-wide type service; null until one is installed.
    static void SetFileTypeLookup(FileTypeLookup pfnLookup);

    int32_t m_anSortState[4] = {0, 0, 0, 0};
    NodeText m_strName;
    // Shared between siblings, so a folder of many files holds its path once.
    NodeText m_strPath;
    // Shares m_strName's characters unless a view renames the node.
    NodeText m_strDisplayName;
    COvDataItem* m_pParent = nullptr;
    NodeChildren m_vecChildren;
    NodeText m_strTypeName;
    qmz::FileTime m_ftTime = {0, 0};
    uint32_t m_uKind = 0;
    int32_t m_nFolders = 0;
    int32_t m_nFiles = 0;
    uint64_t m_ullSize = 0;
    int32_t m_nIcon = 0;
    int32_t m_nOpenIcon = 0;

private:
    COvDataItem() = default;
    void InitFromPath(const QString& text, const NodeText* pSiblingPath);
    void FillTypeInfo(const QString& text);
    bool AppendChild(COvDataItem* pChild);
};

// The answer of the type service for one path.
struct FileTypeRecord {
    int32_t nIcon = 0;
    int32_t nOpenIcon = 0;
    QString strTypeName;
};
