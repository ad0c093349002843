// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The two texts of a practice document.
struct CodeDocument {
    std::string practiceText;
    std::string codeText;

    friend bool operator==(const CodeDocument&, const CodeDocument&) = default;
};

/// Outcome of reading a ".code" file: the document, or a message saying what is wrong with it.
struct CodeFileResult {
    std::optional<CodeDocument> document;
    std::string error;

    explicit operator bool() const { return document.has_value(); }
};

/// The ".code" layout: the practice text, then the code text, each a length-prefixed string of
/// single-byte characters. A length below 255 takes one byte; up to 65533 the byte FF and 16 bits;
/// beyond, FF FF FF and 32 bits (all little-endian). No header, no version.
class CCodeFile {
public:
    static void AppendString(std::string& out, std::string_view text);
    static std::string Write(const CodeDocument& document);

    /// Reads what Write writes, and also a wide-character string (marker FF FE FF, then its own
    /// length in characters and two bytes each), taken as single-byte text. Never allocates more
    /// than the bytes present.
    static CodeFileResult Read(std::string_view bytes);
};
