// The node of a burn project's data tree. The tree (tagTvnDataTreeImpl) creates, links and
// destroys nodes; a node never touches its own links.
#pragma once

#include "ITvnTreeNode.h"

struct tagTvnTreeNodeImpl : public ITvnTreeNode {
    tagTvnTreeNodeImpl() = default;
    tagTvnTreeNodeImpl(const tagTvnTreeNodeImpl&) = delete;
    tagTvnTreeNodeImpl& operator=(const tagTvnTreeNodeImpl&) = delete;

    // The file name and extension of a local path, which a node takes as its destination and
    // second name when it is given none.
    static QString FileNameOf(const QString& path);

    void Init(const QString& source, const QString* pDest, uint32_t kind, uint32_t sizeLow,
              uint32_t sizeHigh, uint32_t startSector) override;
    void Prepare() override;
    void Destroy() override;
    void SetSource(const QString& source) override;
    void SetDest(const QString& dest) override;
    void SetKind(uint32_t kind) override;
    void SetSize(uint32_t sizeLow, uint32_t sizeHigh) override;
    void SetStartSector(uint32_t startSector) override;
    void SetParent(ITvnTreeNode* pParent) override;
    void SetFirstChild(ITvnTreeNode* pFirstChild) override;
    void SetPrev(ITvnTreeNode* pPrev) override;
    void SetNext(ITvnTreeNode* pNext) override;
    const QString& GetSource() const override;
    QString& CopySource(QString& buffer) const override;
    const QString& GetDest() const override;
    QString& CopyDest(QString& buffer) const override;
    uint32_t GetKind() const override;
    uint64_t GetSize() const override;
    uint32_t GetStartSector() const override;
    ITvnTreeNode* GetParent() const override;
    ITvnTreeNode* GetFirstChild() const override;
    ITvnTreeNode* GetPrev() const override;
    ITvnTreeNode* GetNext() const override;
    void SetUserValue(uint32_t value) override;
    const QString& SetAltName(const QString& altName) override;
    const QString& GetAltName() const override;
    uint32_t GetUserValue() const override;
    const tagTvnStamp* SetStamp(const tagTvnStamp& stamp) override;
    tagTvnStamp& GetStamp(tagTvnStamp& stamp) const override;

    QString m_szSource;
    QString m_szDest;
    uint32_t m_uKind = 0;
    uint64_t m_ullSize = 0;
    uint32_t m_uStartSector = 0;
    ITvnTreeNode* m_pParent = nullptr;
    ITvnTreeNode* m_pFirstChild = nullptr;
    ITvnTreeNode* m_pPrev = nullptr;
    ITvnTreeNode* m_pNext = nullptr;
    uint32_t m_uUserValue = 0;
    QString m_szAltName;
    tagTvnStamp m_auStamp = {};
};
