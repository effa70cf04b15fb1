// A text field of a tree node in one pointer instead of the three words of a QString. A tree
// of a million nodes holds several texts per node, and most of them are shared: a folder's path
// by all its children, a type text by every file of that type, the display name by the name.
// The text reads as a QString wherever one is wanted, without a copy of its characters, except
// for a name of ASCII characters only, which a block keeps at one byte a character: most names
// on discs are such names, and a QString is made of one only when it is read.
#pragma once

#include <QAnyStringView>
#include <QString>
#include <QStringView>
#include <cstdint>

class NodeText {
public:
    NodeText() = default;
    NodeText(const NodeText& other);
    NodeText& operator=(const NodeText& other);
    ~NodeText() { Clear(); }

    // Texts of equal characters that come one after another from the same strings share one
    // buffer (a type service hands out the same few texts for every node).
    NodeText& operator=(const QString& text);
    // A text with a buffer of its own.
    static NodeText Copy(QStringView text);
    // A short text cut from a block of characters that many texts share, so that a name of a
    // dozen characters costs little more than its characters; longer ones are copied.
    // Comparisons give the same order whichever form a text has.
    static NodeText InBlock(QStringView text);

    operator QString() const { return ToString(); }
    QString ToString() const;
    // UTF-16, or Latin-1 for a name of ASCII characters; never UTF-8.
    QAnyStringView View() const;
    bool isEmpty() const { return m_uBits == 0; }
    qsizetype size() const { return View().size(); }
    QByteArray toUtf8() const { return ToString().toUtf8(); }

    friend bool operator==(const NodeText& a, const NodeText& b) {
        return QAnyStringView::equal(a.View(), b.View());
    }
    friend bool operator==(const NodeText& a, const QString& b) {
        return QAnyStringView::equal(a.View(), b);
    }
    friend bool operator==(const NodeText& a, QStringView b) {
        return QAnyStringView::equal(a.View(), b);
    }
    friend QString operator+(const NodeText& a, const QString& b) { return a.ToString() + b; }
    friend QString operator+(const QString& a, const NodeText& b) { return a + b.ToString(); }
    friend QString operator+(const NodeText& a, const NodeText& b) {
        return a.ToString() + b.ToString();
    }

private:
    using Data = QTypedArrayData<char16_t>;
    // 0 for the empty text. Otherwise either a Data header whose characters fill its whole
    // capacity, or, with the low bit set, the characters of a text in a shared block (see
    // NodeText.cpp). Either form holds one reference on its buffer.
    static constexpr uintptr_t kInBlockBit = 1;

    void Clear();
    void Adopt(Data* pData);
    bool IsInBlock() const { return (m_uBits & kInBlockBit) != 0; }
    Data* Header() const;
    const char16_t* Units() const;
    bool IsNarrow() const;

    uintptr_t m_uBits = 0;
};

static_assert(sizeof(NodeText) == sizeof(void*));
