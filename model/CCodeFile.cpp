// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CCodeFile.h"

#include <cstdint>

namespace {

constexpr std::uint8_t kEscape = 0xFF;
constexpr std::uint32_t kWord = 0xFFFF;
constexpr std::uint32_t kWideMarker = 0xFFFE;

void AppendLittleEndian(std::string& out, std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        out += static_cast<char>((value >> (8 * i)) & 0xFF);
    }
}

/// Reads the archive's strings one after another out of a byte range.
class CStringReader {
public:
    explicit CStringReader(std::string_view bytes) : m_bytes(bytes) {}

    /// One string, or nullopt with m_error set.
    std::optional<std::string> ReadString(const char* what) {
        std::uint64_t length = 0;
        bool wide = false;
        if (!ReadLength(length, wide, what)) {
            return std::nullopt;
        }
        std::size_t charSize = 1;
        if (wide) {
            charSize = 2;
            if (!ReadLength(length, wide, what)) {
                return std::nullopt;
            }
        }
        if (length > Remaining() / charSize) {
            m_error = std::string(what) + " claims " + std::to_string(length) +
                      (charSize == 2 ? " wide characters" : " bytes") + " but only " +
                      std::to_string(Remaining()) + " bytes follow";
            return std::nullopt;
        }
        const auto count = static_cast<std::size_t>(length);
        if (charSize == 1) {
            std::string text(m_bytes.substr(m_pos, count));
            m_pos += count;
            return text;
        }
        // Wide text becomes single-byte text; characters beyond Latin-1 have no byte and read "?".
        std::string text;
        text.reserve(count);
        for (std::size_t i = 0; i < count; ++i, m_pos += 2) {
            const unsigned unit = static_cast<std::uint8_t>(m_bytes[m_pos]) |
                                  static_cast<unsigned>(static_cast<std::uint8_t>(m_bytes[m_pos + 1]))
                                      << 8;
            text += unit < 0x100 ? static_cast<char>(unit) : '?';
        }
        return text;
    }

    std::size_t Remaining() const { return m_bytes.size() - m_pos; }
    const std::string& Error() const { return m_error; }

private:
    bool ReadUnsigned(std::uint64_t& value, int bytes, const char* what) {
        if (Remaining() < static_cast<std::size_t>(bytes)) {
            m_error = m_pos == 0 && m_bytes.empty()
                          ? std::string("the file is empty")
                          : std::string("the length of the ") + what + " is cut off";
            return false;
        }
        value = 0;
        for (int i = 0; i < bytes; ++i) {
            value |= static_cast<std::uint64_t>(static_cast<std::uint8_t>(m_bytes[m_pos++]))
                     << (8 * i);
        }
        return true;
    }

    // The string's length in characters, or wide = true where the wide-string marker stands.
    bool ReadLength(std::uint64_t& length, bool& wide, const char* what) {
        wide = false;
        if (!ReadUnsigned(length, 1, what) || length < kEscape) {
            return m_error.empty();
        }
        if (!ReadUnsigned(length, 2, what) || length < kWideMarker) {
            return m_error.empty();
        }
        if (length == kWideMarker) {
            wide = true;
            return true;
        }
        return ReadUnsigned(length, 4, what);
    }

    std::string_view m_bytes;
    std::size_t m_pos = 0;
    std::string m_error;
};

}  // namespace

void CCodeFile::AppendString(std::string& out, std::string_view text) {
    const std::uint64_t length = text.size();
    if (length < kEscape) {
        AppendLittleEndian(out, length, 1);
    } else if (length < kWideMarker) {
        out += static_cast<char>(kEscape);
        AppendLittleEndian(out, length, 2);
    } else {
        out += static_cast<char>(kEscape);
        AppendLittleEndian(out, kWord, 2);
        AppendLittleEndian(out, length, 4);
    }
    out.append(text);
}

std::string CCodeFile::Write(const CodeDocument& document) {
    std::string out;
    out.reserve(document.practiceText.size() + document.codeText.size() + 14);
    AppendString(out, document.practiceText);
    AppendString(out, document.codeText);
    return out;
}

CodeFileResult CCodeFile::Read(std::string_view bytes) {
    CStringReader reader(bytes);
    CodeFileResult result;
    auto practice = reader.ReadString("practice text");
    if (!practice) {
        result.error = reader.Error();
        return result;
    }
    if (reader.Remaining() == 0) {
        result.error = "the code text is missing";
        return result;
    }
    auto code = reader.ReadString("code text");
    if (!code) {
        result.error = reader.Error();
        return result;
    }
    result.document = CodeDocument{std::move(*practice), std::move(*code)};
    return result;
}
