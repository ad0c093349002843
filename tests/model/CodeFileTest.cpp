// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CCodeFile.h"

#include <gtest/gtest.h>

namespace {

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int v : values) {
        bytes += static_cast<char>(v);
    }
    return bytes;
}

std::string Prefix(std::size_t length) {
    std::string out;
    CCodeFile::AppendString(out, std::string(length, 'x'));
    return out.substr(0, out.size() - length);
}

TEST(CodeFile, LengthPrefixes) {
    EXPECT_EQ(Prefix(0), Bytes({0x00}));
    EXPECT_EQ(Prefix(1), Bytes({0x01}));
    EXPECT_EQ(Prefix(254), Bytes({0xFE}));
    EXPECT_EQ(Prefix(255), Bytes({0xFF, 0xFF, 0x00}));
    EXPECT_EQ(Prefix(65533), Bytes({0xFF, 0xFD, 0xFF}));
    EXPECT_EQ(Prefix(65534), Bytes({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}));
    EXPECT_EQ(Prefix(100000), Bytes({0xFF, 0xFF, 0xFF, 0xA0, 0x86, 0x01, 0x00}));
}

TEST(CodeFile, EmptyDocumentIsTwoZeroBytes) {
    EXPECT_EQ(CCodeFile::Write({}), Bytes({0x00, 0x00}));
    const CodeFileResult result = CCodeFile::Read(Bytes({0x00, 0x00}));
    ASSERT_TRUE(result) << result.error;
    EXPECT_EQ(*result.document, CodeDocument{});
}

TEST(CodeFile, RoundTripsAtEveryPrefixBoundary) {
    for (const std::size_t length : {0u, 1u, 254u, 255u, 65533u, 65534u, 100000u}) {
        CodeDocument document;
        for (std::size_t i = 0; i < length; ++i) {
            document.practiceText += static_cast<char>(i * 7 + 1);  // every byte value appears
        }
        document.codeText = std::string(length / 3, '-');
        const std::string bytes = CCodeFile::Write(document);
        const CodeFileResult result = CCodeFile::Read(bytes);
        ASSERT_TRUE(result) << length << ": " << result.error;
        EXPECT_EQ(*result.document, document) << length;
    }
}

TEST(CodeFile, ReadsWideStringsAsSingleByteText) {
    // FF FE FF marks a wide string; its own prefix counts characters of two bytes each.
    const std::string bytes =
        Bytes({0xFF, 0xFE, 0xFF, 0x03, 'C', 0, 'Q', 0, 0x3A, 0x04, 0x02, ' ', '.'});
    const CodeFileResult result = CCodeFile::Read(bytes);
    ASSERT_TRUE(result) << result.error;
    EXPECT_EQ(result.document->practiceText, "CQ?");
    EXPECT_EQ(result.document->codeText, " .");
}

TEST(CodeFile, BrokenFilesGiveAClearError) {
    const struct {
        const char* name;
        std::string bytes;
        const char* error;
    } cases[] = {
        {"empty file", "", "the file is empty"},
        {"truncated 16-bit prefix", Bytes({0xFF, 0x10}), "the length of the practice text is cut off"},
        {"truncated 32-bit prefix", Bytes({0xFF, 0xFF, 0xFF, 0x01}),
         "the length of the practice text is cut off"},
        {"length beyond the data", Bytes({0x05, 'A', 'B'}),
         "practice text claims 5 bytes but only 2 bytes follow"},
        {"32-bit length of 0xFFFFFFFF", Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'A'}),
         "practice text claims 4294967295 bytes but only 1 bytes follow"},
        {"wide length beyond the data", Bytes({0xFF, 0xFE, 0xFF, 0x02, 'A', 0, 'B'}),
         "practice text claims 2 wide characters but only 3 bytes follow"},
        {"missing second string", Bytes({0x01, 'A'}), "the code text is missing"},
        {"second string cut off", Bytes({0x01, 'A', 0x03, '.'}),
         "code text claims 3 bytes but only 1 bytes follow"},
    };
    for (const auto& c : cases) {
        const CodeFileResult result = CCodeFile::Read(c.bytes);
        EXPECT_FALSE(result) << c.name;
        EXPECT_EQ(result.error, c.error) << c.name;
    }
}

TEST(CodeFile, TrailingBytesAfterBothStringsAreIgnored) {
    const CodeFileResult result = CCodeFile::Read(Bytes({0x01, 'E', 0x02, ' ', '.', 0x99}));
    ASSERT_TRUE(result);
    EXPECT_EQ(result.document->practiceText, "E");
    EXPECT_EQ(result.document->codeText, " .");
}

}  // namespace
