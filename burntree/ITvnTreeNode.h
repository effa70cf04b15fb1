// One file or folder of a burn project: its source on disk, its place on the disc and its
// links to its neighbours. The operations keep the family's table order, which is the
// contract between a project side and the tree.
#pragma once

#include <QString>
#include <cstdint>

// A time stamp that the project side hands through the tree whole; the tree never reads it.
struct tagTvnStamp {
    uint32_t auValue[4];
};

class ITvnTreeNode {
public:
    enum Kind : uint32_t { KindFolder = 2, KindFile = 3 };

    virtual ~ITvnTreeNode() = default;
    // A null pDest takes the source's file name and extension as the destination.
    virtual void Init(const QString& source, const QString* pDest, uint32_t kind, uint32_t sizeLow,
                      uint32_t sizeHigh, uint32_t startSector) = 0;
    virtual void Prepare() = 0;
    // Deletes the node itself; its links are the caller's to repair.
    virtual void Destroy() = 0;
    virtual void SetSource(const QString& source) = 0;
    virtual void SetDest(const QString& dest) = 0;
    virtual void SetKind(uint32_t kind) = 0;
    virtual void SetSize(uint32_t sizeLow, uint32_t sizeHigh) = 0;
    virtual void SetStartSector(uint32_t startSector) = 0;
    virtual void SetParent(ITvnTreeNode* pParent) = 0;
    virtual void SetFirstChild(ITvnTreeNode* pFirstChild) = 0;
    virtual void SetPrev(ITvnTreeNode* pPrev) = 0;
    virtual void SetNext(ITvnTreeNode* pNext) = 0;
    virtual const QString& GetSource() const = 0;
    virtual QString& CopySource(QString& buffer) const = 0;
    virtual const QString& GetDest() const = 0;
    virtual QString& CopyDest(QString& buffer) const = 0;
    virtual uint32_t GetKind() const = 0;
    virtual uint64_t GetSize() const = 0;
    virtual uint32_t GetStartSector() const = 0;
    virtual ITvnTreeNode* GetParent() const = 0;
    virtual ITvnTreeNode* GetFirstChild() const = 0;
    virtual ITvnTreeNode* GetPrev() const = 0;
    virtual ITvnTreeNode* GetNext() const = 0;
    virtual void SetUserValue(uint32_t value) = 0;
    virtual const QString& SetAltName(const QString& altName) = 0;
    virtual const QString& GetAltName() const = 0;
    virtual uint32_t GetUserValue() const = 0;
    virtual const tagTvnStamp* SetStamp(const tagTvnStamp& stamp) = 0;
    virtual tagTvnStamp& GetStamp(tagTvnStamp& stamp) const = 0;
};
