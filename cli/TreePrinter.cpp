#include "TreePrinter.h"

#include "COvDataItem.h"
#include "FileTimeConversion.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <utility>

namespace {

constexpr size_t kFlushBytes = 1 << 20;

void AppendDecimal(std::string& out, uint64_t value) {
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, result.ptr);
}

void AppendTwoDigits(char* p, int value) {
    p[0] = static_cast<char>('0' + value / 10);
    p[1] = static_cast<char>('0' + value % 10);
}

void AppendCodePoint(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

} // namespace

void TreePrinter::AppendUtf8(std::string& out, const char16_t* pText, size_t nChars) {
    size_t i = 0;
    while (i < nChars) {
        // Runs of plain ASCII go in whole.
        const size_t nRunStart = i;
        while (i < nChars && pText[i] < 0x80 && pText[i] != u'\n') {
            ++i;
        }
        if (i > nRunStart) {
            const size_t nOld = out.size();
            out.resize(nOld + (i - nRunStart));
            std::copy(pText + nRunStart, pText + i, out.begin() + static_cast<ptrdiff_t>(nOld));
        }
        if (i == nChars) {
            break;
        }
        char32_t cp = pText[i];
        if (cp == u'\n') {
            out += "\\n";
        } else if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < nChars && pText[i + 1] >= 0xDC00 &&
                   pText[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (pText[++i] - 0xDC00);
            AppendCodePoint(out, cp);
        } else {
            AppendCodePoint(out, (cp >= 0xD800 && cp <= 0xDFFF) ? char32_t{0xFFFD} : cp);
        }
        ++i;
    }
}

void TreePrinter::AppendTime(std::string& out, uint64_t utcTicks) {
    const filetime::CivilTime t = filetime::ToCivil(utcTicks);
    char text[32];
    const auto year = std::to_chars(text, text + 8, t.year);
    char* p = year.ptr;
    *p++ = '-';
    AppendTwoDigits(p, t.month);
    p[2] = '-';
    AppendTwoDigits(p + 3, t.day);
    p[5] = 'T';
    AppendTwoDigits(p + 6, t.hour);
    p[8] = ':';
    AppendTwoDigits(p + 9, t.minute);
    p[11] = ':';
    AppendTwoDigits(p + 12, t.second);
    p[14] = 'Z';
    out.append(text, p + 15);
}

bool TreePrinter::PrintList(const COvDataItem& root) {
    std::deque<std::pair<const COvDataItem*, std::string>> folders;
    folders.emplace_back(&root, std::string());
    while (!folders.empty()) {
        auto [pFolder, prefix] = std::move(folders.front());
        folders.pop_front();
        for (const COvDataItem* pChild : pFolder->m_vecChildren) {
            m_buffer += pChild->IsFolder() ? "d " : "- ";
            AppendDecimal(m_buffer, pChild->m_ullSize);
            m_buffer += ' ';
            AppendTimeOf(*pChild);
            m_buffer += ' ';
            if (m_bLong) {
                AppendTypeOf(*pChild);
            }
            const size_t nPathStart = m_buffer.size();
            m_buffer += prefix;
            AppendUtf8(m_buffer, reinterpret_cast<const char16_t*>(pChild->m_strName.utf16()),
                       static_cast<size_t>(pChild->m_strName.size()));
            if (pChild->IsFolder()) {
                folders.emplace_back(pChild, m_buffer.substr(nPathStart) + '/');
            }
            m_buffer += '\n';
            if (m_buffer.size() >= kFlushBytes && !Flush()) {
                return false;
            }
        }
    }
    return Flush();
}

void TreePrinter::AppendTimeOf(const COvDataItem& item) {
    const uint64_t ticks =
        (static_cast<uint64_t>(item.m_ftTime.dwHighDateTime) << 32) | item.m_ftTime.dwLowDateTime;
    const uint64_t seconds = ticks / filetime::kTicksPerSecond;
    // Most entries of an image share a handful of times.
    if (seconds != m_lastSeconds || m_lastTimeText.empty()) {
        m_lastTimeText.clear();
        AppendTime(m_lastTimeText, ticks);
        m_lastSeconds = seconds;
    }
    m_buffer += m_lastTimeText;
}

void TreePrinter::AppendTypeOf(const COvDataItem& item) {
    // Entries of one type share one text, so its UTF-8 form is made once per run of them.
    const QString& type = item.m_strTypeName;
    if (type.constData() != m_pLastType || m_lastTypeText.empty()) {
        m_lastTypeText = "\"";
        AppendUtf8(m_lastTypeText, reinterpret_cast<const char16_t*>(type.utf16()),
                   static_cast<size_t>(type.size()));
        m_lastTypeText += "\" ";
        m_pLastType = type.constData();
    }
    m_buffer += m_lastTypeText;
}

bool TreePrinter::Flush() {
    const size_t nWritten = std::fwrite(m_buffer.data(), 1, m_buffer.size(), m_pOut);
    const bool bOk = nWritten == m_buffer.size();
    m_buffer.clear();
    return bOk && std::fflush(m_pOut) == 0;
}
