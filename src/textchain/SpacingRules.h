#pragma once

#include "foundation/Pattern.h"

/// Rules for the spacing around punctuation, shared by several stages; each stage lists the ones it needs in
/// its own order.
namespace querlin::SpacingRules {

inline constexpr ByteSet marks{",.;:!?"};

/// "ja ," -> "ja,". The lookbehind keeps a long run of blanks from being tried at each of them.
inline constexpr Rule gapBeforeMark = {R"((?<!\s)\s+([,.;:!?]))", "$1",
                                       Requirement::pair(Bytes::whitespaceEnds, marks)};
/// "ja,nein" -> "ja, nein"; "14:30" -> "14: 30" as well.
inline constexpr Rule noGapBehindComma = {R"(([,;:])(?=\S))", "$1 ",
                                          Requirement::pair(ByteSet(",;:"), ~Bytes::asciiWhitespace)};
/// "Ende.Aus" -> "Ende. Aus", but "1.5" stays.
inline constexpr Rule noGapBehindSentence = {R"(([.!?])(?=\p{L}))", "$1 ",
                                             Requirement::pair(ByteSet(".!?"), Bytes::letterBegins)};
inline constexpr Rule repeatedBlanks = {R"([ \t]{2,})", " ",
                                        Requirement::pair(ByteSet(" \t"), ByteSet(" \t"))};
inline constexpr Rule blanksBeforeNewline = {R"((?<! ) +\n)", "\n",
                                             Requirement::pair(ByteSet(" "), ByteSet("\n"))};
inline constexpr Rule blanksBehindNewline = {R"(\n +)", "\n", Requirement::pair(ByteSet("\n"), ByteSet(" "))};
inline constexpr Rule severalEmptyLines = {R"(\n{3,})", "\n\n",
                                           Requirement::pair(ByteSet("\n"), ByteSet("\n"))};
/// "Was!!" -> "Was!"
inline constexpr Rule repeatedMarks = {R"(([,.;:!?])\1+)", "$1", Requirement::pair(marks, marks)};

} // namespace querlin::SpacingRules
