// Writes the tree of an opened image as text, one entry a line, for people and scripts.
#pragma once

#include <QAnyStringView>
#include <cstdint>
#include <cstdio>
#include <string>

class COvDataItem;

class TreePrinter {
public:
    // bLong adds each entry's type text, in double quotes, before its path.
    explicit TreePrinter(std::FILE* pOut, bool bLong = false);

    // Breadth first, each folder's children in their sorted order:
    // "d|- SIZE YYYY-MM-DDTHH:MM:SSZ ["TYPE" ]path/from/root". Returns false when writing
    // failed.
    bool PrintList(const COvDataItem& root);

    static void AppendUtf8(std::string& out, const char16_t* pText, size_t nChars);
    // A node's name, UTF-16 or one byte a character, as AppendUtf8 writes it.
    static void AppendName(std::string& out, QAnyStringView name);
    static void AppendTime(std::string& out, uint64_t utcTicks);

private:
    void AppendTimeOf(const COvDataItem& item);
    void AppendTypeOf(const COvDataItem& item);
    bool Flush();

    std::FILE* m_pOut;
    bool m_bLong;
    std::string m_buffer;
    uint64_t m_lastSeconds = 0;
    std::string m_lastTimeText;
    const void* m_pLastType = nullptr;
    std::string m_lastTypeText;
};
