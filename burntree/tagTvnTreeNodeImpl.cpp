#include "tagTvnTreeNodeImpl.h"

namespace {

constexpr unsigned kHighHalfShift = 32;

} // namespace

QString tagTvnTreeNodeImpl::FileNameOf(const QString& path) {
    return path.mid(path.lastIndexOf(u'/') + 1);
}

void tagTvnTreeNodeImpl::Init(const QString& source, const QString* pDest, uint32_t kind,
                              uint32_t sizeLow, uint32_t sizeHigh, uint32_t startSector) {
    m_szSource = source;
    m_szDest = pDest != nullptr ? *pDest : FileNameOf(source);
    m_uKind = kind;
    SetSize(sizeLow, sizeHigh);
    m_uStartSector = startSector;
    Prepare();
}

void tagTvnTreeNodeImpl::Prepare() {}

void tagTvnTreeNodeImpl::Destroy() {
    delete this;
}

void tagTvnTreeNodeImpl::SetSource(const QString& source) {
    m_szSource = source;
}

void tagTvnTreeNodeImpl::SetDest(const QString& dest) {
    m_szDest = dest;
}

void tagTvnTreeNodeImpl::SetKind(uint32_t kind) {
    m_uKind = kind;
}

void tagTvnTreeNodeImpl::SetSize(uint32_t sizeLow, uint32_t sizeHigh) {
    m_ullSize = (static_cast<uint64_t>(sizeHigh) << kHighHalfShift) | sizeLow;
}

void tagTvnTreeNodeImpl::SetStartSector(uint32_t startSector) {
    m_uStartSector = startSector;
}

void tagTvnTreeNodeImpl::SetParent(ITvnTreeNode* pParent) {
    m_pParent = pParent;
}

void tagTvnTreeNodeImpl::SetFirstChild(ITvnTreeNode* pFirstChild) {
    m_pFirstChild = pFirstChild;
}

void tagTvnTreeNodeImpl::SetPrev(ITvnTreeNode* pPrev) {
    m_pPrev = pPrev;
}

void tagTvnTreeNodeImpl::SetNext(ITvnTreeNode* pNext) {
    m_pNext = pNext;
}

const QString& tagTvnTreeNodeImpl::GetSource() const {
    return m_szSource;
}

QString& tagTvnTreeNodeImpl::CopySource(QString& buffer) const {
    buffer = m_szSource;
    return buffer;
}

const QString& tagTvnTreeNodeImpl::GetDest() const {
    return m_szDest;
}

QString& tagTvnTreeNodeImpl::CopyDest(QString& buffer) const {
    buffer = m_szDest;
    return buffer;
}

uint32_t tagTvnTreeNodeImpl::GetKind() const {
    return m_uKind;
}

uint64_t tagTvnTreeNodeImpl::GetSize() const {
    return m_ullSize;
}

uint32_t tagTvnTreeNodeImpl::GetStartSector() const {
    return m_uStartSector;
}

ITvnTreeNode* tagTvnTreeNodeImpl::GetParent() const {
    return m_pParent;
}

ITvnTreeNode* tagTvnTreeNodeImpl::GetFirstChild() const {
    return m_pFirstChild;
}

ITvnTreeNode* tagTvnTreeNodeImpl::GetPrev() const {
    return m_pPrev;
}

ITvnTreeNode* tagTvnTreeNodeImpl::GetNext() const {
    return m_pNext;
}

void tagTvnTreeNodeImpl::SetUserValue(uint32_t value) {
    m_uUserValue = value;
}

const QString& tagTvnTreeNodeImpl::SetAltName(const QString& altName) {
    m_szAltName = altName;
    return m_szAltName;
}

const QString& tagTvnTreeNodeImpl::GetAltName() const {
    return m_szAltName;
}

uint32_t tagTvnTreeNodeImpl::GetUserValue() const {
    return m_uUserValue;
}

const tagTvnStamp* tagTvnTreeNodeImpl::SetStamp(const tagTvnStamp& stamp) {
    m_auStamp = stamp;
    return &m_auStamp;
}

tagTvnStamp& tagTvnTreeNodeImpl::GetStamp(tagTvnStamp& stamp) const {
    stamp = m_auStamp;
    return stamp;
}
