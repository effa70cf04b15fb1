#include "TreePrinter.h"

#include "COvDataItem.h"
#include "FileTimeConversion.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <type_traits>
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

char* EncodeCodePoint(char* p, char32_t cp) {
    if (cp < 0x800) {
        *p++ = static_cast<char>(0xC0 | (cp >> 6));
    } else if (cp < 0x10000) {
        *p++ = static_cast<char>(0xE0 | (cp >> 12));
        *p++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    } else {
        *p++ = static_cast<char>(0xF0 | (cp >> 18));
        *p++ = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        *p++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    }
    *p++ = static_cast<char>(0x80 | (cp & 0x3F));
    return p;
}

// Every Latin-1 character is one code point; ASCII, which a node's one-byte names hold, stays as
// it is.
void AppendLatin1(std::string& out, QLatin1StringView text) {
    for (const char c : text) {
        const auto cp = static_cast<unsigned char>(c);
        if (cp == '\n') {
            out += "\\n";
        } else if (cp < 0x80) {
            out += c;
        } else {
            char buffer[4];
            out.append(buffer, EncodeCodePoint(buffer, cp));
        }
    }
}

} // namespace

void TreePrinter::AppendUtf8(std::string& out, const char16_t* pText, size_t nChars) {
    // Encoded into a buffer on the stack and appended once; names are short.
    constexpr size_t kChunkChars = 256;
    char buffer[kChunkChars * 3 + 4];
    size_t i = 0;
    while (i < nChars) {
        char* p = buffer;
        const size_t nEnd = std::min(nChars, i + kChunkChars);
        for (; i < nEnd; ++i) {
            char32_t cp = pText[i];
            if (cp < 0x80 && cp != u'\n') {
                *p++ = static_cast<char>(cp);
                continue;
            }
            if (cp == u'\n') {
                *p++ = '\\';
                *p++ = 'n';
                continue;
            }
            if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < nChars && pText[i + 1] >= 0xDC00 &&
                pText[i + 1] <= 0xDFFF) {
                cp = 0x10000 + ((cp - 0xD800) << 10) + (pText[++i] - 0xDC00);
            } else if (cp >= 0xD800 && cp <= 0xDFFF) {
                cp = 0xFFFD;
            }
            p = EncodeCodePoint(p, cp);
        }
        out.append(buffer, p);
    }
}

void TreePrinter::AppendName(std::string& out, QAnyStringView name) {
    name.visit([&out](auto view) {
        if constexpr (std::is_same_v<decltype(view), QStringView>) {
            AppendUtf8(out, view.utf16(), static_cast<size_t>(view.size()));
        } else if constexpr (std::is_same_v<decltype(view), QLatin1StringView>) {
            AppendLatin1(out, view);
        } else {
            const QString wide = view.toString();
            AppendUtf8(out, reinterpret_cast<const char16_t*>(wide.utf16()),
                       static_cast<size_t>(wide.size()));
        }
    });
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

TreePrinter::TreePrinter(std::FILE* pOut, bool bLong) : m_pOut(pOut), m_bLong(bLong) {
    // One line at most beyond the flush mark: a path of a few thousand bytes.
    m_buffer.reserve(kFlushBytes + kFlushBytes / 4);
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
            AppendName(m_buffer, pChild->m_strName.View());
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
