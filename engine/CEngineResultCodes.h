// The engine family's result codes and their fixed English texts: the one place where a code
// turns into words for a failure display.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// One row as the family lays it out: the code, then a zero-padded UTF-16 text of at most 399
// characters with its terminator. Rows follow each other without a gap.
struct tagEngineCodeRow {
    uint32_t uCode;
    char16_t wszText[400];
};
static_assert(sizeof(tagEngineCodeRow) == 804);

class CEngineResultCodes {
public:
    // True for every code of the family's pattern, with or without a row in the table.
    static bool IsEngineCode(uint32_t code);

    // Copies the text of code into pBuffer with wcsncpy's rules: at most nCapacity characters,
    // the rest padded with zeros, and no terminator when the text fills the capacity. For a
    // family code, pBuffer[0] is cleared first, so the buffer must hold at least one character.
    // Returns false, leaving buffer and count untouched, for a code outside the family; false
    // with an empty buffer for a family code without a row.
    static bool GetEngineCodeText(uint32_t code, uint32_t nCapacity, char16_t* pBuffer,
                                  uint32_t* pCount);

    // The rows in the family's order, which is not strictly the order of the codes.
    static std::span<const tagEngineCodeRow> Rows();
};
